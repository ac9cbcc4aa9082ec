// Format: the measures in which Jet 3 and Jet 4 files differ, and the small types both share.
// Layout: docs/formats/jet.md. All integers in the file are little endian, except in index keys and
// the pointers of index entries.
#pragma once

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/pages/page_store.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace jet {

// A row of a data page: u8 row, u24 page in the file. Page 0 holds no rows: {0, 0} means none.
struct RowPointer {
    PageNumber page = 0;
    std::uint8_t row = 0;
    bool none() const { return page == 0 && row == 0; }
    bool operator==(const RowPointer&) const = default;
};

// Requires: 4 bytes at `from`.
constexpr RowPointer LoadRowPointer(const std::byte* from) {
    const auto word = base::LoadLittle<std::uint32_t>(from);
    return {word >> 8, static_cast<std::uint8_t>(word & 0xFF)};
}

constexpr void StoreRowPointer(std::byte* to, RowPointer pointer) {
    base::StoreLittle<std::uint32_t>(to, pointer.page << 8 | pointer.row);
}

enum class PageType : std::uint8_t {
    kHeader = 0,
    kData = 1,
    kDefinition = 2,
    kIndexNode = 3,
    kIndexLeaf = 4,
    kBitmap = 5,
    kReleased = 9,
};

// First bytes of the pages that hold long values, in place of an owner: "LVAL".
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;

// The tables whose definitions stand on fixed pages.
inline constexpr PageNumber kObjectsPage = 2;
inline constexpr PageNumber kAccessPage = 3;
inline constexpr PageNumber kQueriesPage = 4;
inline constexpr PageNumber kRelationsPage = 5;

// The sort order "General" and its language.
inline constexpr std::uint16_t kSortOrderGeneral = 0x0409;

struct Format {
    int version;  // 3 or 4
    std::uint32_t page_size;
    std::uint64_t max_file_bytes;
    // Data pages: where the number of slots and the first slot word stand.
    std::size_t slot_count_offset;
    std::size_t slots_offset;
    std::size_t max_row_bytes;
    // Rows: size of the column count in front.
    std::size_t row_head_bytes;
    // Usage maps.
    std::size_t fresh_map_bytes;
    // Index pages.
    std::size_t index_links_offset;  // previous page; next page and tail follow
    std::size_t index_prefix_offset;
    std::size_t index_prefix_bytes;
    std::size_t index_level_offset;
    std::size_t index_mask_offset;
    std::size_t index_entries_offset;
    // Long values.
    std::size_t max_inline_bytes;
    std::size_t max_single_bytes;
    std::size_t chain_piece_bytes;

    bool jet4() const { return version == 4; }
    std::size_t bits_per_bitmap_page() const { return (page_size - 4) * 8; }
};

// Requires: version is 3 or 4.
const Format& FormatOf(int version);

}  // namespace jet
