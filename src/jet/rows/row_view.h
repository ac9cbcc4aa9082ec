// RowView: finds the fields in the bytes of one row, of either format. A row may be older than its
// table: columns added since are null in it. Layout: docs/formats/jet.md, "Rows".
#pragma once

#include "jet/pages/format.h"
#include "jet/rows/table_definition.h"

#include <optional>

namespace jet {

class RowView {
public:
    // nullopt: the bytes are not a row. They must outlive the view.
    static std::optional<RowView> Parse(std::span<const std::byte> row, const Format& format);

    // The row's bit for a column number: not null, or true for a boolean.
    bool Bit(std::uint16_t number) const {
        return number < columns_ &&
               (std::to_integer<unsigned>(mask_[number >> 3]) >> (number & 7) & 1U) != 0;
    }
    // nullopt: the field leaves the row.
    std::optional<std::span<const std::byte>> Fixed(std::size_t offset, std::size_t size) const;
    std::optional<std::span<const std::byte>> Variable(std::uint16_t index) const;
    // The bytes of a column whose bit is set. nullopt: damage.
    std::optional<std::span<const std::byte>> Field(const ColumnDefinition& column) const {
        return column.is_fixed() ? Fixed(column.fixed_offset, column.length)
                                 : Variable(column.variable_index);
    }
    std::size_t column_count() const { return columns_; }

private:
    void FindOffsets();
    std::optional<std::span<const std::byte>> VariableJet4(std::uint16_t index) const;
    std::optional<std::span<const std::byte>> VariableJet3(std::uint16_t index) const;

    std::span<const std::byte> row_;
    std::span<const std::byte> mask_;
    std::size_t columns_ = 0;
    std::size_t head_ = 0;
    std::size_t variables_ = 0;  // Jet 4: entries of the table of offsets
    bool has_offsets_ = false;   // Jet 4: the row is long enough for their number
    bool offsets_fit_ = false;   // Jet 4: and for all of them
    bool jet4_ = true;
};

}  // namespace jet
