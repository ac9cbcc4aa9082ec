#include "jet/rows/long_value_store.h"

#include "jet/errors.h"
#include "jet/pages/data_page.h"

#include <algorithm>

namespace jet {
namespace {

Bytes Reference(std::uint32_t kind, std::size_t length, RowPointer at) {
    Bytes field(kLongValueHead);
    base::StoreLittle(field.data(), static_cast<std::uint32_t>(length) | kind);
    StoreRowPointer(field.data() + kLongValuePlace, at);
    return field;
}

}  // namespace

base::Result<Bytes> LongValueStore::Store(std::span<const std::byte> value, bool allow_inline) {
    if (value.size() > kLongValueLength) return JetError(ErrorNumber::kRecordTooLarge);
    if (allow_inline && value.size() <= file_.format.max_inline_bytes) {
        Bytes field = Reference(kLongValueInline, value.size(), {});
        field.insert(field.end(), value.begin(), value.end());
        return field;
    }
    if (value.size() <= file_.format.max_single_bytes) {
        ASSIGN_OR_RETURN(const RowId at, pages_.Add(value, 0));
        return Reference(kLongValueSingle, value.size(), {at.page, at.slot});
    }
    ASSIGN_OR_RETURN(const RowId first, StoreChain(value));
    return Reference(0, value.size(), {first.page, first.slot});
}

// From the last piece to the first, as each piece holds the place of the next.
base::Result<RowId> LongValueStore::StoreChain(std::span<const std::byte> value) {
    const std::size_t size = file_.format.chain_piece_bytes;
    RowPointer next;
    RowId at;
    for (std::size_t piece = (value.size() + size - 1) / size; piece-- > 0;) {
        const auto data = value.subspan(piece * size, std::min(size, value.size() - piece * size));
        Bytes row(kLongValuePieceHead);
        StoreRowPointer(row.data(), next);
        row.insert(row.end(), data.begin(), data.end());
        ASSIGN_OR_RETURN(at, pages_.AddAlone(row));
        next = {at.page, at.slot};
    }
    return at;
}

base::Status LongValueStore::Free(std::span<const std::byte> field) {
    if (field.size() < kLongValueHead) return {};
    const auto word = base::LoadLittle<std::uint32_t>(field.data());
    if ((word & kLongValueInline) != 0) return {};
    const bool chained = (word & kLongValueSingle) == 0;
    RowPointer at = LoadRowPointer(field.data() + kLongValuePlace);
    for (PageNumber hops = file_.store.page_count(); hops > 0 && !at.none(); --hops) {
        ASSIGN_OR_RETURN(const bool owned, file_.Map(maps_.owned).Contains(at.page));
        if (!owned || at.page >= file_.store.page_count()) return {};
        RowPointer next;
        {
            ASSIGN_OR_RETURN(const PageView view, file_.store.Read(at.page));
            const auto page = DataPage::Parse(view.bytes(), file_.format);
            const auto row = page ? page->Bytes(at.row) : std::nullopt;
            if (!row || page->owner() != kLongValueOwner || page->Flags(at.row) == kSlotDeleted)
                return {};
            if (chained && row->size() >= kLongValuePieceHead) next = LoadRowPointer(row->data());
        }
        RETURN_IF_ERROR(pages_.Delete({at.page, at.row}));
        at = next;
    }
    return {};
}

base::Status LongValueStore::FreeOrNote(std::span<const std::byte> field) {
    if (field.size() < kLongValueHead) return {};
    const auto word = base::LoadLittle<std::uint32_t>(field.data());
    const bool is_single = (word & kLongValueInline) == 0 && (word & kLongValueSingle) != 0;
    if (!is_single) return Free(field);
    const RowPointer at = LoadRowPointer(field.data() + kLongValuePlace);
    if (!at.none()) noted_.push_back({at.page, at.row});
    return {};
}

base::Status LongValueStore::FreeNoted() {
    std::ranges::sort(noted_);
    noted_.erase(std::unique(noted_.begin(), noted_.end()), noted_.end());
    std::vector<RowId> live;
    for (std::size_t i = 0; i < noted_.size();) {
        const PageNumber number = noted_[i].page;
        ASSIGN_OR_RETURN(const bool owned, file_.Map(maps_.owned).Contains(number));
        PageView view;
        std::optional<DataPage> page;
        if (owned && number < file_.store.page_count()) {
            ASSIGN_OR_RETURN(view, file_.store.Read(number));
            page = DataPage::Parse(view.bytes(), file_.format);
        }
        const bool is_own = page && page->owner() == kLongValueOwner;
        for (; i < noted_.size() && noted_[i].page == number; ++i)
            if (is_own && page->Bytes(noted_[i].slot) &&
                page->Flags(noted_[i].slot) != kSlotDeleted)
                live.push_back(noted_[i]);
    }
    noted_.clear();
    return pages_.Delete(live);
}

}  // namespace jet
