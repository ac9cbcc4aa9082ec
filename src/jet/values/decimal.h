// Decimal arithmetic for NUMERIC columns: 128-bit magnitudes and their texts.
#pragma once

#include "jet/values/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace jet {

// "-12.50": as many decimals as the scale says.
std::string NumericText(const Numeric& numeric);
double NumericToDouble(const Numeric& numeric);

// `plain` is a number as PlainNumber gives it. Rounded half to even to `scale` decimals. nullopt:
// more than `precision` digits.
std::optional<Numeric> NumericFromText(std::string_view plain, std::uint8_t precision,
                                       std::uint8_t scale);

}  // namespace jet
