#include "jet/held_rows.h"

#include "jet/held_rows_content.h"

#include <algorithm>

namespace jet {
namespace {

// Of the processors that this runs on.
constexpr std::size_t kCacheLine = 64;
// What is read of a row mostly lies in its first bytes; more would come too late anyway.
constexpr std::size_t kMostLines = 4;

}  // namespace

std::size_t HeldRows::size() const {
    return content_ != nullptr ? content_->rows : 0;
}

Value HeldRows::Field(std::size_t row, std::size_t field) const {
    const Content::Place place = content_->places[field];
    if (!place.is_stored) return content_->loose[place.number][row];
    return content_->decoder->Read((*content_->stored)[row], place.number);
}

void HeldRows::Expect(std::size_t row) const {
    if (row >= size() || content_->stored == nullptr) return;
    const std::span<const std::byte> bytes = (*content_->stored)[row];
    const std::size_t size = std::min(bytes.size(), kMostLines * kCacheLine);
    for (std::size_t at = 0; at < size; at += kCacheLine)
        __builtin_prefetch(bytes.data() + at);
}

}  // namespace jet
