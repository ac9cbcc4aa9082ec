#include "jet/rows/row_set.h"

#include <algorithm>

namespace jet {

RowSet::RowSet(std::span<const RowId> rows) : rows_(rows.begin(), rows.end()) {
    if (!std::ranges::is_sorted(rows_)) std::ranges::sort(rows_);
    rows_.erase(std::unique(rows_.begin(), rows_.end()), rows_.end());
    if (rows_.empty()) return;
    block_of_page_.resize(std::size_t{rows_.back().page} + 1);
    PageNumber page = 0;  // holds no rows
    for (const RowId row : rows_) {
        if (row.page != page || blocks_.size() == 1) {
            page = row.page;
            block_of_page_[page] = static_cast<std::uint32_t>(blocks_.size());
            blocks_.emplace_back();
        }
        blocks_.back()[row.slot / 64] |= std::uint64_t{1} << (row.slot % 64);
    }
}

}  // namespace jet
