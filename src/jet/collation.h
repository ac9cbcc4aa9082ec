// Keys of texts: two texts are equal, smaller or greater as their keys are, byte by byte. Letter
// case and trailing blanks do not count, accents do after all letters, hyphen and apostrophe last
// ("General Legacy", LCID 0x0409).
#pragma once

#include "jet/value.h"

#include <compare>
#include <string_view>

namespace jet {

// Ascending key without the leading flag byte; only the first 255 UTF-16 units count.
void AppendTextKey(std::u16string_view text, Bytes& key);
std::weak_ordering CompareText(std::u16string_view a, std::u16string_view b);

}  // namespace jet
