// Keys of texts: two texts are smaller or greater as their keys are, byte by byte. Letter
// case and trailing blanks do not count, accents do after all letters, hyphen and apostrophe last
// ("General Legacy", LCID 0x0409).
#pragma once

#include "jet/values/value.h"

#include <compare>
#include <string_view>

namespace jet {

// So much of a text makes its key, and so decides where it is sorted: UTF-16 units.
inline constexpr std::size_t kKeyUnits = 255;

// Ascending key without the leading flag byte, of the text's first kKeyUnits.
void AppendTextKey(std::u16string_view text, Bytes& key);
// The whole texts: where the keys are equal, what comes behind decides in the same way.
std::weak_ordering CompareText(std::u16string_view a, std::u16string_view b);

}  // namespace jet
