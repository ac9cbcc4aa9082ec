// Sort keys of texts, which compare byte by byte. Letter case and trailing blanks are ignored;
// accents count after all letters, hyphen and apostrophe after those ("General Legacy", LCID
// 0x0409).
#pragma once

#include "jet/values/value.h"

#include <algorithm>
#include <compare>
#include <string_view>

namespace jet {

// UTF-16 units of a text that go into its key.
inline constexpr std::size_t kKeyUnits = 255;

// Ascending key without the leading flag byte, of the text's first kKeyUnits.
void AppendTextKey(std::u16string_view text, Bytes& key);
// Bytes that most keys fit into: two for a letter, and the end.
constexpr std::size_t TextKeyRoom(std::u16string_view text) {
    return 2 * std::min(text.size(), kKeyUnits) + 16;
}
// Compares whole texts: where the keys are equal, the rest decides by the same rules.
std::weak_ordering CompareText(std::u16string_view a, std::u16string_view b);

}  // namespace jet
