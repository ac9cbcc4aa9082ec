#include "jet/check/check_index.h"

#include "base/unicode.h"
#include "jet/check/check_keys.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace jet::check {
namespace {

constexpr std::size_t kChildSize = 4;

using Entry = EntryList::Entry;

bool IsBefore(Entry a, Entry b) {
    const std::size_t common = std::min(a.size(), b.size());
    const int order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    return order != 0 ? order < 0 : a.size() < b.size();
}

bool SameBytes(Entry a, Entry b) {
    return std::ranges::equal(a, b);
}

Entry KeyOf(Entry entry) {
    return entry.first(entry.size() - std::min(entry.size(), kRowIdSize));
}

Entry RowIdOf(Entry entry) {
    return entry.last(std::min(entry.size(), kRowIdSize));
}

struct IndexPage {
    bool is_leaf = true;
    unsigned level = 0;  // what the page says
    PageNumber previous = 0;
    PageNumber next = 0;
    PageNumber tail = 0;
    std::vector<Bytes> entries;
};

class TreeScan {
public:
    TreeScan(CheckRun& run, const Definition& definition, const RealIndex& index)
        : run_(run), definition_(definition), index_(index),
          name_("index " + base::ToUtf8(index.name)) {}

    // All leaf entries in the order of the tree.
    EntryList& Scan() {
        const auto owned = run_.ReadMap(index_.map, name_);
        Visit(index_.root, definition_.page, 0);
        CheckLinks();
        if (owned) CheckMap(*owned);
        for (std::size_t i = 1; i < entries_.size(); ++i)
            if (!IsBefore(entries_[i - 1], entries_[i])) {
                run_.Fault(PageOf(i), -1, name_ + ": the entries are not in order");
                break;
            }
        return entries_;
    }

    PageNumber PageOf(std::size_t entry) const {
        return entry < pages_of_entries_.size() ? pages_of_entries_[entry] : index_.root;
    }

private:
    // `depth`: nodes above the page. The levels from it down to the leaves; nullopt: they are not
    // known.
    std::optional<unsigned> Visit(PageNumber page, PageNumber from, unsigned depth) {
        const auto content = ReadPage(page, from);
        if (!content) return std::nullopt;
        std::optional<unsigned> height = 0;
        if (content->is_leaf) {
            VisitLeaf(page, *content);
        } else if (depth >= kMaxIndexLevels) {
            run_.Fault(page, -1, name_ + ": the tree is too deep");
            return std::nullopt;
        } else {
            height = VisitNode(page, *content, depth);
        }
        if (height && content->level != *height)
            Inexact(run_.options().exact_levels, page,
                    name_ + ": a page that says level " + std::to_string(content->level) +
                        ", but is of level " + std::to_string(*height));
        return height;
    }

    std::optional<unsigned> VisitNode(PageNumber page, const IndexPage& content, unsigned depth) {
        if (content.entries.empty())
            Inexact(run_.options().exact_levels, page, name_ + ": a node without an entry");
        if (content.tail == 0) run_.Fault(page, -1, name_ + ": a node without a tail");
        std::optional<unsigned> height;
        const auto add = [&](std::optional<unsigned> child) {
            if (child && height && *child != *height)
                run_.Fault(page, -1, name_ + ": the children are of different levels");
            if (child) height = child;
        };
        for (const Bytes& entry : content.entries)
            add(VisitChild(page, entry, depth + 1));
        if (content.tail != 0) add(Visit(content.tail, page, depth + 1));
        return height ? std::optional(*height + 1) : std::nullopt;
    }

    std::optional<unsigned> VisitChild(PageNumber page, const Bytes& entry, unsigned depth) {
        if (entry.size() < kChildSize + kRowIdSize) {
            run_.Fault(page, -1, name_ + ": an entry of a node is too short");
            return std::nullopt;
        }
        const std::size_t key_size = entry.size() - kChildSize;
        const std::size_t before = entries_.size();
        const auto height =
            Visit(base::LoadBig<std::uint32_t>(entry.data() + key_size), page, depth);
        floor_.assign(entry.begin(), entry.begin() + static_cast<std::ptrdiff_t>(key_size));
        if (!entries_.empty() && IsBefore(floor_, entries_.back()))
            run_.Fault(page, -1, name_ + ": an entry of a node is less than what is below it");
        else if (entries_.size() > before && !SameBytes(floor_, entries_.back()))
            Inexact(run_.options().exact_node_keys, page,
                    name_ + ": an entry of a node is larger than the last one below it");
        return height;
    }

