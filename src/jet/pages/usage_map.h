// UsageMap: a set of page numbers kept in a row of a map page: the pages of a table, an index or a
// long value column, or those of them with room. A map never shrinks; a small set lies in the row
// itself, a large one on bitmap pages.
#pragma once

#include "base/status.h"
#include "jet/pages/map_row.h"
#include "jet/pages/page_allocator.h"

#include <vector>

namespace jet {

class UsageMap {
public:
    // Both must outlive the map. `row`: where the map is; none() for a map that does not exist,
    // which is empty and ignores Add.
    UsageMap(PageStore& store, const Format& format, RowPointer row)
        : store_(store), format_(format), row_(store, format, row, "a page map") {}

    bool exists() const { return !row_.at().none(); }
    // Ascending; pages past the end of the file are left out.
    base::Result<std::vector<PageNumber>> Members() const;
    base::Result<bool> Contains(PageNumber page) const;

    // Changes; they need an open transaction. Adding twice, or removing a non-member, is a no-op.
    base::Status Add(PageNumber page, PageAllocator& allocator);
    base::Status Remove(PageNumber page);
    // Gives the bitmap pages back, as before the row itself is deleted; the map is not usable any
    // more.
    base::Status Release(PageAllocator& allocator);

private:
    base::Status AddInline(PageNumber page, PageAllocator& allocator);
    base::Status AddReference(PageNumber page, PageAllocator& allocator);
    base::Status ConvertToReference(PageAllocator& allocator);

    PageStore& store_;
    const Format& format_;
    MapRow row_;
};

}  // namespace jet
