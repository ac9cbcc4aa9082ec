#include "jet/pages/page_cache.h"

#include <algorithm>

namespace jet {

PageCache::PageCache(std::size_t capacity) : capacity_(std::max<std::size_t>(capacity, 16)) {}

SharedPage PageCache::Find(PageNumber page) {
    const std::uint32_t slot = SlotOf(page);
    if (slot == kNoSlot) return nullptr;
    Entry& entry = entries_[slot];
    entry.asked_for = true;
    return entry.bytes;
}

void PageCache::Put(PageNumber page, SharedPage bytes) {
    if (const std::uint32_t slot = SlotOf(page); slot != kNoSlot) {
        entries_[slot].bytes = std::move(bytes);
        return;
    }
    const std::uint32_t slot = FreeEntry();
    entries_[slot] = {page, std::move(bytes), false};
    if (page >= slots_.size()) slots_.resize(std::size_t{page} + 1, kNoSlot);
    slots_[page] = slot;
    ++used_;
}

void PageCache::Erase(PageNumber page) {
    const std::uint32_t slot = SlotOf(page);
    if (slot != kNoSlot) ForgetEntry(slot);
}

void PageCache::ForgetEntry(std::uint32_t slot) {
    slots_[entries_[slot].page] = kNoSlot;
    entries_[slot] = {};
    free_.push_back(slot);
    --used_;
}

// The hand takes the first entry that was not used since it last passed.
std::uint32_t PageCache::FreeEntry() {
    if (free_.empty() && entries_.size() < capacity_) {
        entries_.emplace_back();
        return static_cast<std::uint32_t>(entries_.size() - 1);
    }
    if (free_.empty()) {
        while (entries_[hand_].asked_for) {
            entries_[hand_].asked_for = false;
            hand_ = (hand_ + 1) % capacity_;
        }
        ForgetEntry(static_cast<std::uint32_t>(hand_));
        hand_ = (hand_ + 1) % capacity_;
    }
    const std::uint32_t slot = free_.back();
    free_.pop_back();
    return slot;
}

}  // namespace jet
