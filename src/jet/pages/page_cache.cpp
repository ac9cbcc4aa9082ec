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
    if (slot != kNoSlot) ForgetEntry(entries_[slot]);
}

void PageCache::ForgetEntry(Entry& entry) {
    slots_[entry.page] = kNoSlot;
    entry = {};
    --used_;
}

// The hand takes the first entry that was not used since it last passed.
std::uint32_t PageCache::FreeEntry() {
    if (entries_.size() < capacity_) {
        entries_.emplace_back();
        return static_cast<std::uint32_t>(entries_.size() - 1);
    }
    while (entries_[hand_].bytes != nullptr && entries_[hand_].asked_for) {
        entries_[hand_].asked_for = false;
        hand_ = (hand_ + 1) % capacity_;
    }
    const std::size_t slot = hand_;
    hand_ = (hand_ + 1) % capacity_;
    if (entries_[slot].bytes != nullptr) ForgetEntry(entries_[slot]);
    return static_cast<std::uint32_t>(slot);
}

}  // namespace jet
