#include "jet/check/check_row.h"

#include <algorithm>

namespace jet::check {
namespace {

using OptionalOffsets = std::optional<std::vector<std::size_t>>;

// `end`: where the mask begins. The answer: offset of each variable column, and of the end of the
// last.
OptionalOffsets OffsetsOfJet4(std::span<const std::byte> bytes, std::size_t end,
                              std::size_t& table_start) {
    if (end < 2) return std::nullopt;
    const auto count = base::LoadLittle<std::uint16_t>(bytes.data() + end - 2);
    const std::size_t table = 2 + 2 * (std::size_t{count} + 1);
    if (table > end) return std::nullopt;
    table_start = end - table;
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i <= count; ++i)
        offsets.push_back(base::LoadLittle<std::uint16_t>(bytes.data() + end - 4 - 2 * i));
    return offsets;
}

// One byte an offset; "jump" bytes say from which offset on 256 more are meant.
OptionalOffsets OffsetsOfJet3(std::span<const std::byte> bytes, std::size_t end,
                              std::size_t& table_start) {
    if (end < 1) return std::nullopt;
    const std::size_t count = std::to_integer<std::size_t>(bytes[end - 1]);
    std::size_t jumps = (bytes.size() - 1) / 256;
    if (end < 1 + jumps + count + 1) return std::nullopt;
    const std::size_t first_at = end - 2 - jumps;
    table_start = first_at - count;
    if ((first_at - count) / 256 < jumps) --jumps;  // the last one is a dummy
    std::vector<std::size_t> offsets;
    std::size_t high = 0;
    for (std::size_t i = 0; i <= count; ++i) {
        while (high < jumps && std::to_integer<std::size_t>(bytes[end - 2 - high]) == i)
            ++high;
        offsets.push_back(std::to_integer<std::size_t>(bytes[first_at - i]) + 256 * high);
    }
    return offsets;
}

}  // namespace

std::optional<Row> Row::Parse(std::span<const std::byte> bytes, const Definition& definition,
                              const Format& format, std::string& problem) {
    const auto fail = [&](const char* why) {
        problem = why;
        return std::nullopt;
    };
    Row row;
    row.bytes_ = bytes;
    row.head_ = format.row_head_bytes;
    if (bytes.size() < row.head_ + 1) return fail("the row is too short");
    row.column_count_ = format.jet4() ? base::LoadLittle<std::uint16_t>(bytes.data())
                                      : std::to_integer<unsigned>(bytes[0]);
    if (row.column_count_ > definition.columns_ever)
        return fail("the row has more columns than the table");
    const std::size_t mask_size = (row.column_count_ + 7) / 8;
    if (bytes.size() < row.head_ + mask_size) return fail("the row is too short for its null mask");
    const std::size_t mask_at = bytes.size() - mask_size;
    row.mask_ = bytes.subspan(mask_at);
    row.fixed_end_ = mask_at;
    if (definition.variable_ever == 0) return row;

    std::size_t table_start = 0;
    const auto offsets = format.jet4() ? OffsetsOfJet4(bytes, mask_at, table_start)
                                       : OffsetsOfJet3(bytes, mask_at, table_start);
    if (!offsets) return fail("the row is too short for its variable columns");
    if (offsets->size() - 1 > definition.variable_ever)
        return fail("the row has more variable columns than the table");
    if (!std::ranges::is_sorted(*offsets)) return fail("the variable columns overlap");
    if (offsets->front() < row.head_ || offsets->back() > table_start)
        return fail("the variable columns lie outside of the row");
    row.fixed_end_ = offsets->front();
    row.offsets_ = *offsets;
    return row;
}

bool Row::Bit(const Column& column) const {
    if (column.number >= column_count_) return false;
    return (std::to_integer<unsigned>(mask_[column.number / 8]) >> (column.number % 8) & 1U) != 0;
}

std::optional<std::span<const std::byte>> Row::Field(const Column& column,
                                                     std::string& problem) const {
    if (!Bit(column)) return std::nullopt;
    if (column.fixed()) {
        const std::size_t start = head_ + column.fixed_offset;
        if (start + column.length <= fixed_end_) return bytes_.subspan(start, column.length);
        problem = "a fixed column reaches outside of its area";
        return std::nullopt;
    }
    const std::size_t index = column.variable_index;
    if (index + 1 < offsets_.size())
        return bytes_.subspan(offsets_[index], offsets_[index + 1] - offsets_[index]);
    problem = "a variable column that is not null is not in the row";
    return std::nullopt;
}

}  // namespace jet::check
