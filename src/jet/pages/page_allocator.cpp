#include "jet/pages/page_allocator.h"

#include "jet/pages/bit_set_view.h"
#include "jet/storage_errors.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace jet {
namespace {

constexpr PageNumber kGlobalMapPage = 1;
constexpr std::size_t kGlobalMapRow = 0;
// Header, global maps and the four system definitions are never free, whatever a map says.
constexpr PageNumber kFirstAllocatable = 6;
constexpr std::size_t kPagesPerWord = 32;

bool IsBitmapPage(std::span<const std::byte> page) {
    return page[0] == static_cast<std::byte>(PageType::kBitmap);
}

}  // namespace

base::Result<PageAllocator::Map> PageAllocator::Load() {
    Map map;
    ASSIGN_OR_RETURN(map.page, store_.Read(kGlobalMapPage));
    const auto page = DataPage::Parse(map.page.bytes(), format_);
    const auto row = page ? page->Bytes(kGlobalMapRow) : std::nullopt;
    if (!row || row->empty() || std::to_integer<int>(row->front()) > 1)
        return errors::DamagedPage(kGlobalMapPage, "the map of free pages is unreadable");
    map.row = *row;
    map.is_inline = row->front() == kMapInline;
    if (map.is_inline && row->size() < kInlineHead)
        return errors::DamagedPage(kGlobalMapPage, "the map of free pages is unreadable");
    return map;
}

base::Result<PageNumber> PageAllocator::FindFreeInline(const Map& map) const {
    const PageNumber first = map.first_page();
    const std::span bits = map.row.subspan(kInlineHead);
    const PageNumber from = std::max({lowest_candidate_, first, kFirstAllocatable});
    const std::size_t bit = FindSetBit(bits, from - first);
    if (bit >= bits.size() * 8) return PageNumber{0};
    const auto page = static_cast<PageNumber>(first + bit);
    return page < store_.page_count() ? page : PageNumber{0};
}

base::Result<PageNumber> PageAllocator::FindFree(const Map& map) {
    if (map.is_inline) return FindFreeInline(map);
    const std::size_t per_page = format_.bits_per_bitmap_page();
    const PageNumber start = std::max(lowest_candidate_, kFirstAllocatable);
    for (std::size_t range = start / per_page; range < map.pointers(); ++range) {
        if (range * per_page >= store_.page_count()) break;
        const PageNumber bitmap = map.pointer(range);
        if (bitmap == 0) continue;
        ASSIGN_OR_RETURN(const PageView view, store_.Read(bitmap));
        if (!IsBitmapPage(view.bytes())) return errors::DamagedPage(bitmap, "not a page bitmap");
        const std::size_t from = start > range * per_page ? start - range * per_page : 0;
        const std::size_t bit = FindSetBit(view.bytes().subspan(kBitmapHead), from);
        const std::size_t page = range * per_page + bit;
        if (bit < per_page && page < store_.page_count()) return static_cast<PageNumber>(page);
    }
    return PageNumber{0};
}

base::Result<PageNumber> PageAllocator::Allocate() {
    RETURN_IF_ERROR(Cover());
    PageNumber page = 0;
    {
        ASSIGN_OR_RETURN(const Map map, Load());
        ASSIGN_OR_RETURN(page, FindFree(map));
    }
    if (page == 0) {
        lowest_candidate_ = store_.page_count();
        return Extend();
    }
    lowest_candidate_ = page + 1;
    RETURN_IF_ERROR(SetFree(page, false));
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(page));
    std::ranges::fill(bytes, std::byte{0});
    return page;
}

base::Result<PageNumber> PageAllocator::Extend() {
    if (std::uint64_t{store_.page_count() + 4} * format_.page_size > format_.max_file_bytes)
        return errors::FileTooLarge();
    ASSIGN_OR_RETURN(const PageNumber page, store_.Extend());
    RETURN_IF_ERROR(Cover());
    RETURN_IF_ERROR(SetFree(page, false));
    return page;
}

// ------------------------------------------------------------------------- the map's reach

bool PageAllocator::Reaches(const Map& map, PageNumber count) const {
    if (map.is_inline) return map.first_page() == 0 && map.inline_bits() >= count;
    const std::size_t per_page = format_.bits_per_bitmap_page();
    for (std::size_t range = 0; range * per_page < count; ++range)
        if (map.pointer(range) == 0) return false;
    return true;
}

base::Status PageAllocator::Cover() {
    std::vector<std::byte> known;
    {
        ASSIGN_OR_RETURN(const Map map, Load());
        if (Reaches(map, store_.page_count())) return {};
        if (map.is_inline) {
            known = KnownFree(map);
            ASSIGN_OR_RETURN(const bool is_done, CoverInline(map, known));
            if (is_done) return {};
            RETURN_IF_ERROR(MakeReference(map));
        }
    }
    const std::size_t per_page = format_.bits_per_bitmap_page();
    // A bitmap page that is added may itself begin another range.
    for (std::size_t range = 0; range * per_page < store_.page_count(); ++range)
        RETURN_IF_ERROR(EnsureBitmap(range, known));
    return {};
}

// One bit for each page of the file.
std::vector<std::byte> PageAllocator::KnownFree(const Map& map) const {
    const PageNumber count = store_.page_count();
    std::vector<std::byte> known((count + 7) / 8);
    const std::uint64_t first = map.first_page();
    for (std::size_t bit = 0; bit < map.inline_bits() && first + bit < count; ++bit)
        AssignBit(known, first + bit, TestBit(map.row.subspan(kInlineHead), bit));
    return known;
}

