// PageTransaction: the pages that an open transaction has changed or added, and how many pages the
// file has then. Both page stores have one and decide what a commit does with the pages. Not
// thread-safe.
#pragma once

#include "base/status.h"
#include "jet/pages/page_store.h"

#include <map>
#include <memory>
#include <span>
#include <vector>

namespace jet {

using PageBytes = std::vector<std::byte>;
using SharedPage = std::shared_ptr<const PageBytes>;

class PageTransaction {
public:
    struct ChangedPage {
        SharedPage before;  // null: the page is new
        std::shared_ptr<PageBytes> after;
    };
    using ChangedPages = std::map<PageNumber, ChangedPage>;

    bool open() const { return open_; }
    // Pages of the file, the added ones included. Requires: open().
    PageNumber page_count() const { return page_count_; }
    // In ascending order of page number.
    const ChangedPages& pages() const { return pages_; }

    void Begin(PageNumber page_count);
    void End();

    // The changed page; null: the transaction has not touched it.
    SharedPage Find(PageNumber page) const;
    // The page's bytes for changing, copied from `before` at the first time. Views handed out keep
    // their content.
    std::span<std::byte> Change(PageNumber page, const SharedPage& before);
    // The bytes of a page that was changed before; empty span: it was not.
    std::span<std::byte> ChangeAgain(PageNumber page);
    PageNumber Extend(std::uint32_t page_size);

private:
    bool open_ = false;
    PageNumber page_count_ = 0;
    ChangedPages pages_;
};

}  // namespace jet
