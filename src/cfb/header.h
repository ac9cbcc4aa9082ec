// Header: the first 512 bytes of a compound file, checked.
#pragma once

#include "base/status.h"
#include "cfb/layout.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace cfb {

struct Header {
    std::uint16_t major_version = 3;
    std::uint32_t sector_shift = 9;  // log2 of the sector size in bytes
    SectorNumber directory_start = kEndOfChain;
    SectorNumber mini_fat_start = kEndOfChain;
    SectorNumber difat_start = kEndOfChain;
    std::array<SectorNumber, header::kDifatEntries> difat{};
};

// kUnsupported: not a compound file, or one of an unknown version; kCorruption: its fields
// contradict each other.
base::Result<Header> ParseHeader(std::span<const std::byte, header::kSize> bytes);

}  // namespace cfb
