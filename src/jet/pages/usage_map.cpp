#include "jet/pages/usage_map.h"

#include "jet/pages/bit_set_view.h"

#include <algorithm>
#include <cassert>

namespace jet {
namespace {

// A map row that was lengthened in place stays below this, so that one map page serves many maps.
constexpr std::size_t kMaxInlineRow = 512;

}  // namespace

base::Result<std::vector<PageNumber>> UsageMap::Members() const {
    std::vector<PageNumber> members;
    if (!exists()) return members;
    const PageNumber end = store_.page_count();
    const auto collect = [&](std::span<const std::byte> bits, std::uint64_t first) {
        for (std::size_t bit = FindSetBit(bits, 0); bit < bits.size() * 8;
             bit = FindSetBit(bits, bit + 1))
            if (first + bit < end) members.push_back(static_cast<PageNumber>(first + bit));
    };
    ASSIGN_OR_RETURN(const MapRow::View row, row_.Load());
    if (row.is_inline()) {
        collect(row.inline_bits(), row.first_page());
        return members;
    }
    const std::size_t per_page = format_.bits_per_bitmap_page();
    for (std::size_t range = 0; range < row.pointers() && range * per_page < end; ++range) {
        if (row.pointer(range) == 0) continue;
        ASSIGN_OR_RETURN(const PageView bitmap, row_.ReadBitmap(row.pointer(range)));
        collect(bitmap.bytes().subspan(kBitmapHead), std::uint64_t{range} * per_page);
    }
    return members;
}

base::Result<bool> UsageMap::Contains(PageNumber page) const {
    if (!exists()) return false;
    return row_.IsSet(page);
}

base::Status UsageMap::Add(PageNumber page, PageAllocator& allocator) {
    if (!exists()) return {};
    ASSIGN_OR_RETURN(const MapRow::Bit bit, row_.ChangeBit(page));
    if (bit.exists()) {
        bit.Assign(true);
        return {};
    }
    bool is_inline = true;
    {
        ASSIGN_OR_RETURN(const MapRow::View row, row_.Load());
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
        ASSIGN_OR_RETURN(const MapRow::View old, row_.Load());
        row.resize(old.bytes.size());
    }
    const std::size_t needed = kInlineHead + std::size_t{(members.back() - first) / 32} * 4 + 4;
    if (needed > row.size() && needed <= kMaxInlineRow) row.resize(needed);
    if (needed <= row.size()) {
        base::StoreLittle(row.data() + kMapFirstPage, first);
        for (const PageNumber member : members)
            AssignBit(std::span(row).subspan(kInlineHead), member - first, true);
        ASSIGN_OR_RETURN(const bool written, row_.Write(row));
        if (written) return {};
    }
    RETURN_IF_ERROR(ConvertToReference(allocator));
    return AddReference(page, allocator);
}

base::Status UsageMap::ConvertToReference(PageAllocator& allocator) {
    ASSIGN_OR_RETURN(const std::vector<PageNumber> members, Members());
    RETURN_IF_ERROR(row_.MakeReference());
    for (const PageNumber member : members)
        RETURN_IF_ERROR(AddReference(member, allocator));
    return {};
}

base::Status UsageMap::AddReference(PageNumber page, PageAllocator& allocator) {
    const std::size_t range = page / format_.bits_per_bitmap_page();
    bool has_bitmap = false;
    {
        ASSIGN_OR_RETURN(const MapRow::View row, row_.Load());
        has_bitmap = row.pointer(range) != 0;
    }
    if (!has_bitmap) {
        ASSIGN_OR_RETURN(const PageNumber bitmap, allocator.Allocate());
        RETURN_IF_ERROR(row_.AddBitmap(range, bitmap).status());
    }
    ASSIGN_OR_RETURN(const MapRow::Bit bit, row_.ChangeBit(page));
    assert(bit.exists());
    bit.Assign(true);
    return {};
}

base::Status UsageMap::Remove(PageNumber page) {
    ASSIGN_OR_RETURN(const bool member, Contains(page));
    if (!member) return {};
    ASSIGN_OR_RETURN(const MapRow::Bit bit, row_.ChangeBit(page));
    bit.Assign(false);
    return {};
}

base::Status UsageMap::Release(PageAllocator& allocator) {
    if (!exists()) return {};
    std::vector<PageNumber> bitmaps;
    {
        ASSIGN_OR_RETURN(const MapRow::View row, row_.Load());
        for (std::size_t range = 0; !row.is_inline() && range < row.pointers(); ++range)
            if (row.pointer(range) != 0) bitmaps.push_back(row.pointer(range));
    }
    RETURN_IF_ERROR(row_.Clear());
    for (const PageNumber bitmap : bitmaps)
        RETURN_IF_ERROR(allocator.Free(bitmap));
    return {};
}

}  // namespace jet
