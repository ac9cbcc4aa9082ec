#include "jet/page_allocator.h"

#include "jet/bit_set_view.h"
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

bool IsBitmapPage(std::span<const std::byte> page) {
    return page[0] == static_cast<std::byte>(PageType::kBitmap);
}

}  // namespace

base::Result<PageAllocator::Map> PageAllocator::Load() {
    Map map;
    ASSIGN_OR_RETURN(map.page, store_.Read(kGlobalMapPage));
    const auto page = DataPage::Parse(map.page.bytes(), format_);
    const auto row = page ? page->Bytes(kGlobalMapRow) : std::nullopt;
    if (!row || row->size() < 9 || std::to_integer<int>((*row)[0]) > 1)
        return errors::DamagedPage(kGlobalMapPage, "the map of free pages is unreadable");
    map.row = *row;
    map.is_inline = (*row)[0] == std::byte{0};
    return map;
}

base::Result<PageNumber> PageAllocator::FindFreeInline(const Map& map) const {
    const PageNumber first = map.first_page();
    const std::span bits = map.row.subspan(5);
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
        const auto bitmap = base::LoadLittle<std::uint32_t>(map.row.data() + 1 + 4 * range);
        if (bitmap == 0) continue;
        ASSIGN_OR_RETURN(const PageView view, store_.Read(bitmap));
        if (!IsBitmapPage(view.bytes())) return errors::DamagedPage(bitmap, "not a page bitmap");
        const std::size_t from = start > range * per_page ? start - range * per_page : 0;
        const std::size_t bit = FindSetBit(view.bytes().subspan(4), from);
        const std::size_t page = range * per_page + bit;
        if (bit < per_page && page < store_.page_count()) return static_cast<PageNumber>(page);
    }
    return PageNumber{0};
}

base::Result<PageNumber> PageAllocator::Allocate() {
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
    RETURN_IF_ERROR(MakeRoomFor(page));
    RETURN_IF_ERROR(SetFree(page, false));
    return page;
}

// Pages past the end of the file count as free in the map, so it has to reach the new page.
base::Status PageAllocator::MakeRoomFor(PageNumber page) {
    ASSIGN_OR_RETURN(const Map map, Load());
    if (map.is_inline) {
        if (page >= map.first_page() && page - map.first_page() < map.inline_bits()) return {};
        return LengthenInline(map, page);
    }
    return EnsureBitmap(page / format_.bits_per_bitmap_page(), {});
}

base::Status PageAllocator::LengthenInline(const Map& map, PageNumber page) {
    if (map.first_page() != 0) return ConvertToReference(map);
    const std::size_t words = page / 32 + 1;
    const std::size_t wanted = 5 + 4 * words;
    const auto data_page = DataPage::Parse(map.page.bytes(), format_);
    if (wanted > map.row.size() + data_page->free_bytes() || wanted < map.row.size())
        return ConvertToReference(map);
    std::vector<std::byte> row(map.row.begin(), map.row.end());
    row.resize(wanted, std::byte{0xFF});
    return WriteRow(row);
}

base::Status PageAllocator::ConvertToReference(const Map& map) {
    const std::size_t per_page = format_.bits_per_bitmap_page();
    std::vector<std::byte> known((map.first_page() + map.inline_bits() + 7) / 8);
    for (std::size_t bit = 0; bit < map.inline_bits(); ++bit)
        AssignBit(known, map.first_page() + bit, TestBit(map.row.subspan(5), bit));
    std::vector<std::byte> row(std::max(map.row.size(), format_.fresh_map_bytes));
    row[0] = std::byte{1};
    RETURN_IF_ERROR(WriteRow(row));
    const std::size_t ranges = store_.page_count() / per_page + 1;
    for (std::size_t range = 0; range < ranges; ++range) {
        const std::size_t from = std::min(known.size(), range * per_page / 8);
        RETURN_IF_ERROR(
            EnsureBitmap(range, std::span<const std::byte>(known).subspan(
                                    from, std::min(known.size() - from, per_page / 8))));
    }
    return {};
}

