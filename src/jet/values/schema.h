// What a table looks like, as a program sees it: columns and indexes with their rules. Values only;
// where it is stored is in jet/rows/table_definition.h.
#pragma once

#include "jet/values/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace jet {

struct ColumnDesign {
    std::u16string name;  // at most 64 characters
    ColumnType type = ColumnType::kText;
    // Text: characters; binary: bytes; 0 for types whose size is given.
    std::uint16_t size = 0;
    std::uint8_t precision = 18;  // kNumeric only
    std::uint8_t scale = 0;
    bool autonumber = false;
    bool required = false;
    bool allow_zero_length = true;
    bool compressed = false;  // text and memo: stored one byte a character where possible
    bool fixed_text = false;  // CHAR(n): space padded
    // Expression text of the value that an insert gives when it does not name the column; nullopt:
    // none.
    std::optional<std::u16string> default_value;
    // Expression text that each value must satisfy; it may leave out the column's name in front of
    // an operator (">0"). nullopt: none.
    std::optional<std::u16string> validation_rule;
    // Shown to the user in place of the engine's own text when the rule is broken.
    std::optional<std::u16string> validation_text;
    bool operator==(const ColumnDesign&) const = default;
};

struct IndexColumn {
    std::size_t column = 0;  // position in TableDesign::columns
    bool ascending = true;
    bool operator==(const IndexColumn&) const = default;
};

struct IndexDesign {
    std::u16string name;
    std::vector<IndexColumn> columns;
    bool primary = false;
    bool unique = false;
    bool required = false;      // no indexed column may be null
    bool ignore_nulls = false;  // a row whose indexed columns are all null has no entry
    // Reported by tables, ignored on creation: false when the engine cannot compute this index's
    // keys (a foreign sort order): it serves no query, and the table is read only.
    bool maintainable = true;
    bool operator==(const IndexDesign&) const = default;
};

struct TableDesign {
    std::u16string name;
    std::vector<ColumnDesign> columns;  // in the order shown to a user
    std::vector<IndexDesign> indexes;
    // As of a column, over the columns of each row.
    std::optional<std::u16string> validation_rule;
    std::optional<std::u16string> validation_text;
};

// What happens to rows that refer to a row which is deleted or whose key changes.
enum class RelationRule : std::uint8_t {
    kRefuse,   // the change is refused
    kCascade,  // they are deleted or changed too
    kSetNull,  // their reference becomes null; deletes only
};

// Rows of `table` refer to rows of `referenced_table`, which may be the same table.
struct RelationDesign {
    std::u16string name;  // empty: the engine makes one of the tables' names
    std::u16string table;
    std::vector<std::u16string> columns;
    std::u16string referenced_table;
    // Goes with `columns`; empty: the primary key.
    std::vector<std::u16string> referenced_columns;
    RelationRule on_update = RelationRule::kRefuse;
    RelationRule on_delete = RelationRule::kRefuse;
};

}  // namespace jet
