#include "platform/windows/system_path.h"

#include "base/file_names.h"
#include "platform/windows/last_error.h"
#include "platform/windows/windows_header.h"

#include <string_view>

namespace platform {
namespace {

using namespace std::string_view_literals;

constexpr std::wstring_view kVerbatim = LR"(\\?\)";
constexpr std::wstring_view kDevice = LR"(\\.\)";
constexpr std::wstring_view kShare = LR"(\\)";
constexpr std::wstring_view kVerbatimShare = LR"(\\?\UNC\)";

base::Result<std::wstring> FullPath(const std::filesystem::path& path) {
    const std::wstring& name = path.native();
    const DWORD room = GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);  // with the final zero
    if (room == 0) return ErrorStatus(GetLastError(), path);
    std::wstring full(room, L'\0');
    const DWORD size = GetFullPathNameW(name.c_str(), room, full.data(), nullptr);
    if (size == 0) return ErrorStatus(GetLastError(), path);
    // Another thread has changed the current folder in between.
    if (size >= room) return ErrorStatus(ERROR_PATH_NOT_FOUND, path);
    full.resize(size);
    return full;
}

bool HasDrive(std::wstring_view full) {
    return full.size() > 1 && full[1] == L':';
}

}  // namespace

base::Result<std::wstring> SystemPath(const std::filesystem::path& path) {
    if (path.empty() || path.native().find(L'\0') != std::wstring::npos)
        return ErrorStatus(ERROR_INVALID_NAME, path);
    ASSIGN_OR_RETURN(std::wstring full, FullPath(path));
    if (full.starts_with(kDevice)) return ErrorStatus(ERROR_ACCESS_DENIED, path);
    const bool is_verbatim = full.starts_with(kVerbatim);
    const std::size_t names = is_verbatim ? kVerbatim.size() : 0;
    const std::size_t behind_drive = HasDrive(std::wstring_view(full).substr(names)) ? 2 : 0;
    if (full.find(L':', names + behind_drive) != std::wstring::npos)
        return ErrorStatus(ERROR_INVALID_NAME, path);
    if (is_verbatim) return full;
    if (full.starts_with(kShare))
        return std::wstring(kVerbatimShare).append(full, kShare.size(), std::wstring::npos);
    return std::wstring(kVerbatim) + full;
}

}  // namespace platform
