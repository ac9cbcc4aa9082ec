// IndexTree: a B-tree of (key, row) entries: finding, scanning, and (with an open transaction)
// inserting and removing. Entries ascend over the whole tree by key bytes and row id. The root page
// never changes. A node's key is the last entry below its child, and stays so through every change;
// trees in which it is larger, as earlier versions left them, are read and changed as
// well. A page's height follows from its type and the path to it; the level byte is ignored, as not
// every engine maintains it. The owner of every page is checked and scans are bounded, so that a
// damaged tree ends in kCorruption.
#pragma once

#include "jet/index/index_page_editor.h"
#include "jet/rows/file_context.h"
#include "jet/rows/row_set.h"
#include "jet/rows/table_definition.h"

#include <array>
#include <optional>
#include <vector>

namespace jet {

class IndexTree {
public:
    IndexTree(FileContext& file, PageNumber table, PageNumber root, RowPointer map)
        : file_(file), table_(table), root_(root), map_(map) {}

    // One entry's place; it goes stale when the tree changes.
    struct Place {
        PageView page;
        IndexPageView view;  // of `page`
        std::size_t entry = 0;
        bool at_end() const { return !page; }
    };

    // The first entry >= `target` (key bytes, perhaps with a row id).
    base::Result<Place> Seek(std::span<const std::byte> target) const;
    // The last entry < `target`; at_end() when there is none.
    base::Result<Place> SeekBefore(std::span<const std::byte> target) const;
    base::Status Next(Place& place) const;
    base::Status Previous(Place& place) const;

    // True when some other row than `except` has exactly this key.
    base::Result<bool> HasOther(std::span<const std::byte> key, RowId except) const;

    // True: no entry beside the new one has the same key. 3047: the key is too long for the format.
    base::Result<bool> Insert(std::span<const std::byte> key, RowId row);
    // False: there was no such entry.
    base::Result<bool> Remove(std::span<const std::byte> key, RowId row);
    // Finds the row's entry whatever its key is, by a scan of the leaves; for entries whose key was
    // made by other rules.
    base::Result<bool> RemoveByScan(RowId row);
    // Removes every entry of these rows, whatever its key, in one pass over all leaves.
    base::Status Remove(const RowSet& rows);
    // Frees all pages but the root, which becomes an empty leaf.
    base::Status Clear();
    // Makes the root page an empty leaf.
    base::Status Create();

    // Incremented by every change, so that cursors know when their place is stale.
    std::uint64_t changes() const { return changes_; }

private:
    // A node on the way from the root to a leaf.
    struct Step {
        PageNumber page;
        std::size_t child;  // entry taken; the number of entries: the tail
        bool is_tail;
        std::uint8_t level;  // 1: its children are leaves
    };
    using Path = std::vector<Step>;
    // One of the pages that a page was split into; the last entry of its subtree, without a child.
    struct Part {
        PageNumber page;
        Bytes last;
    };

    // True when the leaf that the path ends with is the last of all.
    static bool IsRightmost(const Path& path);

    base::Result<Place> Load(PageNumber page) const;
    base::Result<Place> LoadLeaf(PageNumber page) const;
    // A page whose view was made before and whose bytes are still the same.
    struct KnownNode {
        PageNumber number = 0;
        PageView page;
        IndexPageView view;  // of `page`
    };
    // The view of page `number`, which is read anew to see whether it has changed. nullptr: it is a
    // leaf, `leaf`.
    base::Result<const IndexPageView*> LoadNode(PageNumber number, Place& leaf) const;
    // Down to the leaf where `target` is or would be.
    base::Result<Place> Descend(std::span<const std::byte> target) const;
    // The leaf alone, without a look at its entries; `path` receives the nodes passed.
    base::Result<PageNumber> FindLeaf(std::span<const std::byte> target, Path& path) const;
    // The nodes above `page`. Requires: `target` is below it.
    base::Result<Path> PathTo(std::span<const std::byte> target, PageNumber page) const;
    // `level`: of the page, by the path to it.
    base::Result<IndexPageImage> LoadImage(PageNumber page, std::uint8_t level) const;
    base::Result<PageNumber> NodeLink(PageNumber page, PageNumber other, std::size_t back) const;
    base::Status WriteImage(PageNumber page, const IndexPageImage& image);
    base::Result<PageNumber> NewPage();
    base::Status FreePage(PageNumber page);
    base::Status SetLink(PageNumber page, IndexLink link, PageNumber target);
    // Takes a page out of the chain of its level.
    base::Status Unlink(const IndexPageImage& image);

