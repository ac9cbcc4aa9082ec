// Text in the ANSI code page (1252, Western European), one byte per UTF-16 unit.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace base {

// Characters that the code page does not have become "?".
std::vector<std::byte> ToAnsi(std::u16string_view text);

// Every byte is a character.
std::u16string FromAnsi(std::span<const std::byte> bytes);

}  // namespace base
