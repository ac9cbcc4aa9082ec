// What a disk writes whole: a power cut leaves each sector of a page old or new.
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet {

inline constexpr std::size_t kSectorSize = 512;  // bytes

// A bit for each sector of a page, the first one lowest. The largest page has eight.
using Sectors = std::uint8_t;
inline constexpr Sectors kAllSectors = 0xFF;

}  // namespace jet
