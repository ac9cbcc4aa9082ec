#include "jet/pages/page_cache.h"

#include <algorithm>

namespace jet {

PageCache::PageCache(std::size_t capacity) : capacity_(std::max<std::size_t>(capacity, 16)) {}

SharedPage PageCache::Find(PageNumber page) {
    const auto found = slots_.find(page);
    if (found == slots_.end()) return nullptr;
    Entry& entry = entries_[found->second];
    entry.asked_for = true;
    return entry.bytes;
}

void PageCache::Put(PageNumber page, SharedPage bytes) {
    const auto found = slots_.find(page);
    if (found != slots_.end()) {
        entries_[found->second].bytes = std::move(bytes);
        return;
    }
    const std::size_t slot = FreeEntry();
    entries_[slot] = {page, std::move(bytes), false};
    slots_[page] = slot;
}

void PageCache::Erase(PageNumber page) {
    const auto found = slots_.find(page);
    if (found == slots_.end()) return;
    entries_[found->second] = {};
    slots_.erase(found);
}

// The hand takes the first entry that was not used since it last passed.
std::size_t PageCache::FreeEntry() {
    if (entries_.size() < capacity_) {
        entries_.emplace_back();
        return entries_.size() - 1;
    }
    while (entries_[hand_].bytes != nullptr && entries_[hand_].asked_for) {
        entries_[hand_].asked_for = false;
        hand_ = (hand_ + 1) % capacity_;
    }
    const std::size_t slot = hand_;
    hand_ = (hand_ + 1) % capacity_;
    if (entries_[slot].bytes != nullptr) slots_.erase(entries_[slot].page);
    return slot;
}

}  // namespace jet