    void VisitLeaf(PageNumber page, const IndexPage& content) {
        leaves_.push_back({page, content.previous, content.next});
        if (content.tail != 0) run_.Fault(page, -1, name_ + ": a leaf with a tail");
        if (content.entries.empty() && page != index_.root)
            Inexact(run_.options().exact_levels, page, name_ + ": an empty leaf");
        if (!content.entries.empty() && !floor_.empty() && !(floor_ < content.entries.front()))
            run_.Fault(page, -1, name_ + ": an entry that the node above has before this leaf");
        for (const Bytes& entry : content.entries) {
            if (entry.size() <= kRowIdSize) run_.Fault(page, -1, name_ + ": an entry is too short");
            entries_.Append(entry);
            pages_of_entries_.push_back(page);
        }
    }

    // What every engine can read.
    void Inexact(bool is_fault, PageNumber page, std::string text) {
        if (is_fault)
            run_.Fault(page, -1, std::move(text));
        else
            run_.Warn(page, -1, std::move(text));
    }

    std::optional<IndexPage> ReadPage(PageNumber page, PageNumber from) {
        const auto view = run_.Page(page, from);
        if (!view || !run_.Claim(page, name_)) return std::nullopt;
        visited_.insert(page);
        const auto bytes = view->bytes();
        const Format& format = run_.format();
        IndexPage content;
        content.level = std::to_integer<unsigned>(bytes[format.index_level_offset]);
        content.is_leaf = HasType(bytes, PageType::kIndexLeaf);
        if ((!content.is_leaf && !HasType(bytes, PageType::kIndexNode)) ||
            bytes[kSecondByteAt] != kSecondByte) {
            run_.Fault(page, -1, "is not a page of " + name_);
            return std::nullopt;
        }
        if (LoadOwner(bytes) != definition_.page)
            run_.Fault(page, -1, "belongs to " + name_ + ", but does not say so");
        const auto link = [&](IndexLink which) {
            return base::LoadLittle<std::uint32_t>(bytes.data() + format.LinkOffset(which));
        };
        content.previous = link(IndexLink::kPrevious);
        content.next = link(IndexLink::kNext);
        content.tail = link(IndexLink::kTail);
        ReadEntries(page, bytes, content);
        return content;
    }

    void ReadEntries(PageNumber page, std::span<const std::byte> bytes, IndexPage& content) {
        const Format& format = run_.format();
        const std::size_t prefix_size =
            format.jet4()
                ? base::LoadLittle<std::uint16_t>(bytes.data() + format.index_prefix_offset)
                : std::to_integer<std::size_t>(bytes[format.index_prefix_offset]);
        const auto mask = bytes.subspan(format.index_mask_offset,
                                        format.index_entries_offset - format.index_mask_offset);
        const auto area = bytes.subspan(format.index_entries_offset);
        std::size_t start = 0;
        for (std::size_t bit = 0; bit < 8 * mask.size(); ++bit) {
            if ((std::to_integer<unsigned>(mask[bit / 8]) >> (bit % 8) & 1U) == 0) continue;
            if (bit > area.size() || bit <= start) {
                run_.Fault(page, -1, name_ + ": an entry reaches outside of the page");
                return;
            }
            Bytes entry;
            if (!content.entries.empty()) {
                const Bytes& first = content.entries.front();
                if (prefix_size > first.size()) {
                    run_.Fault(page, -1, name_ + ": the prefix is longer than the first entry");
                    return;
                }
                if (!content.is_leaf && bit - start < kChildSize) {
                    run_.Fault(page, -1, name_ + ": the prefix reaches into a child's number");
                    return;
                }
                entry.assign(first.begin(),
                             first.begin() + static_cast<std::ptrdiff_t>(prefix_size));
            }
            const auto part = area.subspan(start, bit - start);
            entry.insert(entry.end(), part.begin(), part.end());
            content.entries.push_back(std::move(entry));
            start = bit;
        }
        const auto free = base::LoadLittle<std::uint16_t>(bytes.data() + kPageFreeBytes);
        if (free != area.size() - start)
            run_.Fault(page, -1,
                       name_ + ": says that " + std::to_string(free) + " bytes are free, but " +
                           std::to_string(area.size() - start) + " are");
    }

