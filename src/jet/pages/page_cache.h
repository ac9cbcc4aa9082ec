// PageCache: pages of a file in memory, up to a limit; evicts by the clock algorithm. An evicted
// page stays valid in the views that hold it. Not thread-safe; the store
// locks.
#pragma once

#include "jet/pages/page_transaction.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace jet {

class PageCache {
public:
    // Keeps at most `capacity` pages, at least 16.
    explicit PageCache(std::size_t capacity);

    // null: not there.
    SharedPage Find(PageNumber page);
    bool Contains(PageNumber page) const { return SlotOf(page) != kNoSlot; }
    // Replaces the cached content of this page.
    void Put(PageNumber page, SharedPage bytes);
    void Erase(PageNumber page);
    std::size_t size() const { return used_; }

private:
    static constexpr std::uint32_t kNoSlot = UINT32_MAX;

    struct Entry {
        PageNumber page = 0;
        SharedPage bytes;  // null: it is among free_
        bool asked_for = false;
    };
    std::uint32_t SlotOf(PageNumber page) const {
        return page < slots_.size() ? slots_[page] : kNoSlot;
    }
    std::uint32_t FreeEntry();
    void ForgetEntry(std::uint32_t slot);

    std::size_t capacity_;
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> free_;  // places among entries_
    // The place of each page of the file among entries_, or kNoSlot: four bytes a page, 2 MiB for
    // the largest file.
    std::vector<std::uint32_t> slots_;
    std::size_t used_ = 0;
    std::size_t hand_ = 0;
};

}  // namespace jet
