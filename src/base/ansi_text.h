// Text in the ANSI code page (1252, Western European), one byte per UTF-16 unit.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace base {

// "?" for a character that is not in the code page.
std::byte AnsiByte(char16_t c);
char16_t AnsiCharacter(std::byte byte);

// Characters that are not in the code page become "?".
std::vector<std::byte> ToAnsi(std::u16string_view text);

// Every byte gives one character.
std::u16string FromAnsi(std::span<const std::byte> bytes);

}  // namespace base
