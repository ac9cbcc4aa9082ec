#include "jet/rows/row_fetch.h"

#include "jet/errors.h"
#include "jet/pages/data_page.h"

namespace jet {
namespace {

// The engine itself makes one hop; a few more are followed, so that a circle ends.
constexpr int kMaxHops = 16;

}  // namespace

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
    if (row.page == 0 || row.page >= file.store.page_count())
        return JetError(ErrorNumber::kRecordDeleted);
    ASSIGN_OR_RETURN(PageView view, file.store.Read(row.page));
    const auto page = DataPage::Parse(view.bytes(), file.format);
    if (!page || page->owner() != table || row.slot >= page->slot_count())
        return JetError(ErrorNumber::kRecordDeleted);
    const auto bytes = page->Bytes(row.slot);
    if (!bytes) return DamagedPage(row.page, "a row lies outside of the page");
    switch (page->Flags(row.slot)) {
    case 0:
        return StoredRow{std::move(view), *bytes, row};
    case kSlotMoved:
        return FollowMovedRow(file, table, *bytes);
    default:
        return JetError(ErrorNumber::kRecordDeleted);
    }
}

}  // namespace jet
