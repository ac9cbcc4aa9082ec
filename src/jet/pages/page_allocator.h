// PageAllocator: gives out pages of the file and takes them back, by the global map of free pages
// (row 0 of page 1). Freed pages are given out again, the lowest first; the file grows only when
// no page is free. Changes need an open transaction of the store.
// A map that does not reach every page, as some programs leave it when they add pages or when the
// map's start has moved on: what it does not reach is in use, and the first page given out or taken
// back makes it cover the file.
#pragma once

#include "base/status.h"
#include "jet/pages/map_row.h"

#include <vector>

namespace jet {

class PageAllocator {
public:
    // Both must outlive the allocator.
    PageAllocator(PageStore& store, const Format& format)
        : store_(store), format_(format),
          map_(store, format, {kGlobalMapPage, kGlobalMapRow}, "the map of free pages") {}

    // A page of zeros. 3026: the file has reached the largest size of its format.
    base::Result<PageNumber> Allocate();
    // Requires: nothing points to the page any more. Damage when the page is free already.
    base::Status Free(PageNumber page);
    base::Result<bool> IsFree(PageNumber page);
    // Drops what is cached. Call after a rollback.
    void Forget() { lowest_candidate_ = 0; }
    // Counts pages freed since opening, so that a scan can tell a reused page from a damaged one.
    std::uint64_t pages_freed() const { return pages_freed_; }

private:
    static constexpr std::uint8_t kGlobalMapRow = 0;

    base::Result<PageNumber> FindFree(const MapRow::View& map);  // 0: none
    base::Result<PageNumber> FindFreeInline(const MapRow::View& map) const;
    base::Result<PageNumber> Extend();
    // Whether the map says something of each of the first `count` pages.
    bool Reaches(const MapRow::View& map, PageNumber count) const;
    // Makes the map reach every page of the file.
    base::Status Cover();
    std::vector<std::byte> KnownFree(const MapRow::View& map) const;
    base::Result<bool> CoverInline(const MapRow::View& map, std::span<const std::byte> known);
    base::Status EnsureBitmap(std::size_t range, std::span<const std::byte> known);
    base::Status SetFree(PageNumber page, bool free);

    PageStore& store_;
    const Format& format_;
    MapRow map_;
    PageNumber lowest_candidate_ = 0;
    std::uint64_t pages_freed_ = 0;
};

}  // namespace jet