    // The greatest entry below the last child of `path` has become `last`. The path goes stale.
    base::Status SetLast(Path path, std::span<const std::byte> last);
    base::Status Split(Path path, PageNumber page, const IndexPageImage& image, bool ascending);
    base::Status ReplaceChild(Path path, const std::vector<Part>& parts);
    base::Status GrowRoot(std::vector<IndexPageImage> pieces, std::vector<Bytes> lasts);

    base::Status RemoveEntry(Path path, PageNumber leaf, std::span<const std::byte> entry);
    base::Status DropChild(Path path);
    base::Status CollapseRoot(PageNumber child, std::uint8_t level);

    // A node, and the two of its children that are neighbours and may become one page.
    struct Neighbours {
        PageNumber parent_page;
        IndexPageImage parent;
        std::size_t left;       // position among the parent's children
        IndexPageImage joined;  // what both hold, with the links of both
    };
    // `path` leads to the sparse page `page`.
    base::Status Balance(Path path, PageNumber page);
    // nullopt: their links contradict each other.
    base::Result<std::optional<IndexPageImage>> Join(const IndexPageImage& parent,
                                                     std::size_t left) const;
    base::Status Merge(Path path, Neighbours& neighbours);
    base::Status Redistribute(Path path, Neighbours& neighbours);
    // Both write the two children and change `parent`, which is not written.
    base::Status MergeChildren(IndexPageImage& parent, std::size_t left,
                               const IndexPageImage& joined);
    // False: the entries do not part well; nothing was changed.
    base::Result<bool> ShareEntries(IndexPageImage& parent, std::size_t left,
                                    const IndexPageImage& joined);
    // A node that has lost children; `path` leads to it.
    base::Status WriteShrunkNode(Path path, PageNumber page, const IndexPageImage& image);

    // Removal of many rows: a page below which it is done, and what it left of a page.
    struct Pruning {
        const RowSet& rows;
        std::vector<bool> seen;  // pages, so that a damaged tree has an end
        // Sparse pages that were the only child of their node: they have neighbours when that one
        // is balanced itself. Lower ones come first.
        std::vector<PageNumber> lonely = {};
    };
    struct Remains {
        PageNumber page;
        Bytes last;  // of the entries below it; empty: the same as before
        bool is_sparse = false;
    };
    // What takes the place of `page`: nothing (the page is freed), the page, or more when the keys
    // of a node have become longer. The root stays. `is_last`: of its level.
    base::Result<std::vector<Remains>> Prune(PageNumber page, std::uint8_t level, bool is_last,
                                             Pruning& pruning);
    base::Result<std::vector<Remains>> PruneLeaf(PageNumber page, const RowSet& rows);
    base::Result<std::vector<Remains>> PruneNode(PageNumber page, std::uint8_t level, bool is_last,
                                                 Pruning& pruning);
    base::Status BalanceChildren(IndexPageImage& parent, std::vector<bool>& are_sparse,
                                 bool is_last);
    base::Result<bool> BalanceChild(IndexPageImage& parent, std::vector<bool>& are_sparse,
                                    std::size_t child, bool is_last);
    base::Status BalanceLonely(PageNumber page);
    base::Result<std::vector<Remains>> SplitPruned(PageNumber page, const IndexPageImage& image);
    base::Result<std::vector<Remains>> DropPage(PageNumber page, const IndexPageImage& links);

    FileContext& file_;
    PageNumber table_;
    PageNumber root_;
    RowPointer map_;
    std::uint64_t changes_ = 0;
    // By the last bits of the page's number. A page view keeps its bytes unchanged, so that the
    // same bytes at the same place say the same.
    mutable std::array<KnownNode, 16> nodes_;
};

}  // namespace jet
