// PageCache: pages of a file in memory, up to a limit; evicts by the clock algorithm. An evicted
// page stays valid in the views that hold it. Not thread-safe; the store
// locks.
#pragma once

#include "jet/pages/page_transaction.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace jet {

class PageCache {
public:
    // Keeps at most `capacity` pages, at least 16.
    explicit PageCache(std::size_t capacity);

    // null: not there.
    SharedPage Find(PageNumber page);
    bool Contains(PageNumber page) const { return slots_.contains(page); }
    // Replaces the cached content of this page.
    void Put(PageNumber page, SharedPage bytes);
    void Erase(PageNumber page);
    std::size_t size() const { return slots_.size(); }

private:
    struct Entry {
        PageNumber page = 0;
        SharedPage bytes;  // null: the entry is free
        bool asked_for = false;
    };
    std::size_t FreeEntry();

    std::size_t capacity_;
    std::vector<Entry> entries_;
    std::unordered_map<PageNumber, std::size_t> slots_;
    std::size_t hand_ = 0;
};

}  // namespace jet
