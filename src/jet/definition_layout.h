// Offsets within a table definition; reader and writer share them.
#pragma once

#include "jet/format.h"

namespace jet {

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

inline constexpr DefinitionLayout kDefinitionJet4{16, 20, 40, 41, 43, 45, 47, 51,
                                                  55, 59, 63, 12, 25, 52, 28};
inline constexpr DefinitionLayout kDefinitionJet3{12, 16, 20, 21, 23, 25, 27, 31,
                                                  35, 39, 43, 8,  18, 39, 20};

inline const DefinitionLayout& LayoutOf(const Format& format) {
    return format.jet4() ? kDefinitionJet4 : kDefinitionJet3;
}

inline constexpr std::size_t kDefinitionPageHead = 8;
inline constexpr std::size_t kDefinitionLength = 8;
inline constexpr std::uint32_t kDefinitionMark = 1625;  // in Jet 4 definitions and descriptors
inline constexpr std::uint32_t kRealIndexMark = 1923;
inline constexpr std::uint16_t kEndOfDefinition = 0xFFFF;

}  // namespace jet
