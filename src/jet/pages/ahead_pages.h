// AheadPages: the pages that a long walk has read ahead. They stay in one buffer, which the next
// piece of the walk uses again, instead of pushing everything else out of the cache: a walk asks
// for each page once. Threads: none; they are the store's own thread's.
#pragma once

#include "jet/pages/page_transaction.h"

#include <cstddef>
#include <span>

namespace jet {

class AheadPages {
public:
    explicit AheadPages(std::size_t page_size) : page_size_(page_size) {}

    // Room for `count` pages to be read into; what was held is forgotten.
    std::span<std::byte> Room(PageNumber count) {
        Forget();
        const std::size_t size = count * page_size_;
        if (bytes_.size() < size) bytes_.resize(size);
        return std::span(bytes_).first(size);
    }
    // The room now holds `count` pages from `first` on.
    void Hold(PageNumber first, PageNumber count) {
        first_ = first;
        count_ = count;
    }
    void Forget() { count_ = 0; }

    bool Contains(PageNumber page) const { return page >= first_ && page - first_ < count_; }
    // Requires: Contains(page).
    SharedPage Copy(PageNumber page) const {
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
