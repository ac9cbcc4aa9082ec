// Numbers as people write them, in plain decimal form.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace jet {

// "1234.5e-3": sign, digits, point and exponent only, as C libraries read it; blanks, thousands
// separators and the currency sign are gone. nullopt: not a decimal number (&H and &O
// numbers are not).
std::optional<std::string> PlainNumber(std::u16string_view text);

}  // namespace jet
