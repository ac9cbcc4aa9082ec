// Upper and lower case of single UTF-16 units, independent of the machine's locale: Latin, Greek,
// Cyrillic, Armenian.
#pragma once

#include <string>
#include <string_view>

namespace jet {

char16_t ToUpper(char16_t unit);
char16_t ToLower(char16_t unit);
std::u16string ToUpper(std::u16string_view text);
std::u16string ToLower(std::u16string_view text);

}  // namespace jet
