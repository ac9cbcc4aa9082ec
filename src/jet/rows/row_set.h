// RowSet: many rows of one table, for asking of each row that is met whether it is one of them.
#pragma once

#include "jet/ids.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace jet {

class RowSet {
public:
    // In any order, also twice.
    explicit RowSet(std::span<const RowId> rows);

    // In physical order, each once.
    const std::vector<RowId>& rows() const { return rows_; }

    bool Contains(RowId row) const {
        if (row.page >= block_of_page_.size()) return false;
        const std::uint32_t block = block_of_page_[row.page];
        return block != 0 && (blocks_[block][row.slot / 64] >> (row.slot % 64) & 1U) != 0;
    }

private:
    using Slots = std::array<std::uint64_t, 4>;  // a bit for each slot of a page

    std::vector<RowId> rows_;
    std::vector<std::uint32_t> block_of_page_;  // 0: no row of this page
    std::vector<Slots> blocks_{1};              // the first one belongs to no page
};

}  // namespace jet
