// Where things lie in a table definition; reader, writer and checker share it. Tables of offsets
// for both versions: docs/formats/jet.md, "Table definitions".
#pragma once

#include "jet/pages/format.h"

namespace jet {

// The head of each page of a definition.
inline constexpr std::size_t kDefinitionFreeBytes = 2;  // u16
inline constexpr std::size_t kNextDefinitionPage = 4;
inline constexpr std::size_t kDefinitionPageHead = 8;
inline constexpr std::uint16_t kJet3HeadText = 0x4356;  // "VC" in place of the free bytes

// The same in both versions, or in version 4 alone.
inline constexpr std::size_t kDefinitionLength = 8;
inline constexpr std::size_t kDefinitionMarkAt = 12;
inline constexpr std::size_t kAutonumberStep = 24;
inline constexpr std::uint32_t kDefinitionMark = 1625;  // in Jet 4 definitions and descriptors
inline constexpr std::uint32_t kRealIndexMark = 1923;
inline constexpr std::uint16_t kNoColumn = 0xFFFF;  // an unused column of a real index
inline constexpr std::uint16_t kEndOfDefinition = 0xFFFF;
inline constexpr std::uint8_t kUserTable = 0x4E;    // 'N'
inline constexpr std::uint8_t kSystemTable = 0x53;  // 'S', the four on fixed pages

// Fixed part, and the sizes of what follows it.
struct DefinitionLayout {
    std::size_t rows;
    std::size_t autonumber;
    std::size_t kind;
    std::size_t columns_ever;
    std::size_t variables_ever;
    std::size_t columns;
    std::size_t logical_indexes;
    std::size_t real_indexes;
    std::size_t owned_map;
    std::size_t free_map;
    std::size_t index_counters;  // end of the fixed part
    std::size_t index_counter_bytes;
    std::size_t column_bytes;
    std::size_t real_index_bytes;
    std::size_t logical_index_bytes;
};

inline constexpr DefinitionLayout kDefinitionJet4{
    .rows = 16,
    .autonumber = 20,
    .kind = 40,
    .columns_ever = 41,
    .variables_ever = 43,
    .columns = 45,
    .logical_indexes = 47,
    .real_indexes = 51,
    .owned_map = 55,
    .free_map = 59,
    .index_counters = 63,
    .index_counter_bytes = 12,
    .column_bytes = 25,
    .real_index_bytes = 52,
    .logical_index_bytes = 28,
};

inline constexpr DefinitionLayout kDefinitionJet3{
    .rows = 12,
    .autonumber = 16,
    .kind = 20,
    .columns_ever = 21,
    .variables_ever = 23,
    .columns = 25,
    .logical_indexes = 27,
    .real_indexes = 31,
    .owned_map = 35,
    .free_map = 39,
    .index_counters = 43,
    .index_counter_bytes = 8,
    .column_bytes = 18,
    .real_index_bytes = 39,
    .logical_index_bytes = 20,
};

inline const DefinitionLayout& LayoutOf(const Format& format) {
    return format.jet4() ? kDefinitionJet4 : kDefinitionJet3;
}

// A field that one version does not have.
inline constexpr std::size_t kNotThere = static_cast<std::size_t>(-1);

// A column descriptor.
struct ColumnLayout {
    std::size_t type = 0;
    std::size_t mark = kNotThere;
    std::size_t number;
    std::size_t variable_index;
    std::size_t ordinal;
    std::size_t sort_order;
    std::size_t sort_version = kNotThere;
    std::size_t code_page = kNotThere;
    std::size_t precision = kNotThere;  // decimal columns, in place of the sort order
    std::size_t scale = kNotThere;
    std::size_t flags;
    std::size_t extended_flags = kNotThere;
    std::size_t fixed_offset;
    std::size_t length;
};

inline constexpr ColumnLayout kColumnJet4{
    .mark = 1,
    .number = 5,
    .variable_index = 7,
    .ordinal = 9,
    .sort_order = 11,
    .sort_version = 14,
    .precision = 11,
    .scale = 12,
    .flags = 15,
    .extended_flags = 16,
    .fixed_offset = 21,
    .length = 23,
};

inline constexpr ColumnLayout kColumnJet3{
    .number = 1,
    .variable_index = 3,
    .ordinal = 5,
    .sort_order = 9,
    .code_page = 11,
    .flags = 13,
    .fixed_offset = 14,
    .length = 16,
};

// A real index.
struct RealIndexLayout {
    std::size_t mark = kNotThere;
    std::size_t columns;
    std::size_t map;
    std::size_t root;
    std::size_t flags;
};

inline constexpr RealIndexLayout kRealIndexJet4{
    .mark = 0, .columns = 4, .map = 34, .root = 38, .flags = 46};
inline constexpr RealIndexLayout kRealIndexJet3{.columns = 0, .map = 30, .root = 34, .flags = 38};
// Of each of its columns: u16 number, u8 order.
inline constexpr std::size_t kIndexColumnBytes = 3;
inline constexpr std::size_t kIndexColumnOrder = 2;

// A logical index.
struct LogicalIndexLayout {
    std::size_t mark = kNotThere;
    std::size_t number;
    std::size_t real;
    std::size_t side;
    std::size_t partner;
    std::size_t other_table;
    std::size_t cascade_updates;
    std::size_t cascade_deletes;
    std::size_t kind;
};

inline constexpr LogicalIndexLayout kLogicalIndexJet4{
    .mark = 0,
    .number = 4,
    .real = 8,
    .side = 12,
    .partner = 13,
    .other_table = 17,
    .cascade_updates = 21,
    .cascade_deletes = 22,
    .kind = 23,
};

inline constexpr LogicalIndexLayout kLogicalIndexJet3{
    .number = 0,
    .real = 4,
    .side = 8,
    .partner = 9,
    .other_table = 13,
    .cascade_updates = 17,
    .cascade_deletes = 18,
    .kind = 19,
};

}  // namespace jet
