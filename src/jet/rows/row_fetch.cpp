#include "jet/rows/row_fetch.h"

#include "jet/errors.h"

#include <algorithm>
#include <numeric>

namespace jet {
namespace {

// The engine itself makes one hop; a few more are followed, so that a circle ends.
constexpr int kMaxHops = 16;

}  // namespace

// Counts the rows of each page first, as the numbers of pages are few.
std::vector<std::uint32_t> OrderByPage(std::span<const RowId> rows) {
    std::vector<std::uint32_t> order(rows.size());
    if (rows.empty()) return order;
    const auto [least, most] = std::ranges::minmax(rows, {}, &RowId::page);
    std::vector<std::uint32_t> next(most.page - least.page + std::size_t{2});
    for (const RowId row : rows)
        ++next[row.page - least.page + std::size_t{1}];
    std::partial_sum(next.begin(), next.end(), next.begin());
    for (std::size_t i = 0; i < rows.size(); ++i)
        order[next[rows[i].page - least.page]++] = static_cast<std::uint32_t>(i);
    return order;
}

base::Result<StoredRow> FollowMovedRow(FileContext& file, PageNumber table,
                                       std::span<const std::byte> pointer) {
    PageView last_hop;  // keeps `pointer` alive
    for (int hop = 0; hop < kMaxHops && pointer.size() >= 4; ++hop) {
        const RowPointer to = LoadRowPointer(pointer.data());
        StoredRow row;
        ASSIGN_OR_RETURN(row.page, file.store.Read(to.page));
        row.at = {to.page, to.row};
        const auto page = DataPage::Parse(row.page.bytes(), file.format);
        const auto bytes = page && page->owner() == table ? page->Bytes(to.row) : std::nullopt;
        if (!bytes || page->Flags(to.row) == kSlotDeleted)
            return DamagedPage(to.page, "a moved row is missing");
        row.bytes = *bytes;
        if (page->Flags(to.row) != kSlotMoved) return row;
        last_hop = std::move(row.page);
        pointer = *bytes;
    }
    return Damaged("a moved row leads nowhere");
}

base::Result<StoredRow> FetchRow(FileContext& file, PageNumber table, RowId row) {
    return RowFetcher(file, table).Fetch(row);
}

base::Result<StoredRow> RowFetcher::Fetch(RowId row) {
    if (row.page == 0 || row.page >= file_.store.page_count())
        return JetError(ErrorNumber::kRecordDeleted);
    if (row.page != number_) {
        ASSIGN_OR_RETURN(view_, file_.store.Read(row.page));
        number_ = row.page;
        page_ = DataPage::Parse(view_.bytes(), file_.format);
        if (page_ && page_->owner() != table_) page_.reset();
    }
    if (!page_ || row.slot >= page_->slot_count()) return JetError(ErrorNumber::kRecordDeleted);
    const auto bytes = page_->Bytes(row.slot);
    if (!bytes) return DamagedPage(row.page, "a row lies outside of the page");
    switch (page_->Flags(row.slot)) {
    case 0:
        return StoredRow{view_, *bytes, row};
    case kSlotMoved:
        return FollowMovedRow(file_, table_, *bytes);
    default:
        return JetError(ErrorNumber::kRecordDeleted);
    }
}

}  // namespace jet
