#include "jet/rows/row_view.h"

namespace jet {

std::optional<RowView> RowView::Parse(std::span<const std::byte> row, const Format& format) {
    if (row.size() < format.row_head_bytes + 1) return std::nullopt;
    RowView view;
    view.row_ = row;
    view.head_ = format.row_head_bytes;
    view.jet4_ = format.jet4();
    view.columns_ = format.jet4() ? base::LoadLittle<std::uint16_t>(row.data())
                                  : std::to_integer<std::size_t>(row[0]);
    const std::size_t mask_bytes = (view.columns_ + 7) / 8;
    if (view.columns_ == 0 || view.head_ + mask_bytes > row.size()) return std::nullopt;
    view.mask_ = row.last(mask_bytes);
    if (view.jet4_) view.FindOffsets();
    return view;
}

std::optional<std::span<const std::byte>> RowView::Fixed(std::size_t offset,
                                                         std::size_t size) const {
    const std::size_t limit = row_.size() - mask_.size();
    if (head_ + offset + size > limit) return std::nullopt;
    return row_.subspan(head_ + offset, size);
}

std::optional<std::span<const std::byte>> RowView::Variable(std::uint16_t index) const {
    return jet4_ ? VariableJet4(index) : VariableJet3(index);
}

void RowView::FindOffsets() {
    const std::size_t tail = row_.size() - mask_.size();
    has_offsets_ = tail >= head_ + 4;
    if (!has_offsets_) return;
    variables_ = base::LoadLittle<std::uint16_t>(row_.data() + tail - 2);
    offsets_fit_ = tail - 2 >= head_ + 2 * (variables_ + 1);
}

std::optional<std::span<const std::byte>> RowView::VariableJet4(std::uint16_t index) const {
    if (!has_offsets_) return std::nullopt;
    if (index >= variables_) return row_.subspan(0, 0);
    if (!offsets_fit_) return std::nullopt;
    const std::size_t count_at = row_.size() - mask_.size() - 2;
    const std::byte* const offset = row_.data() + count_at - 2 - 2 * std::size_t{index};
    const std::size_t start = base::LoadLittle<std::uint16_t>(offset);
    const std::size_t end = base::LoadLittle<std::uint16_t>(offset - 2);
    if (start < head_ || start > end || end > count_at - 2 * (variables_ + 1)) return std::nullopt;
    return row_.subspan(start, end - start);
}

// One byte per offset; jump bytes tell from which entry on another 256 is to be added.
std::optional<std::span<const std::byte>> RowView::VariableJet3(std::uint16_t index) const {
    const std::size_t tail = row_.size() - mask_.size();
    if (tail < head_ + 2) return std::nullopt;
    const auto byte_at = [&](std::size_t at) { return std::to_integer<std::size_t>(row_[at]); };
    const std::size_t count = byte_at(tail - 1);
    if (index >= count) return row_.subspan(0, 0);
    const std::size_t jump_bytes = (row_.size() - 1) / 256;
    if (tail < head_ + 2 + jump_bytes + count) return std::nullopt;
    const std::size_t first = tail - 2 - jump_bytes;  // where off[0] stands
    std::size_t jumps = jump_bytes;
    if (jumps > 0 && (first - count) / 256 < jumps) --jumps;  // the last one is a dummy
    const auto offset = [&](std::size_t i) {
        std::size_t high = 0;
        while (high < jumps && byte_at(tail - 2 - high) <= i)
            ++high;
        return byte_at(first - i) + 256 * high;
    };
    const std::size_t start = offset(index);
    const std::size_t end = offset(index + std::size_t{1});
    if (start < head_ || start > end || end > first - count) return std::nullopt;
    return row_.subspan(start, end - start);
}

}  // namespace jet
