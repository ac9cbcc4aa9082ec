// Where things lie in the reference to a long value and in the pieces of a chain; reader, writer
// and checker share it. Tables of offsets: docs/formats/jet.md, "Long values".
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet {

// The reference in a row.
inline constexpr std::size_t kLongValueHead = 12;
inline constexpr std::uint32_t kLongValueInline = 0x80000000;  // the value follows the reference
inline constexpr std::uint32_t kLongValueSingle = 0x40000000;  // one row; neither bit: a chain
inline constexpr std::uint32_t kLongValueLength = 0x3FFFFFFF;
inline constexpr std::size_t kLongValuePlace = 4;  // row pointer to the first row
inline constexpr std::size_t kLongValueStamp = 8;  // of a chain; also on its first page

// Each row of a chain begins with the row pointer to the next one.
inline constexpr std::size_t kLongValuePieceHead = 4;

}  // namespace jet
