// What changes are called: "Purge (3,412 tables)". US English.
#pragma once

#include "history/change_index.h"

#include <string>

namespace history {

// "3,412".
std::u16string GroupedNumber(std::uint64_t number);
// How many rows, as the user calls them: "1 table", "3,412 tables" of the catalogue, otherwise
// "12 rows".
std::u16string RowsText(const Change& change);
// `name` with the number of rows; `name` empty: the change's own.
std::u16string DisplayName(const Change& change, std::u16string_view name = {});

}  // namespace history
