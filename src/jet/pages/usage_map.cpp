#include "jet/pages/usage_map.h"

#include "jet/pages/bit_set_view.h"
#include "jet/storage_errors.h"

#include <algorithm>
#include <cassert>

namespace jet {
namespace {

// A map row that was lengthened in place stays below this, so that one map page serves many maps.
constexpr std::size_t kMaxInlineRow = 512;

}  // namespace

std::vector<std::byte> MakeMapRow(const Format& format, PageNumber only_member) {
    std::vector<std::byte> row(format.fresh_map_bytes);
    if (only_member == 0) return row;
    const std::size_t bits = (row.size() - kInlineHead) * 8;
    const PageNumber first = only_member < bits ? 0 : only_member & ~7U;
    base::StoreLittle(row.data() + kMapFirstPage, first);
    AssignBit(std::span(row).subspan(kInlineHead), only_member - first, true);
    return row;
}

base::Result<UsageMap::Row> UsageMap::Load() const {
    Row row;
    ASSIGN_OR_RETURN(row.page, store_.Read(row_.page));
    const auto page = DataPage::Parse(row.page.bytes(), format_);
    const auto bytes = page ? page->Bytes(row_.row) : std::nullopt;
    if (!bytes || bytes->empty() || std::to_integer<int>(bytes->front()) > 1)
        return errors::DamagedPage(row_.page, "a page map is unreadable");
    row.bytes = *bytes;
    if (row.is_inline() && bytes->size() < kInlineHead)
        return errors::DamagedPage(row_.page, "a page map is unreadable");
    return row;
}

base::Result<std::vector<PageNumber>> UsageMap::Members() const {
    std::vector<PageNumber> members;
    if (!exists()) return members;
    const PageNumber end = store_.page_count();
    const auto collect = [&](std::span<const std::byte> bits, std::uint64_t first) {
        for (std::size_t bit = FindSetBit(bits, 0); bit < bits.size() * 8;
             bit = FindSetBit(bits, bit + 1))
            if (first + bit < end) members.push_back(static_cast<PageNumber>(first + bit));
    };
    ASSIGN_OR_RETURN(const Row row, Load());
    if (row.is_inline()) {
        collect(row.bytes.subspan(kInlineHead), row.first_page());
        return members;
    }
    const std::size_t per_page = format_.bits_per_bitmap_page();
    for (std::size_t range = 0; range < row.pointers() && range * per_page < end; ++range) {
        if (row.pointer(range) == 0) continue;
        ASSIGN_OR_RETURN(const PageView bitmap, store_.Read(row.pointer(range)));
        if (bitmap.bytes()[0] != static_cast<std::byte>(PageType::kBitmap))
            return errors::DamagedPage(row.pointer(range), "not a page bitmap");
        collect(bitmap.bytes().subspan(kBitmapHead), std::uint64_t{range} * per_page);
    }
    return members;
}

base::Result<bool> UsageMap::Contains(PageNumber page) const {
    if (!exists()) return false;
    ASSIGN_OR_RETURN(const Row row, Load());
    if (row.is_inline()) {
        if (page < row.first_page() || page - row.first_page() >= row.bits()) return false;
        return TestBit(row.bytes.subspan(kInlineHead), page - row.first_page());
    }
    const std::size_t per_page = format_.bits_per_bitmap_page();
    if (page / per_page >= row.pointers() || row.pointer(page / per_page) == 0) return false;
    ASSIGN_OR_RETURN(const PageView bitmap, store_.Read(row.pointer(page / per_page)));
    if (bitmap.bytes()[0] != static_cast<std::byte>(PageType::kBitmap))
        return errors::DamagedPage(row.pointer(page / per_page), "not a page bitmap");
    return TestBit(bitmap.bytes().subspan(kBitmapHead), page % per_page);
}

// The bits among which the page's bit lies, for changing, and the bit's place; empty: the map does
// not reach it.
base::Result<std::span<std::byte>> UsageMap::ChangeBits(PageNumber page, std::size_t& bit) {
    PageNumber target = row_.page;
    std::size_t at = kBitmapHead;
    std::size_t size = format_.page_size - kBitmapHead;
    {
        ASSIGN_OR_RETURN(const Row row, Load());
        if (row.is_inline()) {
            if (page < row.first_page() || page - row.first_page() >= row.bits())
                return std::span<std::byte>();
            bit = page - row.first_page();
            at = static_cast<std::size_t>(row.bytes.data() - row.page.data()) + kInlineHead;
            size = row.bytes.size() - kInlineHead;
        } else {
            const std::size_t range = page / format_.bits_per_bitmap_page();
            if (range >= row.pointers() || row.pointer(range) == 0) return std::span<std::byte>();
            target = row.pointer(range);
            bit = page % format_.bits_per_bitmap_page();
        }
    }
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(target));
    if (target != row_.page && bytes[0] != static_cast<std::byte>(PageType::kBitmap))
        return errors::DamagedPage(target, "not a page bitmap");
    return bytes.subspan(at, size);
}