// `known_bits`: what is known of the range; the rest is free where no page exists yet.
base::Status PageAllocator::EnsureBitmap(std::size_t range, std::span<const std::byte> known_bits) {
    const std::size_t per_page = format_.bits_per_bitmap_page();
    std::vector<std::byte> row;
    {
        ASSIGN_OR_RETURN(const Map map, Load());
        if (range >= map.pointers()) return errors::FileTooLarge();
        if (base::LoadLittle<std::uint32_t>(map.row.data() + 1 + 4 * range) != 0) return {};
        row.assign(map.row.begin(), map.row.end());
    }
    const PageNumber last_used = store_.page_count();
    ASSIGN_OR_RETURN(const PageNumber bitmap, store_.Extend());
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(bitmap));
    bytes[0] = static_cast<std::byte>(PageType::kBitmap);
    bytes[1] = std::byte{1};
    const std::span<std::byte> bits = bytes.subspan(4);
    for (std::size_t bit = 0; bit < per_page; ++bit) {
        const std::size_t page = range * per_page + bit;
        const bool known = bit < known_bits.size() * 8;
        AssignBit(bits, bit,
                  page != bitmap && (known ? TestBit(known_bits, bit) : page > last_used));
    }
    base::StoreLittle(row.data() + 1 + 4 * range, bitmap);
    RETURN_IF_ERROR(WriteRow(row));
    // The new bitmap page may itself lie in a range that has none yet.
    return MakeRoomFor(bitmap);
}

base::Status PageAllocator::WriteRow(std::span<const std::byte> row) {
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(kGlobalMapPage));
    auto editor = DataPageEditor::Open(bytes, format_);
    if (!editor || editor->slot_count() == 0 ||
        row.size() > editor->SlotBytes(kGlobalMapRow) + editor->free_bytes())
        return errors::DamagedPage(kGlobalMapPage, "the map of free pages cannot be written");
    editor->Replace(kGlobalMapRow, row, 0);
    return {};
}

base::Status PageAllocator::SetFree(PageNumber page, bool free) {
    const std::size_t per_page = format_.bits_per_bitmap_page();
    PageNumber bitmap = kGlobalMapPage;
    std::size_t bit = page;
    std::size_t at = 4;
    std::size_t size = per_page / 8;
    {
        ASSIGN_OR_RETURN(const Map map, Load());
        if (map.is_inline) {
            if (page < map.first_page() || page - map.first_page() >= map.inline_bits())
                return errors::DamagedPage(kGlobalMapPage, "the map of free pages is too short");
            bit = page - map.first_page();
            at = static_cast<std::size_t>(map.row.data() - map.page.data()) + 5;
            size = map.row.size() - 5;
        } else {
            if (page / per_page >= map.pointers()) return errors::FileTooLarge();
            bitmap = base::LoadLittle<std::uint32_t>(map.row.data() + 1 + 4 * (page / per_page));
            bit = page % per_page;
            if (bitmap == 0 && !free) return {};  // no bitmap: nothing in the range is free
        }
    }
    if (bitmap == 0) {
        RETURN_IF_ERROR(EnsureBitmap(page / per_page, {}));
        return SetFree(page, free);
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
        return TestBit(map.row.subspan(5), page - map.first_page());
    }
    const std::size_t per_page = format_.bits_per_bitmap_page();
    if (page / per_page >= map.pointers()) return false;
    const auto bitmap = base::LoadLittle<std::uint32_t>(map.row.data() + 1 + 4 * (page / per_page));
    if (bitmap == 0) return false;
    ASSIGN_OR_RETURN(const PageView view, store_.Read(bitmap));
    if (!IsBitmapPage(view.bytes())) return errors::DamagedPage(bitmap, "not a page bitmap");
    return TestBit(view.bytes().subspan(4), page % per_page);
}

base::Status PageAllocator::Free(PageNumber page) {
    if (page < kFirstAllocatable || page >= store_.page_count())
        return errors::DamagedPage(page, "a page that cannot be free was to be freed");
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
