#include "jet/pages/page_allocator.h"

#include "jet/errors.h"
#include "jet/pages/bit_set_view.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace jet {
namespace {

// Header, global maps and the four system definitions are never free, whatever a map says.
constexpr PageNumber kFirstAllocatable = 6;
constexpr std::size_t kPagesPerWord = 32;

}  // namespace

base::Result<PageNumber> PageAllocator::FindFreeInline(const MapRow::View& map) const {
    const PageNumber first = map.first_page();
    const std::span bits = map.inline_bits();
    const PageNumber from = std::max({lowest_candidate_, first, kFirstAllocatable});
    const std::size_t bit = FindSetBit(bits, from - first);
    if (bit >= bits.size() * 8) return PageNumber{0};
    const auto page = static_cast<PageNumber>(first + bit);
    return page < store_.page_count() ? page : PageNumber{0};
}

base::Result<PageNumber> PageAllocator::FindFree(const MapRow::View& map) {
    if (map.is_inline()) return FindFreeInline(map);
    const std::size_t per_page = format_.bits_per_bitmap_page();
    const PageNumber start = std::max(lowest_candidate_, kFirstAllocatable);
    for (std::size_t range = start / per_page; range < map.pointers(); ++range) {
        if (range * per_page >= store_.page_count()) break;
        const PageNumber bitmap = map.pointer(range);
        if (bitmap == 0) continue;
        ASSIGN_OR_RETURN(const PageView view, map_.ReadBitmap(bitmap));
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
        ASSIGN_OR_RETURN(const MapRow::View map, map_.Load());
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
        return FileIsFull();
    ASSIGN_OR_RETURN(const PageNumber page, store_.Extend());
    RETURN_IF_ERROR(Cover());
    RETURN_IF_ERROR(SetFree(page, false));
    return page;
}

// ------------------------------------------------------------------------- the map's reach

bool PageAllocator::Reaches(const MapRow::View& map, PageNumber count) const {
    if (map.is_inline()) return map.first_page() == 0 && map.inline_count() >= count;
    const std::size_t per_page = format_.bits_per_bitmap_page();
    for (std::size_t range = 0; range * per_page < count; ++range)
        if (map.pointer(range) == 0) return false;
    return true;
}

base::Status PageAllocator::Cover() {
    std::vector<std::byte> known;
    {
        ASSIGN_OR_RETURN(const MapRow::View map, map_.Load());
        if (Reaches(map, store_.page_count())) return {};
        if (map.is_inline()) {
            known = KnownFree(map);
            ASSIGN_OR_RETURN(const bool is_done, CoverInline(map, known));
            if (is_done) return {};
            RETURN_IF_ERROR(map_.MakeReference());
        }
    }
    const std::size_t per_page = format_.bits_per_bitmap_page();
    // A bitmap page that is added may itself begin another range.
    for (std::size_t range = 0; range * per_page < store_.page_count(); ++range)
        RETURN_IF_ERROR(EnsureBitmap(range, known));
    return {};
}

// One bit for each page of the file.
std::vector<std::byte> PageAllocator::KnownFree(const MapRow::View& map) const {
    const PageNumber count = store_.page_count();
    std::vector<std::byte> known((count + 7) / 8);
    const std::uint64_t first = map.first_page();
    for (std::size_t bit = 0; bit < map.inline_count() && first + bit < count; ++bit)
        AssignBit(known, first + bit, TestBit(map.inline_bits(), bit));
    return known;
}

// false: page 1 has no room for so long a map.
base::Result<bool> PageAllocator::CoverInline(const MapRow::View& map,
                                              std::span<const std::byte> known) {
    const PageNumber count = store_.page_count();
    const std::size_t words = (count + kPagesPerWord - 1) / kPagesPerWord;
    std::vector<std::byte> row(std::max(kInlineHead + 4 * words, map.bytes.size()),
                               std::byte{0xFF});
    std::fill_n(row.begin(), kInlineHead, std::byte{0});
    const std::span bits = std::span(row).subspan(kInlineHead);
    for (PageNumber page = 0; page < count; ++page)
        AssignBit(bits, page, TestBit(known, page));
    return map_.Write(row);
}

// `known`: the free ones among the file's first pages; the others are in use, and those past the
// end of the file free.
base::Status PageAllocator::EnsureBitmap(std::size_t range, std::span<const std::byte> known) {
    const std::size_t per_page = format_.bits_per_bitmap_page();
    {
        ASSIGN_OR_RETURN(const MapRow::View map, map_.Load());
        if (map.pointer(range) != 0) return {};
    }
    ASSIGN_OR_RETURN(const PageNumber bitmap, store_.Extend());
    ASSIGN_OR_RETURN(const std::span<std::byte> bits, map_.AddBitmap(range, bitmap));
    for (std::size_t bit = 0; bit < per_page; ++bit) {
        const std::size_t page = range * per_page + bit;
        AssignBit(bits, bit, page > bitmap || (page < known.size() * 8 && TestBit(known, page)));
    }
    return SetFree(bitmap, false);  // it may lie in a range that had its bitmap before
}

// ------------------------------------------------------------------------------- single bits

// Where the map does not reach, nothing is free and nothing becomes so.
base::Status PageAllocator::SetFree(PageNumber page, bool free) {
    ASSIGN_OR_RETURN(const MapRow::Bit bit, map_.ChangeBit(page));
    if (bit.exists()) bit.Assign(free);
    return {};
}

base::Result<bool> PageAllocator::IsFree(PageNumber page) {
    return map_.IsSet(page);
}

base::Status PageAllocator::Free(PageNumber page) {
    if (page < kFirstAllocatable || page >= store_.page_count())
        return DamagedPage(page, "a page that cannot be free was to be freed");
    RETURN_IF_ERROR(Cover());
    ASSIGN_OR_RETURN(const bool already, IsFree(page));
    if (already) return DamagedPage(page, "the page is free already");
    RETURN_IF_ERROR(SetFree(page, true));
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(page));
    bytes[kPageTypeAt] = static_cast<std::byte>(PageType::kReleased);
    lowest_candidate_ = std::min(lowest_candidate_, page);
    ++pages_freed_;
    return {};
}

}  // namespace jet
