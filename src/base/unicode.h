// UTF-8 and UTF-16 into each other. Damaged input never fails: a lone surrogate or a bad byte
// becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace base {

std::string ToUtf8(std::u16string_view text);
std::u16string ToUtf16(std::string_view text);

}  // namespace base
