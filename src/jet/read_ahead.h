// ReadAhead: how many pages to fetch when one is missing. One for a page out of the blue, ever more
// for pages asked for one after the other, as a walk through a table does.
#pragma once

#include "jet/page_store.h"

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
        next_ = page + window_;
        return window_;
    }

private:
    static constexpr PageNumber kSmallStep = 8;
    PageNumber next_ = 0;
    PageNumber window_ = 1;
};

}  // namespace jet
