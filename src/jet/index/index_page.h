// IndexPageView: the entries of one index page, leaf or node. An entry is key bytes, then the row's
// page (24 bits) and slot, then, on nodes, the child's page (32 bits); all big endian. Entries
// stand in ascending byte order; all but the first leave out the page's common prefix. The page's
// type says whether it is a leaf; its level byte is not looked at, as not every engine keeps it.
// Layout: docs/formats/jet.md, "Index pages".
#pragma once

#include "base/status.h"
#include "jet/ids.h"
#include "jet/pages/format.h"

#include <optional>
#include <vector>

namespace jet {

inline constexpr std::size_t kRowIdBytes = 4;
inline constexpr std::size_t kChildBytes = 4;

class IndexPageView {
public:
    // nullopt: no index page of this table, or its entries contradict each other. Borrows the
    // bytes.
    static std::optional<IndexPageView> Parse(std::span<const std::byte> bytes,
                                              const Format& format, PageNumber table);

    bool is_leaf() const { return is_leaf_; }
    PageNumber previous() const { return Link(IndexLink::kPrevious); }
    PageNumber next() const { return Link(IndexLink::kNext); }
    // Page of the last child, which has no entry. Nodes only.
    PageNumber tail() const { return Link(IndexLink::kTail); }
    std::size_t count() const { return ends_.size(); }
    std::size_t prefix_bytes() const { return prefix_; }
    // Bytes of the entry area that are in use.
    std::size_t used_bytes() const { return ends_.empty() ? 0 : ends_.back(); }
    // Where entry `i` ends in the entry area.
    std::size_t End(std::size_t i) const { return ends_[i]; }

    // Requires, for all below: i < count().
    // Key and row id against `target`, as bytes; <0, 0, >0.
    int Compare(std::size_t i, std::span<const std::byte> target) const;
    bool StartsWith(std::size_t i, std::span<const std::byte> key) const;
    // Key and row id; without the child.
    std::size_t EntryBytes(std::size_t i) const {
        return StoredBytes(i) + (i == 0 ? 0 : prefix_) - (is_leaf() ? 0 : kChildBytes);
    }
    void CopyEntry(std::size_t i, std::vector<std::byte>& entry) const;
    RowId Row(std::size_t i) const;
    PageNumber Child(std::size_t i) const;

    // First entry >= `target`; count() when all are smaller.
    std::size_t LowerBound(std::span<const std::byte> target) const;

private:
    bool FindEnds(std::span<const std::byte> mask);
    // As Compare, behind the bytes that the entry leaves out.
    int CompareStored(std::size_t i, std::span<const std::byte> rest) const;
    PageNumber Link(IndexLink link) const {
        return base::LoadLittle<std::uint32_t>(bytes_.data() + format_->LinkOffset(link));
    }
    std::size_t Begin(std::size_t i) const { return i == 0 ? 0 : ends_[i - 1]; }
    std::size_t StoredBytes(std::size_t i) const { return ends_[i] - Begin(i); }
    std::span<const std::byte> Stored(std::size_t i) const {
        return entries_.subspan(Begin(i), StoredBytes(i));
    }
    // The bytes that entry i leaves out.
    std::span<const std::byte> Prefix(std::size_t i) const {
        return entries_.first(i == 0 ? 0 : prefix_);
    }

    std::span<const std::byte> bytes_;
    std::span<const std::byte> entries_;
    const Format* format_ = nullptr;
    std::vector<std::uint16_t> ends_;
    std::size_t prefix_ = 0;
    bool is_leaf_ = true;
};

}  // namespace jet
