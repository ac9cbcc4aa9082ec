// The definition of a table as the checker reads it.
#pragma once

#include "jet/check/check_run.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace jet::check {

struct Column {
    std::u16string name;
    ColumnType type = ColumnType::kText;
    std::uint16_t number = 0;
    std::uint16_t variable_index = 0;
    std::uint8_t flags = 0;
    std::uint16_t fixed_offset = 0;
    std::uint16_t length = 0;
    std::uint16_t sort_order = 0;  // LCID
    std::uint8_t sort_version = 0;

    bool fixed() const { return (flags & 0x01) != 0; }
    bool autonumber() const { return (flags & 0x04) != 0; }
    bool is_long_value() const { return type == ColumnType::kMemo || type == ColumnType::kOle; }
    bool is_text() const { return IsTextType(type); }
};

struct IndexPart {
    std::size_t column = 0;  // position in Definition::columns
    bool ascending = true;
};

struct RealIndex {
    std::vector<IndexPart> parts;
    RowPointer map;
    PageNumber root = 0;
    std::uint8_t flags = 0;
    std::u16string name;  // of the first logical index that uses it
    bool primary = false;

    bool unique() const { return (flags & 0x01) != 0; }
    bool ignores_nulls() const { return (flags & 0x02) != 0; }
    bool required() const { return primary || (flags & 0x08) != 0; }
};

struct LogicalIndex {
    std::u16string name;
    std::uint32_t number = 0;
    std::uint32_t real = 0;
    std::uint8_t side = 0;  // of a relation; 0: none
    std::int32_t partner = -1;
    PageNumber partner_table = 0;
    std::uint8_t kind = 0;
};

struct LongValueMaps {
    RowPointer owned;
    RowPointer free;
};

struct Definition {
    PageNumber page = 0;
    std::uint32_t rows = 0;
    std::uint32_t autonumber = 0;
    std::uint16_t columns_ever = 0;
    std::uint16_t variable_ever = 0;
    RowPointer owned;
    RowPointer free;
    std::vector<Column> columns;
    std::vector<RealIndex> indexes;
    std::vector<LogicalIndex> logical;
    std::map<std::uint16_t, LongValueMaps> long_values;  // by column number
};

// Reads and checks the definition that begins on `page`; claims its pages. nullopt (reported): it
// cannot be read to its end.
std::optional<Definition> ReadDefinition(CheckRun& run, PageNumber page, const std::string& name);

}  // namespace jet::check
