// ReadAhead: how many pages to fetch when one is missing. One for a random read; for sequential
// reads, as in a table scan, the number doubles each time up to a limit.
#pragma once

#include "jet/pages/page_store.h"

#include <algorithm>

namespace jet {

class ReadAhead {
public:
    static constexpr PageNumber kMaxPages = 64;

    // Called for each page that must be fetched, in the order in which they are asked for.
    PageNumber PagesFrom(PageNumber page) {
        // Pages of other tables and of indexes lie between those of a table: small gaps do not end
        // a scan.
        const bool is_scan = page >= next_ && page - next_ <= kSmallStep;
        window_ = is_scan ? std::min(window_ * 2, kMaxPages) : 1;
        scanned_ = is_scan ? scanned_ + window_ : 0;
        next_ = page + window_;
        return window_;
    }
    // True once the scan is so long that caching its pages would cost more than it helps.
    bool is_long_scan() const { return scanned_ > kLongScan; }

private:
    static constexpr PageNumber kSmallStep = 8;
    static constexpr PageNumber kLongScan = 512;
    PageNumber next_ = 0;
    PageNumber window_ = 1;
    PageNumber scanned_ = 0;
};

}  // namespace jet
