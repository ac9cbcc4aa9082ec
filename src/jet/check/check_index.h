// One index: its tree, and its entries against the rows of the table.
#pragma once

#include "jet/check/check_definition.h"

#include <vector>

namespace jet::check {

// The entry that a row must have: key bytes with the row id behind (u24 big endian page, u8 slot).
struct ExpectedEntry {
    Bytes bytes;
    bool all_null = false;
    auto operator<=>(const ExpectedEntry& other) const { return bytes <=> other.bytes; }
    bool operator==(const ExpectedEntry& other) const { return bytes == other.bytes; }
};

inline constexpr std::size_t kRowIdSize = 4;

// `expected`: one entry for each row that the index must hold; sorted here. `knows_keys` false:
// only the row ids in it are right.
void CheckIndex(CheckRun& run, const Definition& definition, const RealIndex& index,
                std::vector<ExpectedEntry> expected, bool knows_keys);

}  // namespace jet::check
