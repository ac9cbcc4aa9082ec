#include "jet/rows/row_pages.h"

#include "jet/errors.h"
#include "jet/pages/data_page.h"

#include <algorithm>

namespace jet {
namespace {

// Pages tried for one row before the next way to find room.
constexpr std::size_t kTries = 16;
constexpr std::size_t kSearchesPerNewPage = 32;

}  // namespace

void RowPages::Forget() {
    candidates_.reset();
    unsearched_.reset();
    candidate_ = 0;
}

// `worth_keeping`: enough is free for a later, smaller row.
base::Result<bool> RowPages::HasRoom(PageNumber number, std::size_t bytes, bool& worth_keeping) {
    ASSIGN_OR_RETURN(const PageView view, file_.store.Read(number));
    const auto page = DataPage::Parse(view.bytes(), file_.format);
    worth_keeping = false;
    if (!page || page->owner() != owner_) return false;
    const bool slots_left = page->slot_count() < kMaxSlots;
    worth_keeping = slots_left && page->free_bytes() >= file_.format.page_size / 8;
    return slots_left && page->free_bytes() >= bytes + 2;
}

base::Result<std::optional<PageNumber>> RowPages::FindKnownPage(std::size_t bytes) {
    if (!candidates_) {
        ASSIGN_OR_RETURN(candidates_, file_.Map(free_).Members());
        candidate_ = candidates_->empty() ? 0 : candidates_->size() - 1;
    }
    for (std::size_t tries = 0; tries < kTries && !candidates_->empty(); ++tries) {
        if (candidate_ >= candidates_->size()) candidate_ = 0;
        const PageNumber page = (*candidates_)[candidate_];
        bool worth_keeping = false;
        ASSIGN_OR_RETURN(const bool room, HasRoom(page, bytes, worth_keeping));
        if (room) return std::optional<PageNumber>(page);
        if (worth_keeping) {
            ++candidate_;
            continue;
        }
        RETURN_IF_ERROR(file_.Map(free_).Remove(page));
        (*candidates_)[candidate_] = candidates_->back();
        candidates_->pop_back();
    }
    return std::optional<PageNumber>();
}

// The map of free space is only a hint and may miss pages: each owned page is checked once, a few
// whenever the table would otherwise grow.
base::Result<std::optional<PageNumber>> RowPages::FindForgottenPage(std::size_t bytes) {
    if (!unsearched_) {
        ASSIGN_OR_RETURN(unsearched_, file_.Map(owned_).Members());
    }
    for (std::size_t tries = 0; tries < kSearchesPerNewPage && !unsearched_->empty(); ++tries) {
        const PageNumber page = unsearched_->back();
        unsearched_->pop_back();
        if (std::ranges::find(*candidates_, page) != candidates_->end()) continue;
        // It may have been given back since, and belong to another column's long values by now.
        ASSIGN_OR_RETURN(const bool owned, file_.Map(owned_).Contains(page));
        if (!owned) continue;
        bool worth_keeping = false;
        ASSIGN_OR_RETURN(const bool room, HasRoom(page, bytes, worth_keeping));
        if (!worth_keeping) continue;
        if (owner_ == kLongValueOwner) {
            // A single row may be the last piece of a chain, whose pages stay alone.
            ASSIGN_OR_RETURN(const PageView view, file_.store.Read(page));
            const auto parsed = DataPage::Parse(view.bytes(), file_.format);
            if (!parsed || parsed->slot_count() < 2) continue;
        }
        RETURN_IF_ERROR(file_.Map(free_).Add(page, file_.allocator));
        candidates_->push_back(page);
        if (!room) continue;
        candidate_ = candidates_->size() - 1;
        return std::optional<PageNumber>(page);
    }
    return std::optional<PageNumber>();
}

base::Result<PageNumber> RowPages::NewPage(bool with_room) {
    ASSIGN_OR_RETURN(const PageNumber page, file_.allocator.Allocate());
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page));
    DataPageEditor::Create(bytes, file_.format, owner_);
    RETURN_IF_ERROR(file_.Map(owned_).Add(page, file_.allocator));
    if (!with_room) return page;
    RETURN_IF_ERROR(file_.Map(free_).Add(page, file_.allocator));
    candidates_->push_back(page);
    candidate_ = candidates_->size() - 1;
    return page;
}

