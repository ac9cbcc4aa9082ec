// TableDefinition: a table's definition as the file keeps it: columns, real and logical indexes,
// page maps, counters. TableDesign (jet/schema.h) is what a program sees of it. Layout:
// docs/formats/jet.md, "Table definitions".
#pragma once

#include "base/status.h"
#include "jet/pages/definition_layout.h"
#include "jet/pages/format.h"
#include "jet/text/text_codec.h"
#include "jet/values/value.h"

#include <optional>
#include <string>
#include <vector>

namespace jet {

enum ColumnFlag : std::uint8_t {
    kColumnFixed = 0x01,  // stored in the fixed area of the row; decides, whatever the type
    kColumnUpdatable = 0x02,
    kColumnAutonumber = 0x04,
    kColumnSystem = 0x10,
    kColumnScrambled = 0x20,
    kColumnGuidAutonumber = 0x40,
};

struct ColumnDefinition {
    ColumnType type = ColumnType::kText;
    std::uint16_t number = 0;          // identity; its bit in a row's null mask
    std::uint16_t variable_index = 0;  // place in a row's table of variable offsets
    std::uint16_t ordinal = 0;
    std::uint16_t sort_order = kSortOrderGeneral;
    std::uint8_t sort_version = 0;
    std::uint16_t code_page = 1252;  // Jet 3
    std::uint8_t precision = 0;      // numeric
    std::uint8_t scale = 0;
    std::uint8_t flags = kColumnUpdatable;
    std::uint8_t extended_flags = 0;
    std::uint16_t fixed_offset = 0;
    std::uint16_t length = 0;  // bytes
    std::u16string name;

    bool is_fixed() const { return (flags & kColumnFixed) != 0 && type != ColumnType::kBoolean; }
    bool is_variable() const { return (flags & kColumnFixed) == 0 && type != ColumnType::kBoolean; }
    bool is_long_value() const { return type == ColumnType::kMemo || type == ColumnType::kOle; }
    bool is_text() const { return IsTextType(type); }
    bool is_autonumber() const {
        return (flags & kColumnAutonumber) != 0 ||
               (type == ColumnType::kGuid && (flags & kColumnGuidAutonumber) != 0);
    }
};

enum IndexFlag : std::uint8_t {
    kIndexUnique = 0x01,
    kIndexIgnoreNulls = 0x02,
    kIndexRequired = 0x08,
    kIndexJet4 = 0x80,
};

struct RealIndexColumn {
    std::uint16_t column = 0;  // column number
    bool ascending = true;
    bool operator==(const RealIndexColumn&) const = default;
};

struct RealIndex {
    std::vector<RealIndexColumn> columns;
    RowPointer map;
    PageNumber root = 0;
    std::uint8_t flags = 0;
    std::uint32_t entries_when_compacted = 0;
    std::uint32_t distinct_keys = 0;

    bool unique() const { return (flags & kIndexUnique) != 0; }
    bool ignore_nulls() const { return (flags & kIndexIgnoreNulls) != 0; }
    bool required() const { return (flags & kIndexRequired) != 0; }
};

enum class IndexKind : std::uint8_t { kPlain = 0, kPrimary = 1, kRelation = 2 };
enum class RelationSide : std::uint8_t { kNone = 0, kPrimary = 1, kForeign = 2 };

struct LogicalIndex {
    std::uint32_t number = 0;
    std::uint32_t real = 0;  // position in TableDefinition::real_indexes
    RelationSide side = RelationSide::kNone;
    std::int32_t partner = -1;  // logical index number in the other table
    PageNumber other_table = 0;
    std::uint8_t cascade_updates = 4;  // 1 yes, 0 no; 4: not in a relation
    std::uint8_t cascade_deletes = 4;  // 1 yes, 0 no, 2 set to null; 4: not in a relation
    IndexKind kind = IndexKind::kPlain;
    std::u16string name;
};

struct LongValueMaps {
    std::uint16_t column = 0;
    RowPointer owned;
    RowPointer free;
};

struct TableDefinition {
    PageNumber page = 0;            // identity of the table
    std::vector<PageNumber> pages;  // all pages of the definition, `page` first
    std::uint32_t rows = 0;
    std::uint32_t last_autonumber = 0;
    std::uint8_t kind = kUserTable;
    std::uint16_t columns_ever = 0;
    std::uint16_t variables_ever = 0;
    RowPointer owned;
    RowPointer free;
    std::vector<ColumnDefinition> columns;  // as they stand in the file
    std::vector<RealIndex> real_indexes;
    std::vector<LogicalIndex> logical_indexes;
    std::vector<LongValueMaps> long_values;

    const ColumnDefinition* FindColumn(std::uint16_t number) const;
    // By its number; nullptr: no such index.
    const LogicalIndex* FindIndex(std::int32_t number) const;
    // Bytes of the fixed area of a row written now.
    std::size_t fixed_bytes() const;
};

// A number that no logical index of the table has.
std::uint32_t NextIndexNumber(const TableDefinition& definition);

// Follows the chain of definition pages from `page`. Damage is kCorruption.
base::Result<TableDefinition> ReadTableDefinition(PageStore& store, const Format& format,
                                                  const TextCodec& text, PageNumber page);

class PageAllocator;
// Writes the whole definition, takes or frees continuation pages and updates
// `definition.pages`. The first page must exist. Columns and logical indexes are put into the order
// that the format keeps.
base::Status WriteTableDefinition(PageStore& store, const Format& format, const TextCodec& text,
                                  PageAllocator& allocator, TableDefinition& definition);

// The counters on the first page alone, in place.
struct DefinitionCounters {
    std::uint32_t rows = 0;
    std::uint32_t last_autonumber = 0;
};
DefinitionCounters ReadDefinitionCounters(std::span<const std::byte> first_page,
                                          const Format& format);
void WriteDefinitionCounters(std::span<std::byte> first_page, const Format& format,
                             DefinitionCounters counters);
std::uint32_t ReadDistinctKeys(std::span<const std::byte> first_page, const Format& format,
                               std::size_t real_index);
void WriteDistinctKeys(std::span<std::byte> first_page, const Format& format,
                       std::size_t real_index, std::uint32_t keys);

}  // namespace jet