base::Status UsageMap::Add(PageNumber page, PageAllocator& allocator) {
    if (!exists()) return {};
    std::size_t bit = 0;
    ASSIGN_OR_RETURN(const std::span<std::byte> bits, ChangeBits(page, bit));
    if (!bits.empty()) {
        AssignBit(bits, bit, true);
        return {};
    }
    bool is_inline = true;
    {
        ASSIGN_OR_RETURN(const Row row, Load());
        is_inline = row.is_inline();
    }
    return is_inline ? AddInline(page, allocator) : AddReference(page, allocator);
}

base::Status UsageMap::AddInline(PageNumber page, PageAllocator& allocator) {
    ASSIGN_OR_RETURN(std::vector<PageNumber> members, Members());
    members.insert(std::ranges::upper_bound(members, page), page);
    const PageNumber first = members.front() & ~7U;
    std::vector<std::byte> row;
    {
        ASSIGN_OR_RETURN(const Row old, Load());
        row.assign(old.bytes.size(), std::byte{0});
    }
    const std::size_t needed = 5 + (members.back() - first) / 32 * 4 + 4;
    if (needed > row.size() && needed <= kMaxInlineRow) row.resize(needed);
    if (needed <= row.size()) {
        base::StoreLittle(row.data() + kMapFirstPage, first);
        for (const PageNumber member : members)
            AssignBit(std::span(row).subspan(kInlineHead), member - first, true);
        ASSIGN_OR_RETURN(const bool written, WriteRow(row));
        if (written) return {};
    }
    RETURN_IF_ERROR(ConvertToReference(allocator));
    return AddReference(page, allocator);
}

base::Status UsageMap::ConvertToReference(PageAllocator& allocator) {
    ASSIGN_OR_RETURN(const std::vector<PageNumber> members, Members());
    std::vector<std::byte> row;
    {
        ASSIGN_OR_RETURN(const Row old, Load());
        row.assign(std::max(old.bytes.size(), format_.fresh_map_bytes), std::byte{0});
    }
    row[0] = kMapReference;
    ASSIGN_OR_RETURN(const bool written, WriteRow(row));
    if (!written) return errors::DamagedPage(row_.page, "a page map cannot grow");
    for (const PageNumber member : members)
        RETURN_IF_ERROR(AddReference(member, allocator));
    return {};
}

base::Status UsageMap::AddReference(PageNumber page, PageAllocator& allocator) {
    const std::size_t range = page / format_.bits_per_bitmap_page();
    std::vector<std::byte> row;
    {
        ASSIGN_OR_RETURN(const Row old, Load());
        if (range >= old.pointers() || old.pointer(range) == 0)
            row.assign(old.bytes.begin(), old.bytes.end());
    }
    if (!row.empty()) {
        ASSIGN_OR_RETURN(const PageNumber bitmap, allocator.Allocate());
        ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(bitmap));
        bytes[0] = static_cast<std::byte>(PageType::kBitmap);
        bytes[1] = std::byte{1};
        row.resize(std::max(row.size(), 1 + 4 * (range + 1)));
        StoreMapPointer(row, range, bitmap);
        ASSIGN_OR_RETURN(const bool written, WriteRow(row));
        if (!written) return errors::DamagedPage(row_.page, "a page map cannot be written");
    }
    std::size_t bit = 0;
    ASSIGN_OR_RETURN(const std::span<std::byte> bits, ChangeBits(page, bit));
    assert(!bits.empty());
    AssignBit(bits, bit, true);
    return {};
}

base::Status UsageMap::Remove(PageNumber page) {
    ASSIGN_OR_RETURN(const bool member, Contains(page));
    if (!member) return {};
    std::size_t bit = 0;
    ASSIGN_OR_RETURN(const std::span<std::byte> bits, ChangeBits(page, bit));
    AssignBit(bits, bit, false);
    return {};
}

base::Status UsageMap::Release(PageAllocator& allocator) {
    if (!exists()) return {};
    std::vector<PageNumber> bitmaps;
    {
        ASSIGN_OR_RETURN(const Row row, Load());
        for (std::size_t range = 0; !row.is_inline() && range < row.pointers(); ++range)
            if (row.pointer(range) != 0) bitmaps.push_back(row.pointer(range));
    }
    ASSIGN_OR_RETURN(const bool written, WriteRow(MakeMapRow(format_)));
    if (!written) return errors::DamagedPage(row_.page, "a page map cannot be written");
    for (const PageNumber bitmap : bitmaps)
        RETURN_IF_ERROR(allocator.Free(bitmap));
    return {};
}

// False: the map page has no room for a row of this length.
base::Result<bool> UsageMap::WriteRow(std::span<const std::byte> row) {
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, store_.Change(row_.page));
    auto editor = DataPageEditor::Open(bytes, format_);
    if (!editor || row_.row >= editor->slot_count())
        return errors::DamagedPage(row_.page, "a page map is unreadable");
    if (row.size() > editor->SlotBytes(row_.row) + editor->free_bytes()) return false;
    editor->Replace(row_.row, row, 0);
    return true;
}

}  // namespace jet
