// Sparse pages. A page that removals have left less than a third full becomes one with a neighbour
// below the same node when both fit into five sixths of a page, so that the next insert does not
// part them again; otherwise the entries are redistributed evenly. The last page of a level may
// stay sparse: keys that ascend fill it.
#include "jet/index/index_page_split.h"
#include "jet/index/index_tree.h"

#include <algorithm>

namespace jet {
namespace {

void SetChild(IndexPageImage& node, std::size_t position, PageNumber page) {
    if (position >= node.entries.size()) {
        node.tail = page;
        return;
    }
    Bytes& entry = node.entries[position];
    base::StoreBig(entry.data() + entry.size() - kChildBytes, page);
}

}  // namespace

base::Result<std::optional<IndexPageImage>> IndexTree::Join(const IndexPageImage& parent,
                                                            std::size_t left) const {
    const auto level = static_cast<std::uint8_t>(parent.level - 1);
    ASSIGN_OR_RETURN(IndexPageImage joined, LoadImage(parent.Child(left), level));
    ASSIGN_OR_RETURN(IndexPageImage right, LoadImage(parent.Child(left + 1), level));
    const bool fits = joined.is_leaf() ? joined.next == parent.Child(left + 1) &&
                                             right.previous == parent.Child(left)
                                       : true;
    if (!fits) return std::optional<IndexPageImage>();
    if (!joined.is_leaf()) {
        // The key between the two comes down from the parent.
        Bytes between = parent.entries[left];
        between.resize(between.size() - kChildBytes);
        joined.entries.push_back(NodeEntry(between, joined.tail));
    }
    std::ranges::move(right.entries, std::back_inserter(joined.entries));
    joined.tail = right.tail;
    joined.next = right.next;
    return std::optional(std::move(joined));
}

base::Status IndexTree::Balance(Path path, PageNumber page) {
    const bool is_rightmost = IsRightmost(path);
    const Step step = path.back();
    path.pop_back();
    Neighbours best{step.page, {}, 0, {}};
    ASSIGN_OR_RETURN(best.parent, LoadImage(step.page, step.level));
    const std::size_t at = std::min(step.child, best.parent.entries.size());
    if (best.parent.entries.empty() || best.parent.Child(at) != page) return {};
    bool found = false;
    for (const std::size_t left : {at - 1, at}) {
        if (left >= best.parent.entries.size()) continue;  // there is no neighbour on that side
        ASSIGN_OR_RETURN(auto joined, Join(best.parent, left));
        if (!joined) continue;
        const bool merge = ShouldMerge(*joined, file_.format);
        if (found && !merge) continue;
        found = true;
        best.left = left;
        best.joined = std::move(*joined);
        if (merge) return Merge(std::move(path), best);
    }
    if (!found) return {};
    ASSIGN_OR_RETURN(const IndexPageImage sparse,
                     LoadImage(page, static_cast<std::uint8_t>(step.level - 1)));
    const bool may_stay_sparse = is_rightmost && !sparse.entries.empty();
    return may_stay_sparse ? base::Status() : Redistribute(std::move(path), best);
}

base::Status IndexTree::MergeChildren(IndexPageImage& parent, std::size_t left,
                                      const IndexPageImage& joined) {
    const PageNumber kept = parent.Child(left);
    const PageNumber gone = parent.Child(left + 1);
    RETURN_IF_ERROR(SetLink(joined.next, IndexLink::kPrevious, kept));
    RETURN_IF_ERROR(WriteImage(kept, joined));
    RETURN_IF_ERROR(FreePage(gone));
    SetChild(parent, left + 1, kept);
    parent.entries.erase(parent.entries.begin() + static_cast<std::ptrdiff_t>(left));
    return {};
}

base::Status IndexTree::Merge(Path path, Neighbours& neighbours) {
    RETURN_IF_ERROR(MergeChildren(neighbours.parent, neighbours.left, neighbours.joined));
    return WriteShrunkNode(std::move(path), neighbours.parent_page, neighbours.parent);
}

base::Result<bool> IndexTree::ShareEntries(IndexPageImage& parent, std::size_t at,
                                           const IndexPageImage& joined) {
    const PageNumber left = parent.Child(at);
    const PageNumber right = parent.Child(at + 1);
    std::vector<Bytes> lasts;
    if (!joined.is_leaf() && joined.entries.size() < 3) return false;
    std::vector<IndexPageImage> halves = joined.is_leaf()
                                             ? SplitLeaf(joined, false, file_.format)
                                             : SplitNode(joined, false, file_.format, lasts);
    // Entries of very different lengths may not part well; then the pages stay as they are.
    for (const IndexPageImage& half : halves)
        if (halves.size() != 2 || half.EncodedBytes(file_.format) > IndexRoom(file_.format))
            return false;
    if (joined.is_leaf()) lasts = {halves[0].entries.back()};
    halves[0].level = halves[1].level = joined.level;
    halves[0].previous = joined.previous;
    halves[0].next = right;
    halves[1].previous = left;
    halves[1].next = joined.next;
    RETURN_IF_ERROR(WriteImage(left, halves[0]));
    RETURN_IF_ERROR(WriteImage(right, halves[1]));
    parent.entries[at] = NodeEntry(lasts[0], left);
    return true;
}

base::Status IndexTree::Redistribute(Path path, Neighbours& neighbours) {
    IndexPageImage& parent = neighbours.parent;
    ASSIGN_OR_RETURN(const bool is_shared,
                     ShareEntries(parent, neighbours.left, neighbours.joined));
    if (!is_shared) return {};
    if (parent.EncodedBytes(file_.format) <= IndexRoom(file_.format))
        return WriteImage(neighbours.parent_page, parent);
    return Split(std::move(path), neighbours.parent_page, parent, false);
}

base::Status IndexTree::WriteShrunkNode(Path path, PageNumber page, const IndexPageImage& image) {
    if (path.empty() && image.entries.empty())
        return CollapseRoot(image.tail, static_cast<std::uint8_t>(image.level - 1));
    RETURN_IF_ERROR(WriteImage(page, image));
    const bool sparse =
        image.entries.empty() || IsSparse(image.EncodedBytes(file_.format), file_.format);
    return path.empty() || !sparse ? base::Status() : Balance(std::move(path), page);
}

}  // namespace jet
