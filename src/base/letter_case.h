// Upper and lower case of single UTF-16 units, independent of the machine's locale: the simple case
// mappings of UnicodeData.txt for Latin, Greek, Cyrillic, Armenian and the full-width letters. All
// other units stay as they are.
#pragma once

#include <string>
#include <string_view>

namespace base {

char16_t ToUpper(char16_t unit);
char16_t ToLower(char16_t unit);
std::u16string ToUpper(std::u16string_view text);
std::u16string ToLower(std::u16string_view text);

}  // namespace base
