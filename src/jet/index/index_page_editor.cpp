#include "jet/index/index_page_editor.h"

#include "jet/pages/bit_set_view.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t kMaxPrefixJet3 = 255;

std::span<std::byte> MaskOf(std::span<std::byte> page, const Format& format) {
    return page.subspan(format.index_mask_offset,
                        format.index_entries_offset - format.index_mask_offset);
}

void SetUsed(std::span<std::byte> page, const Format& format, std::size_t used) {
    base::StoreLittle(page.data() + kPageFreeBytes,
                      static_cast<std::uint16_t>(IndexRoom(format) - used));
}

void SetLink(std::span<std::byte> page, const Format& format, IndexLink link, PageNumber target) {
    base::StoreLittle(page.data() + format.LinkOffset(link), target);
}

std::size_t SharedBytes(std::span<const std::byte> a, std::span<const std::byte> b) {
    const auto difference = std::ranges::mismatch(a, b);
    return static_cast<std::size_t>(difference.in1 - a.begin());
}

// Entries ascend, so what the first and the last share all share.
std::size_t CommonPrefix(const std::vector<Bytes>& entries, std::size_t child_bytes,
                         const Format& format) {
    if (entries.size() < 2) return 0;
    const std::span<const std::byte> first = entries.front();
    const std::span<const std::byte> last = entries.back();
    const std::size_t shared =
        SharedBytes(first.first(first.size() - child_bytes), last.first(last.size() - child_bytes));
    return format.index_prefix_bytes == 1 ? std::min(shared, kMaxPrefixJet3) : shared;
}

void RewriteMask(std::span<std::byte> page, const Format& format,
                 const std::vector<std::size_t>& ends) {
    const std::span mask = MaskOf(page, format);
    std::ranges::fill(mask, std::byte{0});
    for (const std::size_t end : ends)
        AssignBit(mask, end, true);
}

}  // namespace

Bytes NodeEntry(std::span<const std::byte> entry, PageNumber child) {
    Bytes bytes(entry.begin(), entry.end());
    base::AppendBig(bytes, child);
    return bytes;
}

IndexPageImage IndexPageImage::Of(const IndexPageView& view, std::uint8_t level) {
    IndexPageImage image;
    image.level = level;
    image.previous = view.previous();
    image.next = view.next();
    image.tail = view.is_leaf() ? 0 : view.tail();
    image.entries.resize(view.count());
    for (std::size_t i = 0; i < view.count(); ++i) {
        view.CopyEntry(i, image.entries[i]);
        if (!view.is_leaf()) base::AppendBig(image.entries[i], view.Child(i));
    }
    return image;
}

PageNumber IndexPageImage::Child(std::size_t i) const {
    if (i >= entries.size()) return tail;
    return base::LoadBig<std::uint32_t>(entries[i].data() + entries[i].size() - kChildBytes);
}

std::size_t IndexPageImage::EncodedBytes(const Format& format) const {
    const std::size_t prefix = CommonPrefix(entries, is_leaf() ? 0 : kChildBytes, format);
    std::size_t bytes = prefix;
    for (const Bytes& entry : entries)
        bytes += entry.size() - prefix;
    return bytes;
}

bool IndexPageImage::Write(std::span<std::byte> page, const Format& format,
                           PageNumber table) const {
    const std::size_t used = EncodedBytes(format);
    if (used > IndexRoom(format)) return false;
    const std::size_t prefix = CommonPrefix(entries, is_leaf() ? 0 : kChildBytes, format);
    std::ranges::fill(page, std::byte{0});
    StoreType(page, is_leaf() ? PageType::kIndexLeaf : PageType::kIndexNode);
    SetUsed(page, format, used);
    base::StoreLittle(page.data() + kPageOwner, table);
    SetLink(page, format, IndexLink::kPrevious, previous);
    SetLink(page, format, IndexLink::kNext, next);
    SetLink(page, format, IndexLink::kTail, tail);
    page[format.index_level_offset] = std::byte{level};
    if (format.index_prefix_bytes == 2)
        base::StoreLittle(page.data() + format.index_prefix_offset,
                          static_cast<std::uint16_t>(prefix));
    else
        page[format.index_prefix_offset] = static_cast<std::byte>(prefix);
    std::size_t at = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::size_t left_out = i == 0 ? 0 : prefix;
        const std::size_t size = entries[i].size() - left_out;
        std::memcpy(page.data() + format.index_entries_offset + at, entries[i].data() + left_out,
                    size);
        at += size;
        AssignBit(MaskOf(page, format), at, true);
    }
    return true;
}