// false: page 1 has no room for so long a map.
base::Result<bool> PageAllocator::CoverInline(const Map& map, std::span<const std::byte> known) {
    const PageNumber count = store_.page_count();
    const std::size_t words = (count + kPagesPerWord - 1) / kPagesPerWord;
    std::vector<std::byte> row(std::max(kInlineHead + 4 * words, map.row.size()), std::byte{0xFF});
    std::fill_n(row.begin(), kInlineHead, std::byte{0});
    const std::span bits = std::span(row).subspan(kInlineHead);
    for (PageNumber page = 0; page < count; ++page)
        AssignBit(bits, page, TestBit(known, page));
    return WriteRow(row);
}

base::Status PageAllocator::MakeReference(const Map& map) {
    std::vector<std::byte> row(std::max(map.row.size(), format_.fresh_map_bytes));
    row[0] = kMapReference;
    return MustWriteRow(row);
}

// `known`: the free ones among the file's first pages; the others are in use, and those past the
// end of the file free.
base::Status PageAllocator::EnsureBitmap(std::size_t range, std::span<const std::byte> known) {
    const std::size_t per_page = format_.bits_per_bitmap_page();
    std::vector<std::byte> row;
    {
        ASSIGN_OR_RETURN(const Map map, Load());
        if (map.pointer(range) != 0) return {};
        row.assign(map.row.begin(), map.row.end());
    }
    ASSIGN_OR_RETURN(const PageNumber bitmap, store_.Extend());
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(bitmap));
    bytes[0] = static_cast<std::byte>(PageType::kBitmap);
    bytes[1] = std::byte{1};
    const std::span<std::byte> bits = bytes.subspan(kBitmapHead);
    for (std::size_t bit = 0; bit < per_page; ++bit) {
        const std::size_t page = range * per_page + bit;
        AssignBit(bits, bit, page > bitmap || (page < known.size() * 8 && TestBit(known, page)));
    }
    row.resize(std::max(row.size(), kMapPointers + kMapPointerBytes * (range + 1)));
    StoreMapPointer(row, range, bitmap);
    RETURN_IF_ERROR(MustWriteRow(row));
    return SetFree(bitmap, false);  // it may lie in a range that had its bitmap before
}

// false: page 1 has no room for it.
base::Result<bool> PageAllocator::WriteRow(std::span<const std::byte> row) {
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(kGlobalMapPage));
    auto editor = DataPageEditor::Open(bytes, format_);
    if (!editor || editor->slot_count() == 0)
        return errors::DamagedPage(kGlobalMapPage, "the map of free pages cannot be written");
    if (row.size() > editor->SlotBytes(kGlobalMapRow) + editor->free_bytes()) return false;
    editor->Replace(kGlobalMapRow, row, 0);
    return true;
}

base::Status PageAllocator::MustWriteRow(std::span<const std::byte> row) {
    ASSIGN_OR_RETURN(const bool is_written, WriteRow(row));
    if (is_written) return {};
    return errors::DamagedPage(kGlobalMapPage, "the map of free pages cannot be written");
}

// ------------------------------------------------------------------------------- single bits

// Requires: the map covers the page, or the page has no bitmap and is in use.
base::Status PageAllocator::SetFree(PageNumber page, bool free) {
    const std::size_t per_page = format_.bits_per_bitmap_page();
    PageNumber bitmap = kGlobalMapPage;
    std::size_t bit = page;
    std::size_t at = kBitmapHead;
    std::size_t size = per_page / 8;
    {
        ASSIGN_OR_RETURN(const Map map, Load());
        if (map.is_inline) {
            at = static_cast<std::size_t>(map.row.data() - map.page.data()) + kInlineHead;
            size = map.row.size() - kInlineHead;
        } else {
            bitmap = map.pointer(page / per_page);
            bit = page % per_page;
            if (bitmap == 0) return {};  // no bitmap: nothing in the range is free
        }
    }
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(bitmap));
    if (bitmap != kGlobalMapPage && !IsBitmapPage(bytes))
        return errors::DamagedPage(bitmap, "not a page bitmap");
    AssignBit(bytes.subspan(at, size), bit, free);
    return {};
}

base::Result<bool> PageAllocator::IsFree(PageNumber page) {
    ASSIGN_OR_RETURN(const Map map, Load());
    if (map.is_inline) {
        if (page < map.first_page() || page - map.first_page() >= map.inline_bits()) return false;
        return TestBit(map.row.subspan(kInlineHead), page - map.first_page());
    }
    const std::size_t per_page = format_.bits_per_bitmap_page();
    const PageNumber bitmap = map.pointer(page / per_page);
    if (bitmap == 0) return false;
    ASSIGN_OR_RETURN(const PageView view, store_.Read(bitmap));
    if (!IsBitmapPage(view.bytes())) return errors::DamagedPage(bitmap, "not a page bitmap");
    return TestBit(view.bytes().subspan(kBitmapHead), page % per_page);
}

base::Status PageAllocator::Free(PageNumber page) {
    if (page < kFirstAllocatable || page >= store_.page_count())
        return errors::DamagedPage(page, "a page that cannot be free was to be freed");
    RETURN_IF_ERROR(Cover());
    ASSIGN_OR_RETURN(const bool already, IsFree(page));
    if (already) return errors::DamagedPage(page, "the page is free already");
    RETURN_IF_ERROR(SetFree(page, true));
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(page));
    bytes[0] = static_cast<std::byte>(PageType::kReleased);
    lowest_candidate_ = std::min(lowest_candidate_, page);
    ++pages_freed_;
    return {};
}

}  // namespace jet
