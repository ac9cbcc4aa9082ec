// The decimal form of a number that a person wrote.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace jet {

// "1234.5e-3": sign, digits, point and exponent only, as C libraries read it; blanks, thousands
// separators and the currency sign are gone. nullopt: no decimal number (&H and &O numbers
// included).
std::optional<std::string> PlainNumber(std::u16string_view text);

}  // namespace jet
