#include "jet/index/index_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstring>
#include <limits>

namespace jet {
namespace {

// Part of a lexical comparison: up to the shorter length.
int CompareBytes(std::span<const std::byte> a, std::span<const std::byte> b) {
    const std::size_t size = std::min(a.size(), b.size());
    return size == 0 ? 0 : std::memcmp(a.data(), b.data(), size);
}

constexpr std::size_t kMaxEntries = 4096;  // more than the bits of any page's mask

}  // namespace

std::optional<IndexPageView> IndexPageView::Parse(std::span<const std::byte> bytes,
                                                  const Format& format, PageNumber table) {
    const bool leaf = HasType(bytes, PageType::kIndexLeaf);
    const bool node = HasType(bytes, PageType::kIndexNode);
    if ((!leaf && !node) || LoadOwner(bytes) != table) return std::nullopt;
    IndexPageView view;
    view.bytes_ = bytes;
    view.format_ = &format;
    view.entries_ = bytes.subspan(format.index_entries_offset);
    view.prefix_ = format.index_prefix_bytes == 2
                       ? base::LoadLittle<std::uint16_t>(bytes.data() + format.index_prefix_offset)
                       : std::to_integer<std::size_t>(bytes[format.index_prefix_offset]);
    view.is_leaf_ = leaf;
    const std::span mask = bytes.subspan(format.index_mask_offset,
                                         format.index_entries_offset - format.index_mask_offset);
    if (!view.FindEnds(mask)) return std::nullopt;
    return view;
}

// False: the entries contradict each other.
bool IndexPageView::FindEnds(std::span<const std::byte> mask) {
    assert(8 * mask.size() <= kMaxEntries);
    std::array<std::uint16_t, kMaxEntries> ends;  // only the first `count` are ever written or read
    std::size_t count = 0;
    // Eight bytes of the mask at a time; most of it is empty.
    for (std::size_t at = 0; at < mask.size(); at += 8) {
        std::uint64_t word = 0;
        if (mask.size() - at >= 8)
            word = base::LoadLittle<std::uint64_t>(mask.data() + at);
        else
            for (std::size_t i = at; i < mask.size(); ++i)
                word |= std::to_integer<std::uint64_t>(mask[i]) << (8 * (i - at));
        for (; word != 0; word &= word - 1)
            ends[count++] = static_cast<std::uint16_t>(
                8 * at + static_cast<std::size_t>(std::countr_zero(word)));
    }
    if (count == 0) return true;
    ends_.assign(ends.begin(), ends.begin() + static_cast<std::ptrdiff_t>(count));
    const std::size_t child_bytes = is_leaf() ? 0 : kChildBytes;
    const std::size_t least = kRowIdBytes + child_bytes;
    // A prefix may have outlived the entries that shared it; with one entry left it is not used.
    if (ends_[0] < (count > 1 ? std::max(least, prefix_) : least) || ends_.back() > entries_.size())
        return false;
    // What an entry leaves out may be part of its row id, never of its child.
    const std::size_t least_stored = std::max(
        {std::size_t{1}, prefix_ > 0 ? child_bytes : least, least > prefix_ ? least - prefix_ : 0});
    // Below kMaxEntries, so that the compiler can take the least of eight at a time.
    auto shortest = std::numeric_limits<std::int16_t>::max();
    for (std::size_t i = 1; i < count; ++i)
        shortest = std::min(shortest, static_cast<std::int16_t>(ends_[i] - ends_[i - 1]));
    return static_cast<std::size_t>(shortest) >= least_stored;
}

int IndexPageView::Compare(std::size_t i, std::span<const std::byte> target) const {
    const std::span prefix = Prefix(i);
    if (const int order = CompareBytes(prefix, target); order != 0) return order;
    if (target.size() < prefix.size()) return 1;
    return CompareStored(i, target.subspan(prefix.size()));
}

int IndexPageView::CompareStored(std::size_t i, std::span<const std::byte> rest) const {
    std::span<const std::byte> stored = Stored(i);
    if (!is_leaf()) stored = stored.first(stored.size() - kChildBytes);
    if (const int order = CompareBytes(stored, rest); order != 0) return order;
    if (stored.size() == rest.size()) return 0;
    return stored.size() < rest.size() ? -1 : 1;
}

bool IndexPageView::StartsWith(std::size_t i, std::span<const std::byte> key) const {
    const std::span prefix = Prefix(i);
    if (CompareBytes(prefix, key) != 0) return false;
    if (key.size() <= prefix.size()) return true;
    const std::span rest = key.subspan(prefix.size());
    return rest.size() + prefix.size() <= EntryBytes(i) && CompareBytes(Stored(i), rest) == 0;
}

void IndexPageView::CopyEntry(std::size_t i, std::vector<std::byte>& entry) const {
    const std::span prefix = Prefix(i);
    const std::span stored = Stored(i);
    entry.assign(prefix.begin(), prefix.end());
    entry.insert(entry.end(), stored.begin(), stored.end());
    entry.resize(EntryBytes(i));
}

RowId IndexPageView::Row(std::size_t i) const {
    // The row id may begin in the prefix.
    const std::size_t start = EntryBytes(i) - kRowIdBytes;
    const std::size_t left_out = i == 0 ? 0 : prefix_;
    std::uint32_t word = 0;
    for (std::size_t at = start; at < start + kRowIdBytes; ++at) {
        const std::byte byte = at < left_out ? entries_[at] : entries_[Begin(i) + at - left_out];
        word = word << 8 | std::to_integer<std::uint32_t>(byte);
    }
    return {word >> 8, static_cast<std::uint8_t>(word & 0xFF)};
}

PageNumber IndexPageView::Child(std::size_t i) const {
    return base::LoadBig<std::uint32_t>(entries_.data() + ends_[i] - kChildBytes);
}

std::size_t IndexPageView::LowerBound(std::span<const std::byte> target) const {
    std::size_t low = 0;
    std::size_t high = count();
    // Every entry begins with the common prefix, which may decide.
    std::span<const std::byte> rest = target;
    if (high > 1 && prefix_ > 0) {
        const int order = CompareBytes(entries_.first(prefix_), target);
        if (order != 0) return order < 0 ? high : 0;
        if (target.size() <= prefix_) return 0;
        rest = target.subspan(prefix_);
    }
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const int order = middle == 0 ? Compare(0, target) : CompareStored(middle, rest);
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

}  // namespace jet
