// Numbers that name things in a database file, and the limits of its tables.
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet {

// Counts pages from 0, never bytes.
using PageNumber = std::uint32_t;

// Where a row is found: the page and slot it was first stored in. Never changes while the row
// lives.
struct RowId {
    PageNumber page = 0;
    std::uint8_t slot = 0;
    auto operator<=>(const RowId&) const = default;
};

inline constexpr std::size_t kMaxSlots = 255;
inline constexpr std::size_t kMaxColumns = 255;
inline constexpr std::size_t kMaxIndexes = 32;
inline constexpr std::size_t kMaxIndexColumns = 10;
// Nodes on the way from an index's root to a leaf. More mean damage: even with two children per
// node so many levels fill the largest file.
inline constexpr std::size_t kMaxIndexLevels = 20;
inline constexpr std::size_t kMaxNameLength = 64;

}  // namespace jet
