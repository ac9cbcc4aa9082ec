#include "jet/pages/page_transaction.h"

#include <cassert>

namespace jet {

void PageTransaction::Begin(PageNumber page_count) {
    assert(!open_);
    open_ = true;
    page_count_ = page_count;
}

void PageTransaction::End() {
    open_ = false;
    pages_.clear();
}

SharedPage PageTransaction::Find(PageNumber page) const {
    const auto found = pages_.find(page);
    return found == pages_.end() ? nullptr : found->second.after;
}

std::span<std::byte> PageTransaction::Change(PageNumber page, const SharedPage& before) {
    const auto [entry, is_new] = pages_.try_emplace(page);
    if (is_new) entry->second = {before, std::make_shared<PageBytes>(*before)};
    return *entry->second.after;
}

std::span<std::byte> PageTransaction::ChangeAgain(PageNumber page) {
    const auto found = pages_.find(page);
    if (found == pages_.end()) return {};
    std::shared_ptr<PageBytes>& after = found->second.after;
    // Copy on write: a view that still holds the page keeps the old bytes.
    if (after.use_count() > 1) after = std::make_shared<PageBytes>(*after);
    return *after;
}

PageNumber PageTransaction::Extend(std::uint32_t page_size) {
    pages_[page_count_] = {nullptr, std::make_shared<PageBytes>(page_size)};
    return page_count_++;
}

}  // namespace jet
