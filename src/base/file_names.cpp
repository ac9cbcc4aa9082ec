#include "base/file_names.h"

#include "base/unicode.h"

#include <type_traits>

namespace base {
namespace {

constexpr char16_t kEscapedByte = 0xDC00;

bool IsHighSurrogate(char16_t c) {
    return c >= 0xD800 && c < 0xDC00;
}

bool IsLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

// Templates, so that only the branch of this system is compiled.
template <typename Char>
std::basic_string<Char> NativeName(std::u16string_view name) {
    if constexpr (std::is_same_v<Char, char>)
        return EncodeFileName(name);
    else
        return {name.begin(), name.end()};
}

template <typename Char>
std::u16string TextOfName(const std::basic_string<Char>& name) {
    if constexpr (std::is_same_v<Char, char>)
        return DecodeFileName(name);
    else
        return {name.begin(), name.end()};
}

template <typename Char>
std::string Utf8OfName(const std::basic_string<Char>& name) {
    if constexpr (std::is_same_v<Char, char>)
        return name;
    else
        return ToUtf8(TextOfName(name));
}

}  // namespace

std::u16string DecodeFileName(std::string_view bytes) {
    std::u16string name;
    name.reserve(bytes.size());
    std::size_t valid = 0;  // length of the valid text not yet taken over
    const auto take_valid = [&] {
        name += ToUtf16(bytes.substr(0, valid));
        bytes.remove_prefix(valid);
        valid = 0;
    };
    while (valid < bytes.size()) {
        if (const std::size_t length = ValidUtf8Sequence(bytes.substr(valid)); length != 0) {
            valid += length;
            continue;
        }
        take_valid();
        name += static_cast<char16_t>(kEscapedByte + static_cast<unsigned char>(bytes[0]));
        bytes.remove_prefix(1);
    }
    take_valid();
    return name;
}

std::string EncodeFileName(std::u16string_view name) {
    std::string bytes;
    bytes.reserve(name.size());
    std::size_t start = 0;
    const auto take_until = [&](std::size_t end) {
        bytes += ToUtf8(name.substr(start, end - start));
        start = end;
    };
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (IsHighSurrogate(name[i]) && i + 1 < name.size() && IsLowSurrogate(name[i + 1])) {
            ++i;
        } else if (IsEscapedByte(name[i])) {
            take_until(i);
            bytes += static_cast<char>(name[i] - kEscapedByte);
            start = i + 1;
        }
    }
    take_until(name.size());
    return bytes;
}

std::filesystem::path PathOf(std::u16string_view name) {
    return NativeName<std::filesystem::path::value_type>(name);
}

std::u16string TextOf(const std::filesystem::path& path) {
    return TextOfName(path.native());
}

std::string Utf8Of(const std::filesystem::path& path) {
    return Utf8OfName(path.native());
}

}  // namespace base