bool InsertInPlace(std::span<std::byte> page, const Format& format, const IndexPageView& view,
                   std::size_t position, std::span<const std::byte> entry) {
    std::size_t left_out = 0;
    if (view.count() > 0) {
        left_out = view.prefix_bytes();
        if (position == 0 && left_out > 0) return false;
        if (left_out > 0 && !view.StartsWith(0, entry.first(std::min(left_out, entry.size()))))
            return false;
        if (entry.size() <= left_out) return false;
    } else if (view.prefix_bytes() != 0) {
        return false;
    }
    const std::size_t size = entry.size() - left_out;
    const std::size_t used = view.used_bytes();
    if (used + size > IndexRoom(format)) return false;
    std::vector<std::size_t> ends(view.count() + 1);
    for (std::size_t i = 0; i < position; ++i)
        ends[i] = view.End(i);
    const std::size_t start = position == 0 ? 0 : ends[position - 1];
    ends[position] = start + size;
    for (std::size_t i = position; i < view.count(); ++i)
        ends[i + 1] = view.End(i) + size;
    std::byte* const at = page.data() + format.index_entries_offset + start;
    std::memmove(at + size, at, used - start);
    std::memcpy(at, entry.data() + left_out, size);
    RewriteMask(page, format, ends);
    SetUsed(page, format, used + size);
    page[format.index_level_offset] = std::byte{0};
    return true;
}

bool RemoveInPlace(std::span<std::byte> page, const Format& format, const IndexPageView& view,
                   std::size_t position) {
    if (position == 0 && view.prefix_bytes() > 0) return false;
    const std::size_t start = position == 0 ? 0 : view.End(position - 1);
    const std::size_t size = view.End(position) - start;
    const std::size_t used = view.used_bytes();
    std::vector<std::size_t> ends;
    for (std::size_t i = 0; i < view.count(); ++i)
        if (i != position) ends.push_back(i < position ? view.End(i) : view.End(i) - size);
    std::byte* const at = page.data() + format.index_entries_offset + start;
    std::memmove(at, at + size, used - start - size);
    std::memset(page.data() + format.index_entries_offset + used - size, 0, size);
    RewriteMask(page, format, ends);
    SetUsed(page, format, used - size);
    page[format.index_level_offset] = std::byte{0};
    return true;
}

// The first of them is written whole, as the others leave out its prefix.
void KeepEntries(std::span<std::byte> page, const Format& format, const IndexPageView& view,
                 std::span<const std::uint16_t> positions) {
    const std::span area = page.subspan(format.index_entries_offset);
    Bytes first;
    view.CopyEntry(positions.front(), first);
    std::vector<std::size_t> ends{first.size()};
    // What moves goes towards the front, behind what was moved before; the first entry may be
    // longer than what stood before the second, but never reaches it: what it gained was the
    // prefix, which stood in an entry before it.
    std::size_t used = first.size();
    for (const std::uint16_t position : positions.subspan(1)) {
        const std::size_t start = view.End(position - 1U);
        const std::size_t size = view.End(position) - start;
        std::memmove(area.data() + used, area.data() + start, size);
        used += size;
        ends.push_back(used);
    }
    std::ranges::copy(first, area.begin());
    std::ranges::fill(area.subspan(used, view.used_bytes() - used), std::byte{0});
    RewriteMask(page, format, ends);
    SetUsed(page, format, used);
    page[format.index_level_offset] = std::byte{0};
}

}  // namespace jet
