// Removing the entries of many rows: every page once, from the leaves up. A page that is left
// without entries leaves the tree, sparse ones are balanced among the children of their node as
// after single removals (index_tree_balance.cpp), and each node is written when all below it is
// done, once for what went away and once more for each of its pages that balancing merged.
#include "jet/errors.h"
#include "jet/index/index_page_split.h"
#include "jet/index/index_tree.h"

#include <algorithm>

namespace jet {

base::Status IndexTree::Remove(const RowSet& rows) {
    ++changes_;
    Path path;
    RETURN_IF_ERROR(FindLeaf({}, path).status());
    Pruning pruning{rows, std::vector<bool>(file_.store.page_count())};
    ASSIGN_OR_RETURN(const std::vector<Remains> left,
                     Prune(root_, static_cast<std::uint8_t>(path.size()), true, pruning));
    if (left.empty()) return Create();
    for (std::size_t i = pruning.lonely.size(); i-- > 0;)
        RETURN_IF_ERROR(BalanceLonely(pruning.lonely[i]));
    return {};
}

base::Result<std::vector<IndexTree::Remains>> IndexTree::Prune(PageNumber page, std::uint8_t level,
                                                               bool is_last, Pruning& pruning) {
    if (page >= pruning.seen.size() || pruning.seen[page])
        return DamagedPage(page, "a page that its index reaches twice");
    pruning.seen[page] = true;
    return level == 0 ? PruneLeaf(page, pruning.rows) : PruneNode(page, level, is_last, pruning);
}

base::Result<std::vector<IndexTree::Remains>> IndexTree::DropPage(PageNumber page,
                                                                  const IndexPageImage& links) {
    if (page != root_) {
        RETURN_IF_ERROR(Unlink(links));
        RETURN_IF_ERROR(FreePage(page));
    }
    return std::vector<Remains>();
}

base::Result<std::vector<IndexTree::Remains>> IndexTree::PruneLeaf(PageNumber page,
                                                                   const RowSet& rows) {
    ASSIGN_OR_RETURN(const Place leaf, LoadLeaf(page));
    std::vector<Remains> left{{page, {}, false}};
    std::vector<std::uint16_t> kept;
    const std::size_t count = leaf.view.count();
    for (std::size_t i = 0; i < count; ++i)
        if (!rows.Contains(leaf.view.Row(i))) kept.push_back(static_cast<std::uint16_t>(i));
    if (kept.size() == count) return left;
    if (kept.empty()) {
        IndexPageImage links;
        links.previous = leaf.view.previous();
        links.next = leaf.view.next();
        return DropPage(page, links);
    }
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page));
    KeepEntries(bytes, file_.format, leaf.view, kept);
    if (kept.back() + std::size_t{1} != count) leaf.view.CopyEntry(kept.back(), left[0].last);
    left[0].is_sparse = IsSparse(UsedBytes(bytes, file_.format), file_.format);
    return left;
}

base::Result<std::vector<IndexTree::Remains>>
IndexTree::PruneNode(PageNumber page, std::uint8_t level, bool is_last, Pruning& pruning) {
    ASSIGN_OR_RETURN(const IndexPageImage before, LoadImage(page, level));
    IndexPageImage image = before;
    image.entries.clear();
    std::vector<Bytes> lasts;  // of the children that are left
    std::vector<PageNumber> children;
    std::vector<bool> are_sparse;
    const std::size_t count = before.entries.size();
    for (std::size_t i = 0; i <= count; ++i) {
        const auto child_level = static_cast<std::uint8_t>(level - 1);
        ASSIGN_OR_RETURN(std::vector<Remains> left,
                         Prune(before.Child(i), child_level, is_last && i == count, pruning));
        for (Remains& remains : left) {
            if (remains.last.empty() && i < count) {
                remains.last = before.entries[i];
                remains.last.resize(remains.last.size() - kChildBytes);
            }
            children.push_back(remains.page);
            lasts.push_back(std::move(remains.last));
            are_sparse.push_back(remains.is_sparse);
        }
    }
    if (children.empty()) return DropPage(page, before);
    Remains remains{page, std::move(lasts.back()), false};
    for (std::size_t i = 0; i + 1 < children.size(); ++i)
        image.entries.push_back(NodeEntry(lasts[i], children[i]));
    image.tail = children.back();
    RETURN_IF_ERROR(BalanceChildren(image, are_sparse, is_last));
    if (image.entries.empty() && are_sparse.front()) pruning.lonely.push_back(image.tail);
    if (page == root_ && image.entries.empty()) {
        RETURN_IF_ERROR(CollapseRoot(image.tail, static_cast<std::uint8_t>(level - 1)));
        return std::vector{std::move(remains)};
    }
    if (image.entries == before.entries && image.tail == before.tail)
        return std::vector{std::move(remains)};
    const std::size_t bytes = image.EncodedBytes(file_.format);
    if (bytes > IndexRoom(file_.format)) {
        ASSIGN_OR_RETURN(std::vector<Remains> parts, SplitPruned(page, image));
        if (!parts.empty()) parts.back().last = std::move(remains.last);
        return parts;
    }
    RETURN_IF_ERROR(WriteImage(page, image));
    remains.is_sparse = image.entries.empty() || IsSparse(bytes, file_.format);
    return std::vector{std::move(remains)};
}

