// Offsets and constants of the compound file format; docs/formats/compound-file.md has the tables.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace cfb {

// Counts sectors after the header's: sector n lies at byte (n + 1) * sector size.
using SectorNumber = std::uint32_t;
// Counts directory entries; entry 0 is the root.
using EntryId = std::uint32_t;

// Values of a FAT entry that are not sector numbers.
inline constexpr SectorNumber kLastSectorNumber = 0xFFFFFFFA;
inline constexpr SectorNumber kEndOfChain = 0xFFFFFFFE;
inline constexpr EntryId kNoEntry = 0xFFFFFFFF;

namespace header {
inline constexpr std::size_t kSize = 512;
inline constexpr std::array<std::uint8_t, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0,
                                                           0xA1, 0xB1, 0x1A, 0xE1};
inline constexpr std::size_t kMajorVersion = 0x1A;
inline constexpr std::size_t kByteOrder = 0x1C;
inline constexpr std::size_t kSectorShift = 0x1E;
inline constexpr std::size_t kMiniSectorShift = 0x20;
inline constexpr std::size_t kDirectoryStart = 0x30;
inline constexpr std::size_t kMiniStreamCutoff = 0x38;
inline constexpr std::size_t kMiniFatStart = 0x3C;
inline constexpr std::size_t kDifatStart = 0x44;
inline constexpr std::size_t kDifat = 0x4C;
inline constexpr std::size_t kDifatEntries = 109;
}  // namespace header

namespace entry {
inline constexpr std::size_t kSize = 128;
inline constexpr std::size_t kNameBytes = 64;  // with the final NUL
inline constexpr std::size_t kNameLength = 0x40;
inline constexpr std::size_t kType = 0x42;
inline constexpr std::size_t kLeft = 0x44;
inline constexpr std::size_t kRight = 0x48;
inline constexpr std::size_t kChild = 0x4C;
inline constexpr std::size_t kStart = 0x74;
inline constexpr std::size_t kStreamSize = 0x78;
}  // namespace entry

inline constexpr std::size_t kMiniSectorSize = 64;
inline constexpr std::uint32_t kMiniStreamCutoffBytes = 4096;

}  // namespace cfb
