// IndexShape: how many pages an index takes, in how many levels, and how few could hold its
// entries.
#pragma once

#include "jet/tables/database.h"

#include <string_view>

namespace jet::test {

struct IndexShape {
    std::size_t entries = 0;
    std::size_t leaves = 0;
    std::size_t nodes = 0;
    std::size_t levels = 1;        // 1: the root is a leaf
    std::size_t ideal_leaves = 0;  // when every leaf is as full as its entries allow
    std::size_t sparse = 0;        // leaves less than a third full, the last one apart

    // 1 is ideal.
    double factor() const {
        return static_cast<double>(leaves) / static_cast<double>(ideal_leaves);
    }
};

// `index`: position among the definition's real indexes. Fails the test when the tree cannot be
// read.
IndexShape ShapeOf(Database& database, std::u16string_view table, std::size_t index);

}  // namespace jet::test
