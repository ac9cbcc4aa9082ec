// One index: its tree, and its entries against the rows of the table.
#pragma once

#include "jet/check/check_definition.h"
#include "jet/check/entry_list.h"

namespace jet::check {

inline constexpr std::size_t kRowIdSize = 4;

// `expected`: one entry for each row that the index must hold: key bytes with the row id behind
// (u24 big endian page, u8 slot); marked: all parts of the key are null. Sorted here. `knows_keys`
// false: only the row ids in it are right.
void CheckIndex(CheckRun& run, const Definition& definition, const RealIndex& index,
                EntryList expected, bool knows_keys);

}  // namespace jet::check
