// Sizes of columns that the format allows.
#pragma once

#include <cstdint>

namespace jet {

inline constexpr std::uint16_t kMaxTextCharacters = 255;
inline constexpr std::uint16_t kMaxBinaryBytesJet4 = 510;
inline constexpr std::uint16_t kMaxBinaryBytesJet3 = 255;

}  // namespace jet