base::Result<DataPageEditor> RowPages::Edit(PageNumber page) {
    if (page < 2 || page >= file_.store.page_count()) return DamagedPage(page, "not a data page");
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page));
    const auto editor = DataPageEditor::Open(bytes, file_.format);
    if (!editor || LoadOwner(bytes) != owner_)
        return DamagedPage(page, "not a data page of its owner");
    return *editor;
}

base::Result<RowId> RowPages::Add(std::span<const std::byte> row, std::uint16_t flags) {
    ASSIGN_OR_RETURN(std::optional<PageNumber> page, FindKnownPage(row.size()));
    if (!page) {
        ASSIGN_OR_RETURN(page, FindForgottenPage(row.size()));
    }
    if (!page) {
        ASSIGN_OR_RETURN(page, NewPage(true));
    }
    ASSIGN_OR_RETURN(DataPageEditor editor, Edit(*page));
    if (!editor.HasRoomFor(row.size()))
        return DamagedPage(*page, "the free space of the page is miscounted");
    return RowId{*page, editor.Append(row, flags)};
}

base::Result<RowId> RowPages::AddAlone(std::span<const std::byte> row) {
    ASSIGN_OR_RETURN(const PageNumber page, NewPage(false));
    ASSIGN_OR_RETURN(DataPageEditor editor, Edit(page));
    return RowId{page, editor.Append(row, 0)};
}

base::Result<bool> RowPages::Replace(RowId row, std::span<const std::byte> bytes,
                                     std::uint16_t flags) {
    ASSIGN_OR_RETURN(DataPageEditor editor, Edit(row.page));
    if (row.slot >= editor.slot_count()) return DamagedPage(row.page, "a row is missing");
    if (bytes.size() > editor.SlotBytes(row.slot) + editor.free_bytes()) return false;
    editor.Replace(row.slot, bytes, flags);
    return true;
}

base::Status RowPages::Delete(std::span<const RowId> rows) {
    if (!candidates_) {
        ASSIGN_OR_RETURN(candidates_, file_.Map(free_).Members());
    }
    std::vector<PageNumber> given_back;
    std::vector<std::uint8_t> slots;
    for (std::size_t i = 0; i < rows.size();) {
        const PageNumber page = rows[i].page;
        slots.clear();
        for (; i < rows.size() && rows[i].page == page; ++i)
            slots.push_back(rows[i].slot);
        ASSIGN_OR_RETURN(const bool is_empty, DeleteOnPage(page, slots));
        if (is_empty) given_back.push_back(page);
    }
    if (given_back.empty()) return {};
    std::erase_if(*candidates_,
                  [&](PageNumber page) { return std::ranges::binary_search(given_back, page); });
    return {};
}

base::Result<bool> RowPages::DeleteOnPage(PageNumber page, std::span<const std::uint8_t> slots) {
    ASSIGN_OR_RETURN(DataPageEditor editor, Edit(page));
    if (slots.back() >= editor.slot_count()) return DamagedPage(page, "a row is missing");
    editor.Delete(slots);
    for (std::size_t slot = 0; slot < editor.slot_count(); ++slot) {
        if (editor.Flags(slot) == kSlotDeleted) continue;
        const bool has_room =
            editor.slot_count() < kMaxSlots && editor.free_bytes() >= file_.format.page_size / 8;
        if (has_room) RETURN_IF_ERROR(HintAtRoom(page));
        return false;
    }
    RETURN_IF_ERROR(GiveBack(page));
    return true;
}

base::Status RowPages::HintAtRoom(PageNumber page) {
    ASSIGN_OR_RETURN(const bool hinted, file_.Map(free_).Contains(page));
    if (hinted) return {};
    if (!free_.none() || std::ranges::find(*candidates_, page) == candidates_->end())
        candidates_->push_back(page);
    return file_.Map(free_).Add(page, file_.allocator);
}

base::Status RowPages::GiveBack(PageNumber page) {
    RETURN_IF_ERROR(file_.Map(free_).Remove(page));
    ASSIGN_OR_RETURN(const bool owned, file_.Map(owned_).Contains(page));
    if (!owned) return {};
    RETURN_IF_ERROR(file_.Map(owned_).Remove(page));
    return file_.allocator.Free(page);
}

}  // namespace jet
