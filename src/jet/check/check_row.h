// A row as the checker takes it apart.
#pragma once

#include "jet/check/check_definition.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace jet::check {

class Row {
public:
    // nullopt: the bytes are not a row of such a table; `problem` says why.
    static std::optional<Row> Parse(std::span<const std::byte> bytes, const Definition& definition,
                                    const Format& format, std::string& problem);

    // The stored bytes of a column that is not boolean; nullopt: null, or older than the column.
    // `problem` is set when the column's place lies outside of the row.
    std::optional<std::span<const std::byte>> Field(const Column& column,
                                                    std::string& problem) const;
    // The bit of the null mask: not null, or true.
    bool Bit(const Column& column) const;

private:
    std::span<const std::byte> bytes_;
    std::span<const std::byte> mask_;
    std::size_t head_ = 0;
    unsigned column_count_ = 0;
    std::size_t fixed_end_ = 0;
    std::vector<std::size_t> offsets_;  // of the variable columns, and the end
};

}  // namespace jet::check