// A node whose keys have become too long for it.
base::Result<std::vector<IndexTree::Remains>> IndexTree::SplitPruned(PageNumber page,
                                                                     const IndexPageImage& image) {
    if (image.entries.size() < 3) return JetError(ErrorNumber::kRecordTooLarge);
    std::vector<Bytes> lasts;
    std::vector<IndexPageImage> pieces = SplitNode(image, false, file_.format, lasts);
    for (IndexPageImage& piece : pieces)
        piece.level = image.level;
    if (page == root_) {
        RETURN_IF_ERROR(GrowRoot(std::move(pieces), std::move(lasts)));
        return std::vector{Remains{page, {}, false}};
    }
    std::vector<Remains> parts{{page, std::move(lasts[0]), false}};
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        ASSIGN_OR_RETURN(const PageNumber added, NewPage());
        parts.push_back({added, std::move(lasts[i]), false});
    }
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        pieces[i].previous = i == 0 ? image.previous : parts[i - 1].page;
        pieces[i].next = i + 1 == pieces.size() ? image.next : parts[i + 1].page;
        RETURN_IF_ERROR(WriteImage(parts[i].page, pieces[i]));
    }
    RETURN_IF_ERROR(SetLink(image.next, IndexLink::kPrevious, parts.back().page));
    return parts;
}

base::Status IndexTree::BalanceChildren(IndexPageImage& parent, std::vector<bool>& are_sparse,
                                        bool is_last) {
    for (std::size_t child = 0; child < are_sparse.size();) {
        bool is_merged = false;
        if (are_sparse[child]) {
            ASSIGN_OR_RETURN(is_merged, BalanceChild(parent, are_sparse, child, is_last));
        }
        // What was merged may be sparse still.
        if (!is_merged)
            ++child;
        else if (child > 0)
            --child;
    }
    return {};
}

// `page` may be balanced or gone by now.
base::Status IndexTree::BalanceLonely(PageNumber page) {
    Bytes entry;  // some entry below the page
    PageNumber below = page;
    for (std::size_t depth = 0; entry.empty() && depth <= kMaxIndexLevels; ++depth) {
        ASSIGN_OR_RETURN(const PageView bytes, file_.store.Read(below));
        const auto view = IndexPageView::Parse(bytes.bytes(), file_.format, table_);
        if (!view) return {};
        const bool is_sparse = view->count() == 0 || IsSparse(view->used_bytes(), file_.format);
        if (below == page && !is_sparse) return {};
        if (!view->is_leaf())
            below = view->count() == 0 ? view->tail() : view->Child(0);
        else if (view->count() == 0)
            return {};
        else
            view->CopyEntry(0, entry);
    }
    Path path;
    ASSIGN_OR_RETURN(const PageNumber leaf, FindLeaf(entry, path));
    if (leaf != page) {
        const auto found = std::ranges::find(path, page, &Step::page);
        if (found == path.end()) return {};
        path.erase(found, path.end());
    }
    return path.empty() ? base::Status() : Balance(std::move(path), page);
}

// True: the child and a neighbour are one now.
base::Result<bool> IndexTree::BalanceChild(IndexPageImage& parent, std::vector<bool>& are_sparse,
                                           std::size_t child, bool is_last) {
    std::optional<std::size_t> left_to_share;
    IndexPageImage joined_to_share;
    for (const std::size_t left : {child - 1, child}) {
        if (left >= parent.entries.size()) continue;  // there is no neighbour on that side
        ASSIGN_OR_RETURN(auto joined, Join(parent, left));
        if (!joined) continue;
        if (ShouldMerge(*joined, file_.format)) {
            RETURN_IF_ERROR(MergeChildren(parent, left, *joined));
            const auto gone = are_sparse.begin() + static_cast<std::ptrdiff_t>(left);
            are_sparse.erase(gone);
            are_sparse[left] = IsSparse(joined->EncodedBytes(file_.format), file_.format);
            return true;
        }
        if (left_to_share) continue;
        left_to_share = left;
        joined_to_share = std::move(*joined);
    }
    if (!left_to_share) return false;
    if (is_last && child == parent.entries.size()) {
        ASSIGN_OR_RETURN(const IndexPageImage sparse,
                         LoadImage(parent.tail, static_cast<std::uint8_t>(parent.level - 1)));
        if (!sparse.entries.empty()) return false;  // the last page of a level may stay sparse
    }
    ASSIGN_OR_RETURN(const bool is_shared, ShareEntries(parent, *left_to_share, joined_to_share));
    if (is_shared) are_sparse[*left_to_share] = are_sparse[*left_to_share + 1] = false;
    return false;
}

}  // namespace jet
