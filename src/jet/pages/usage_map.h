// UsageMap: a set of page numbers kept in a row of a map page: the pages of a table, an index or a
// long value column, or those of them with room. A map never shrinks; a small set lies in the row
// itself, a large one on bitmap pages.
#pragma once

#include "base/status.h"
#include "jet/pages/map_row_layout.h"
#include "jet/pages/page_allocator.h"

#include <vector>

namespace jet {

class UsageMap {
public:
    // Both must outlive the map. `row`: where the map is; none() for a map that does not exist,
    // which is empty and takes nothing in.
    UsageMap(PageStore& store, const Format& format, RowPointer row)
        : store_(store), format_(format), row_(row) {}

    bool exists() const { return !row_.none(); }
    // Ascending; pages past the end of the file are left out.
    base::Result<std::vector<PageNumber>> Members() const;
    base::Result<bool> Contains(PageNumber page) const;

    // Changes; they need an open transaction. Adding a member and removing what is none do nothing.
    base::Status Add(PageNumber page, PageAllocator& allocator);
    base::Status Remove(PageNumber page);
    // Gives the bitmap pages back, as before the row itself is deleted; the map is not usable any
    // more.
    base::Status Release(PageAllocator& allocator);

private:
    struct Row {
        PageView page;
        std::span<const std::byte> bytes;
        bool is_inline() const { return bytes[0] == kMapInline; }
        PageNumber first_page() const {
            return base::LoadLittle<std::uint32_t>(bytes.data() + kMapFirstPage);
        }
        std::size_t bits() const { return (bytes.size() - kInlineHead) * 8; }
        std::size_t pointers() const { return MapPointerCount(bytes); }
        PageNumber pointer(std::size_t i) const { return LoadMapPointer(bytes, i); }
    };
    base::Result<Row> Load() const;
    base::Result<std::span<std::byte>> ChangeBits(PageNumber page, std::size_t& bit);
    base::Status AddInline(PageNumber page, PageAllocator& allocator);
    base::Status AddReference(PageNumber page, PageAllocator& allocator);
    base::Status ConvertToReference(PageAllocator& allocator);
    base::Result<bool> WriteRow(std::span<const std::byte> row);

    PageStore& store_;
    const Format& format_;
    RowPointer row_;
};

// An empty map row as the engine makes them. For one page: the map that holds just this page.
std::vector<std::byte> MakeMapRow(const Format& format, PageNumber only_member = 0);

}  // namespace jet
