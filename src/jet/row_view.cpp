#include "jet/row_view.h"

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

std::optional<std::span<const std::byte>> RowView::VariableJet4(std::uint16_t index) const {
    const std::size_t tail = row_.size() - mask_.size();
    if (tail < head_ + 4) return std::nullopt;
    const std::size_t count = base::LoadLittle<std::uint16_t>(row_.data() + tail - 2);
    if (index >= count) return row_.subspan(0, 0);
    const std::size_t table_bytes = 2 * (count + 1);
    if (tail - 2 < head_ + table_bytes) return std::nullopt;
    const auto offset = [&](std::size_t i) -> std::size_t {
        return base::LoadLittle<std::uint16_t>(row_.data() + tail - 4 - 2 * i);
    };
    const std::size_t start = offset(index);
    const std::size_t end = offset(index + std::size_t{1});
    if (start < head_ || start > end || end > tail - 2 - table_bytes) return std::nullopt;
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
