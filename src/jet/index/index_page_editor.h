// Changes of index pages: single entries in place where the page's prefix allows it, whole pages
// otherwise.
#pragma once

#include "jet/index/index_page.h"
#include "jet/values/value.h"

namespace jet {

// All of a page's content, taken apart.
struct IndexPageImage {
    std::uint8_t level = 0;  // nodes between the page and the leaves, itself included
    PageNumber previous = 0;
    PageNumber next = 0;
    PageNumber tail = 0;
    // Leaf: key and row id. Node: key, row id and child.
    std::vector<Bytes> entries;

    bool is_leaf() const { return level == 0; }
    // `level`: by the path from the root. Requires: 0 for a leaf, else not 0.
    static IndexPageImage Of(const IndexPageView& view, std::uint8_t level);
    // Child of entry `i`; the tail when i == entries.size(). Nodes only.
    PageNumber Child(std::size_t i) const;
    // Bytes of the entry area that the entries need with their longest common prefix left out.
    std::size_t EncodedBytes(const Format& format) const;
    // False: the entries do not fit; the page is unchanged.
    bool Write(std::span<std::byte> page, const Format& format, PageNumber table) const;
};

// `entry` without its child, then `child`.
Bytes NodeEntry(std::span<const std::byte> entry, PageNumber child);

inline std::size_t IndexRoom(const Format& format) {
    return format.page_size - format.index_entries_offset;
}

// Bytes of the entry area that are in use.
inline std::size_t UsedBytes(std::span<const std::byte> page, const Format& format) {
    return IndexRoom(format) - base::LoadLittle<std::uint16_t>(page.data() + kPageFreeBytes);
}

// A page that removals have left with this little is joined with a neighbour, or filled from it.
inline bool IsSparse(std::size_t used_bytes, const Format& format) {
    return used_bytes < IndexRoom(format) / 3;
}

// What two neighbours hold fits one page, and leaves it room for the next entries.
inline bool ShouldMerge(const IndexPageImage& joined, const Format& format) {
    return joined.EncodedBytes(format) <= IndexRoom(format) * 5 / 6;
}

// `view` is of `page`, a leaf. False: it cannot be done without rewriting the page, which is
// unchanged.
bool InsertInPlace(std::span<std::byte> page, const Format& format, const IndexPageView& view,
                   std::size_t position, std::span<const std::byte> entry);
bool RemoveInPlace(std::span<std::byte> page, const Format& format, const IndexPageView& view,
                   std::size_t position);
// Leaves on the page, a leaf, the entries at `positions` alone, which ascend. Requires: one at
// least. `view` is of an older copy of the same content.
void KeepEntries(std::span<std::byte> page, const Format& format, const IndexPageView& view,
                 std::span<const std::uint16_t> positions);

}  // namespace jet
