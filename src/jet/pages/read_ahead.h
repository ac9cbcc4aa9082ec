// ReadAhead: how many pages to fetch when one is missing. One for a random read; for sequential
// reads, as in a table scan, the number doubles each time up to a limit.
#pragma once

#include "jet/pages/page_store.h"

#include <algorithm>

namespace jet {

class ReadAhead {
public:
    static constexpr PageNumber kMostPages = 64;

    // Called for each page that must be fetched, in the order in which they are asked for.
    PageNumber PagesFrom(PageNumber page) {
        // Pages of other tables and of indexes lie between those of a table: a small step is still
        // a walk.
        const bool is_walk = page >= next_ && page - next_ <= kSmallStep;
        window_ = is_walk ? std::min(window_ * 2, kMostPages) : 1;
        walked_ = is_walk ? walked_ + window_ : 0;
        next_ = page + window_;
        return window_;
    }
    // True once the walk has become so long that keeping its pages would cost more than it helps.
    bool is_long_walk() const { return walked_ > kLongWalk; }

private:
    static constexpr PageNumber kSmallStep = 8;
    static constexpr PageNumber kLongWalk = 512;
    PageNumber next_ = 0;
    PageNumber window_ = 1;
    PageNumber walked_ = 0;
};

}  // namespace jet
