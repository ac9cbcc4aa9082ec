#include "jet/rows/row_encoder.h"

#include "jet/pages/bit_set_view.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

// Count and fixed area; the null mask comes last and is built on the way.
Bytes EncodeFixedPart(const Format& format, const TableDefinition& definition,
                      std::span<const RowField> fields, Bytes& mask) {
    const std::size_t head = format.row_head_bytes;
    Bytes row(head + definition.fixed_bytes());
    row[0] = static_cast<std::byte>(definition.columns_ever & 0xFF);
    if (head == 2) row[1] = static_cast<std::byte>(definition.columns_ever >> 8);
    mask.assign((definition.columns_ever + 7U) / 8, std::byte{0});
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!fields[i].set) continue;
        const ColumnDefinition& column = definition.columns[i];
        AssignBit(mask, column.number, true);
        if (column.is_fixed() && !fields[i].bytes.empty())
            std::memcpy(row.data() + head + column.fixed_offset, fields[i].bytes.data(),
                        std::min<std::size_t>(fields[i].bytes.size(), column.length));
    }
    return row;
}

// Appends the variable fields; the offsets of all, and of their end.
std::vector<std::size_t> AppendVariables(const TableDefinition& definition,
                                         std::span<const RowField> fields, Bytes& row) {
    std::vector<const Bytes*> by_index(definition.variables_ever, nullptr);
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (fields[i].set && definition.columns[i].is_variable())
            by_index[definition.columns[i].variable_index] = &fields[i].bytes;
    std::vector<std::size_t> offsets;
    for (const Bytes* bytes : by_index) {
        offsets.push_back(row.size());
        if (bytes != nullptr) row.insert(row.end(), bytes->begin(), bytes->end());
    }
    offsets.push_back(row.size());
    return offsets;
}

void AppendOffsetsJet4(const std::vector<std::size_t>& offsets, Bytes& row) {
    for (std::size_t i = offsets.size(); i-- > 0;)
        base::AppendLittle(row, static_cast<std::uint16_t>(offsets[i]));
    base::AppendLittle(row, static_cast<std::uint16_t>(offsets.size() - 1));
}

// The low bytes of the offsets; each jump byte tells at which offset the next 256 begin.
void AppendOffsetsJet3(const std::vector<std::size_t>& offsets, std::size_t mask_bytes,
                       Bytes& row) {
    for (std::size_t i = offsets.size(); i-- > 0;)
        row.push_back(static_cast<std::byte>(offsets[i] & 0xFF));
    const std::size_t rest = row.size() + 1 + mask_bytes;
    std::size_t jumps = 0;
    while ((rest + jumps - 1) / 256 > jumps)
        ++jumps;
    // Stored from the last to the first, as they are read from the end.
    for (std::size_t jump = jumps; jump-- > 0;) {
        const auto first = std::ranges::find_if(
            offsets, [&](std::size_t offset) { return offset >= 256 * (jump + 1); });
        row.push_back(first == offsets.end() ? std::byte{0xFF}
                                             : static_cast<std::byte>(first - offsets.begin()));
    }
    row.push_back(static_cast<std::byte>(offsets.size() - 1));
}

}  // namespace

Bytes EncodeRow(const Format& format, const TableDefinition& definition,
                std::span<const RowField> fields) {
    Bytes mask;
    Bytes row = EncodeFixedPart(format, definition, fields, mask);
    if (definition.variables_ever > 0) {
        const std::vector<std::size_t> offsets = AppendVariables(definition, fields, row);
        if (format.jet4())
            AppendOffsetsJet4(offsets, row);
        else
            AppendOffsetsJet3(offsets, mask.size(), row);
    }
    row.insert(row.end(), mask.begin(), mask.end());
    return row;
}

}  // namespace jet
