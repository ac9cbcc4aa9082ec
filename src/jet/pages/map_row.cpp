#include "jet/pages/map_row.h"

#include "jet/errors.h"
#include "jet/pages/bit_set_view.h"
#include "jet/pages/data_page.h"

#include <algorithm>
#include <string>

namespace jet {
std::vector<std::byte> MakeMapRow(const Format& format, PageNumber only_member) {
    std::vector<std::byte> row(format.fresh_map_bytes);
    if (only_member == 0) return row;
    const std::size_t bits = (row.size() - kInlineHead) * 8;
    const PageNumber first = only_member < bits ? 0 : only_member & ~7U;
    base::StoreLittle(row.data() + kMapFirstPage, first);
    AssignBit(std::span(row).subspan(kInlineHead), only_member - first, true);
    return row;
}

void MapRow::Bit::Assign(bool value) const {
    AssignBit(bits, position, value);
}

base::Status MapRow::Damage(std::string_view what) const {
    return DamagedPage(at_.page, std::string(name_) + std::string(what));
}

base::Result<MapRow::View> MapRow::Load() const {
    View view;
    ASSIGN_OR_RETURN(view.page, store_.Read(at_.page));
    const auto page = DataPage::Parse(view.page.bytes(), format_);
    const auto bytes = page ? page->Bytes(at_.row) : std::nullopt;
    if (!bytes || bytes->empty()) return Damage(" is unreadable");
    const bool is_inline = bytes->front() == kMapInline;
    if (!is_inline && bytes->front() != kMapReference) return Damage(" is unreadable");
    if (is_inline && bytes->size() < kInlineHead) return Damage(" is unreadable");
    view.bytes = *bytes;
    return view;
}

base::Result<PageView> MapRow::ReadBitmap(PageNumber bitmap) const {
    ASSIGN_OR_RETURN(PageView view, store_.Read(bitmap));
    if (!HasType(view.bytes(), PageType::kBitmap)) return DamagedPage(bitmap, "not a page bitmap");
    return view;
}

base::Result<bool> MapRow::IsSet(PageNumber page) const {
    ASSIGN_OR_RETURN(const View row, Load());
    if (row.is_inline())
        return row.InlineReaches(page) && TestBit(row.inline_bits(), page - row.first_page());
    const std::size_t per_page = format_.bits_per_bitmap_page();
    const PageNumber bitmap = row.pointer(page / per_page);
    if (bitmap == 0) return false;
    ASSIGN_OR_RETURN(const PageView view, ReadBitmap(bitmap));
    return TestBit(view.bytes().subspan(kBitmapHead), page % per_page);
}

base::Result<MapRow::Bit> MapRow::ChangeBit(PageNumber page) {
    const std::size_t per_page = format_.bits_per_bitmap_page();
    PageNumber bitmap = 0;
    {
        ASSIGN_OR_RETURN(const View row, Load());
        if (row.is_inline()) {
            if (!row.InlineReaches(page)) return Bit{};
            const auto at = static_cast<std::size_t>(row.inline_bits().data() - row.page.data());
            const std::size_t size = row.inline_bits().size();
            const std::size_t position = page - row.first_page();
            ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(at_.page));
            return Bit{bytes.subspan(at, size), position};
        }
        bitmap = row.pointer(page / per_page);
    }
    if (bitmap == 0) return Bit{};
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(bitmap));
    if (!HasType(bytes, PageType::kBitmap)) return DamagedPage(bitmap, "not a page bitmap");
    return Bit{bytes.subspan(kBitmapHead), page % per_page};
}

base::Result<bool> MapRow::Write(std::span<const std::byte> row) {
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(at_.page));
    auto editor = DataPageEditor::Open(bytes, format_);
    if (!editor || at_.row >= editor->slot_count()) return Damage(" cannot be written");
    if (row.size() > editor->SlotBytes(at_.row) + editor->free_bytes()) return false;
    editor->Replace(at_.row, row, 0);
    return true;
}

base::Status MapRow::MustWrite(std::span<const std::byte> row) {
    ASSIGN_OR_RETURN(const bool written, Write(row));
    return written ? base::Status() : Damage(" cannot be written");
}

base::Status MapRow::Clear() {
    return MustWrite(MakeMapRow(format_));
}

base::Status MapRow::MakeReference() {
    std::vector<std::byte> row;
    {
        ASSIGN_OR_RETURN(const View old, Load());
        row.resize(std::max(old.bytes.size(), format_.fresh_map_bytes));
    }
    row[0] = kMapReference;
    return MustWrite(row);
}

base::Result<std::span<std::byte>> MapRow::AddBitmap(std::size_t range, PageNumber bitmap) {
    std::vector<std::byte> row;
    {
        ASSIGN_OR_RETURN(const View old, Load());
        row.assign(old.bytes.begin(), old.bytes.end());
    }
    row.resize(std::max(row.size(), kMapPointers + kMapPointerBytes * (range + 1)));
    StoreMapPointer(row, range, bitmap);
    RETURN_IF_ERROR(MustWrite(row));
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(bitmap));
    StoreType(bytes, PageType::kBitmap);
    return bytes.subspan(kBitmapHead);
}

}  // namespace jet
