// Format: the sizes and offsets in which Jet 3 and Jet 4 files differ, and the small types both
// share. Layout: docs/formats/jet.md. All integers in the file are little endian, except in index
// keys and the pointers of index entries.
#pragma once

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/pages/page_store.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace jet {

// A row of a data page: u8 row, u24 page in the file. Page 0 holds no rows: {0, 0} is null.
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

// The pages that an index page names, u32 each, in this order.
enum class IndexLink : std::uint8_t {
    kPrevious,
    kNext,
    kTail,  // of a node: the page of its last child
};
inline constexpr std::size_t kIndexLinkBytes = 4;

enum class PageType : std::uint8_t {
    kHeader = 0,
    kData = 1,
    kDefinition = 2,
    kIndexNode = 3,
    kIndexLeaf = 4,
    kBitmap = 5,
    kReleased = 9,
};

// The head of a page: its type, and a byte that is 1 on all pages but page 0 and the free ones.
inline constexpr std::size_t kPageTypeAt = 0;
inline constexpr std::size_t kSecondByteAt = 1;
inline constexpr std::byte kSecondByte{1};
// How it continues on data and index pages.
inline constexpr std::size_t kPageFreeBytes = 2;  // u16
inline constexpr std::size_t kPageOwner = 4;      // u32, the table's definition page
inline constexpr std::size_t kPageStamp = 8;      // u32, Jet 4: of a chain that begins here

inline bool HasType(std::span<const std::byte> page, PageType type) {
    return page[kPageTypeAt] == static_cast<std::byte>(type);
}
inline void StoreType(std::span<std::byte> page, PageType type) {
    page[kPageTypeAt] = static_cast<std::byte>(type);
    page[kSecondByteAt] = kSecondByte;
}
inline std::uint32_t LoadOwner(std::span<const std::byte> page) {
    return base::LoadLittle<std::uint32_t>(page.data() + kPageOwner);
}

// Owners other than tables: of the pages of long values ("LVAL"), of map pages, of page 1.
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;
inline constexpr std::uint32_t kMapOwner = 0;
inline constexpr std::uint32_t kGlobalMapOwner = 1;
inline constexpr PageNumber kGlobalMapPage = 1;

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
    std::size_t index_links_offset;  // see IndexLink
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
    std::size_t bits_per_bitmap_page() const { return std::size_t{8} * (page_size - 4); }
    // Where a link stands on an index page.
    std::size_t LinkOffset(IndexLink link) const {
        return index_links_offset + kIndexLinkBytes * static_cast<std::size_t>(link);
    }
};

// Requires: version is 3 or 4.
const Format& FormatOf(int version);
// That of a file with pages of this size.
const Format& FormatOfPages(std::uint32_t page_size);

}  // namespace jet
