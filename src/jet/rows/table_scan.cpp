#include "jet/rows/table_scan.h"

#include "jet/errors.h"
#include "jet/pages/data_page.h"

namespace jet {

base::Result<TableScan> TableScan::Start(FileContext& file, const TableDefinition& table) {
    ASSIGN_OR_RETURN(std::vector<PageNumber> pages, file.Map(table.owned).Members());
    return TableScan(file, table.page, std::move(pages));
}

base::Status TableScan::OpenPage(PageNumber number) {
    ASSIGN_OR_RETURN(view_, file_->store.Read(number));
    page_ = DataPage::Parse(view_.bytes(), file_->format);
    next_slot_ = 0;
    row_.page = number;
    if (page_ && page_->owner() == table_) return {};
    page_.reset();
    // A page that was emptied meanwhile may hold anything; otherwise the map is wrong.
    if (file_->allocator.pages_freed() != pages_freed_) return {};
    return DamagedPage(number, "not a data page of its table");
}

base::Result<bool> TableScan::Next() {
    while (true) {
        while (page_ && next_slot_ < page_->slot_count()) {
            const std::size_t slot = next_slot_++;
            const std::uint16_t flags = page_->Flags(slot);
            if (flags == kSlotDeleted || flags == kSlotTarget) continue;
            const auto bytes = page_->Bytes(slot);
            if (!bytes) return DamagedPage(row_.page, "a row lies outside of the page");
            row_.slot = static_cast<std::uint8_t>(slot);
            bytes_ = *bytes;
            if (flags == kSlotMoved) {
                ASSIGN_OR_RETURN(moved_, FollowMovedRow(*file_, table_, *bytes));
                bytes_ = moved_.bytes;
            }
            return true;
        }
        if (next_page_ >= pages_.size()) return false;
        RETURN_IF_ERROR(OpenPage(pages_[next_page_++]));
    }
}

}  // namespace jet
