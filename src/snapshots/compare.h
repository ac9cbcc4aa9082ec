// CompareDatabases: how the rows of one state of a catalogue differ from those of another, table by
// table. A row is found in the other state by its primary key; rows of a table without one are
// compared as a whole. A column that only one state has holds Null in the other.
#pragma once

#include "jet/tables/database.h"

#include <cstdint>
#include <string>
#include <vector>

namespace snapshots {

struct TableDifference {
    std::string table;        // UTF-8
    std::uint64_t more = 0;   // rows that `then` has and `now` has not
    std::uint64_t fewer = 0;  // rows that `now` has and `then` has not
    std::uint64_t different = 0;
    std::uint64_t equal = 0;
    bool operator==(const TableDifference&) const = default;
    bool is_same() const { return more == 0 && fewer == 0 && different == 0; }
};

// The tables of `now` in their order, then those that only `then` has. Reads both once; takes a few
// dozen bytes of memory for each row of `now`. Errors: those of reading the databases.
base::Result<std::vector<TableDifference>> CompareDatabases(jet::Database& now,
                                                            jet::Database& then);

// The same for the bytes of two database files.
base::Result<std::vector<TableDifference>> CompareFiles(const std::vector<std::byte>& now,
                                                        const std::vector<std::byte>& then);

}  // namespace snapshots
