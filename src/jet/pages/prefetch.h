// Prefetch: pages that a long scan has read ahead. One buffer is used for every piece of the scan,
// so that the scan, which asks for each page once, does not evict the cache. Not thread-safe.
#pragma once

#include "jet/pages/page_transaction.h"

#include <cstddef>
#include <span>

namespace jet {

class Prefetch {
public:
    explicit Prefetch(std::size_t page_size) : page_size_(page_size) {}

    // A buffer to read `count` pages into; the pages prefetched before are dropped.
    std::span<std::byte> Reserve(PageNumber count) {
        Clear();
        const std::size_t size = count * page_size_;
        if (bytes_.size() < size) bytes_.resize(size);
        return std::span(bytes_).first(size);
    }
    // The buffer now holds `count` pages from `first` on.
    void Fill(PageNumber first, PageNumber count) {
        first_ = first;
        count_ = count;
    }
    void Clear() { count_ = 0; }

    bool Contains(PageNumber page) const { return page >= first_ && page - first_ < count_; }
    // Requires: Contains(page).
    SharedPage Take(PageNumber page) const {
        const std::span bytes = std::span(bytes_).subspan((page - first_) * page_size_, page_size_);
        return std::make_shared<PageBytes>(bytes.begin(), bytes.end());
    }

private:
    std::size_t page_size_;
    PageBytes bytes_;
    PageNumber first_ = 0;
    PageNumber count_ = 0;
};

}  // namespace jet
