// TrimSpaces: a text without the spaces (U+0020, nothing else) at its ends.
#pragma once

#include <string_view>

namespace base {

constexpr std::u16string_view TrimSpaces(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    if (first == std::u16string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

}  // namespace base
