#include "base/path_pieces.h"

namespace base {
namespace {

bool IsBlank(std::u16string_view text) {
    return text.find_first_not_of(u' ') == std::u16string_view::npos;
}

std::size_t FileNameStart(std::u16string_view path) {
    const std::size_t last = path.find_last_of(u"\\/");
    return last == std::u16string_view::npos ? 0 : last + 1;
}

char16_t SeparatorOf(std::u16string_view folder, char16_t native) {
    const bool has_drive = folder.size() >= 2 && folder[1] == u':';
    if (has_drive || folder.find(u'\\') != std::u16string_view::npos) return u'\\';
    return folder.find(u'/') != std::u16string_view::npos ? u'/' : native;
}

}  // namespace

std::u16string_view GetFileName(std::u16string_view path) {
    return IsBlank(path) ? std::u16string_view() : path.substr(FileNameStart(path));
}

std::u16string_view GetFolder(std::u16string_view path) {
    return IsBlank(path) ? std::u16string_view() : path.substr(0, FileNameStart(path));
}

std::u16string_view StripExtension(std::u16string_view file_name) {
    if (IsBlank(file_name) || file_name.size() < 4) return {};
    return file_name.substr(0, file_name.size() - 4);
}

std::u16string WithTrailingSeparator(std::u16string_view folder, char16_t native) {
    std::u16string result(folder);
    if (result.empty() || !IsPathSeparator(result.back()))
        result.push_back(SeparatorOf(folder, native));
    return result;
}

}  // namespace base