    void CheckLinks() {
        for (std::size_t i = 0; i < leaves_.size(); ++i) {
            const PageNumber previous = i == 0 ? 0 : leaves_[i - 1].page;
            const PageNumber next = i + 1 == leaves_.size() ? 0 : leaves_[i + 1].page;
            if (leaves_[i].previous != previous || leaves_[i].next != next)
                run_.Fault(leaves_[i].page, -1, name_ + ": the links between the leaves are wrong");
        }
    }

    void CheckMap(const PageSet& owned) {
        for (const PageNumber page : owned)
            if (!visited_.contains(page))
                run_.Fault(page, -1, "is in the map of " + name_ + ", but not in its tree");
        for (const PageNumber page : visited_)
            if (!owned.contains(page))
                run_.Fault(page, -1, "is in the tree of " + name_ + ", but not in its map");
    }

    struct Leaf {
        PageNumber page, previous, next;
    };

    CheckRun& run_;
    const Definition& definition_;
    const RealIndex& index_;
    std::string name_;
    PageSet visited_;
    std::vector<Leaf> leaves_;
    EntryList entries_;
    Bytes floor_;  // the last key of a node that was passed: what follows is larger
    std::vector<PageNumber> pages_of_entries_;
};

// The beginning, as far as a line is read.
std::string Hex(Entry bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    constexpr std::size_t kMaxBytesShown = 48;
    for (const std::byte byte : bytes.first(std::min(bytes.size(), kMaxBytesShown))) {
        text += kDigits[std::to_integer<unsigned>(byte) >> 4];
        text += kDigits[std::to_integer<unsigned>(byte) & 15];
    }
    return text;
}

void ReportAtRow(CheckRun& run, Entry entry, const std::string& text, bool is_fault) {
    const Entry id = RowIdOf(entry);
    if (id.size() < kRowIdSize) return run.Fault(0, -1, text);
    const auto word = base::LoadBig<std::uint32_t>(id.data());
    const auto row = static_cast<int>(word & 0xFF);
    if (is_fault)
        run.Fault(word >> 8, row, text);
    else
        run.Warn(word >> 8, row, text);
}

bool ByRowId(Entry a, Entry b) {
    return IsBefore(RowIdOf(a), RowIdOf(b));
}

// Goes through what is there and what must be there, both by row id, side by side.
void CompareByRow(CheckRun& run, const std::string& name, EntryList& found, EntryList& wanted,
                  bool knows_keys) {
    found.Sort(ByRowId);
    wanted.Sort(ByRowId);
    std::size_t there = 0;
    std::size_t due = 0;
    while (there < found.size() || due < wanted.size()) {
        if (due == wanted.size() || (there < found.size() && ByRowId(found[there], wanted[due]))) {
            ReportAtRow(run, found[there++], name + " has an entry for a row that is not there",
                        true);
        } else if (there == found.size() || ByRowId(wanted[due], found[there])) {
            ReportAtRow(run, wanted[due++], name + " has no entry for this row", true);
        } else {
            const Entry is = found[there++];
            const Entry must_be = wanted[due++];
            if (knows_keys && !SameBytes(is, must_be))
                ReportAtRow(run, must_be,
                            name + ": the key is " + Hex(KeyOf(is)) + ", but the row gives " +
                                Hex(KeyOf(must_be)),
                            !run.written_by_later_engine() || !SamePrimaryWeights(is, must_be));
        }
    }
}

void CheckUnique(CheckRun& run, const std::string& name, const EntryList& expected) {
    for (std::size_t i = 1; i < expected.size(); ++i)
        if (!expected.IsMarked(i) && SameBytes(KeyOf(expected[i - 1]), KeyOf(expected[i])))
            ReportAtRow(run, expected[i], name + ": another row has the same key", true);
}

bool AreSame(const EntryList& a, const EntryList& b) {
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        if (!SameBytes(a[i], b[i])) return false;
    return a.size() == b.size();
}

}  // namespace

void CheckIndex(CheckRun& run, const Definition& definition, const RealIndex& index,
                EntryList expected, bool knows_keys) {
    const std::string name = "index " + base::ToUtf8(index.name);
    TreeScan scan(run, definition, index);
    EntryList& found = scan.Scan();
    run.report().index_entries += found.size();
    expected.Sort(IsBefore);
    if (index.unique() && knows_keys) CheckUnique(run, name, expected);
    if (!AreSame(found, expected)) CompareByRow(run, name, found, expected, knows_keys);
}

}  // namespace jet::check
