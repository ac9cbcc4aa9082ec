// Conversions between UTF-8 and UTF-16. Invalid input does not fail: a lone surrogate or an invalid
// byte becomes U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace base {

std::string ToUtf8(std::u16string_view text);
std::u16string ToUtf16(std::string_view text);

// Length of the valid sequence (one character) at the start of `bytes`; 0: there is none; also for
// empty input.
std::size_t ValidUtf8Sequence(std::string_view bytes);

}  // namespace base
