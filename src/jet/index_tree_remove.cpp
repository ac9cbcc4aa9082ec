// Removing: an entry leaves its leaf; a leaf without entries leaves the tree, and so do nodes
// without children. The key above a leaf that lost its largest entry stays: a larger one does no
// harm.
#include "jet/index_tree.h"
#include "jet/storage_errors.h"

#include <algorithm>

namespace jet {

base::Status IndexTree::FreePage(PageNumber page) {
    RETURN_IF_ERROR(file_.Map(map_).Remove(page));
    return file_.allocator.Free(page);
}

base::Status IndexTree::Unlink(const IndexPageImage& image) {
    RETURN_IF_ERROR(SetLink(image.previous, 1, image.next));
    return SetLink(image.next, 0, image.previous);
}

base::Result<bool> IndexTree::Remove(std::span<const std::byte> key, RowId row) {
    Bytes entry(key.begin(), key.end());
    base::AppendBig(entry, row.page << 8 | row.slot);
    Path path;
    std::size_t position = 0;
    {
        ASSIGN_OR_RETURN(const Place place, Descend(entry, &path));
        position = place.entry;
        if (position >= place.view.count() || place.view.Compare(position, entry) != 0)
            return false;
    }
    RETURN_IF_ERROR(RemoveEntry(std::move(path), position));
    return true;
}

base::Result<bool> IndexTree::RemoveByWalk(RowId row) {
    Bytes entry;
    {
        ASSIGN_OR_RETURN(Place place, Seek({}));
        while (!place.at_end() && place.view.Row(place.entry) != row)
            RETURN_IF_ERROR(Next(place));
        if (place.at_end()) return false;
        place.view.CopyEntry(place.entry, entry);
    }
    entry.resize(entry.size() - kRowIdBytes);
    return Remove(entry, row);
}

// `path` ends with the leaf.
base::Status IndexTree::RemoveEntry(Path path, std::size_t position) {
    ++changes_;
    const PageNumber leaf = path.back().page;
    path.pop_back();
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(leaf));
    const auto view = IndexPageView::Parse(bytes, file_.format, table_);
    if (!view || position >= view->count())
        return errors::DamagedPage(leaf, "not a page of this index");
    if (view->count() > 1 || path.empty()) {
        if (view->count() > 1 && RemoveInPlace(bytes, file_.format, *view, position)) return {};
        IndexPageImage image = IndexPageImage::Of(*view);
        image.entries.erase(image.entries.begin() + static_cast<std::ptrdiff_t>(position));
        return WriteImage(leaf, image);
    }
    const IndexPageImage image = IndexPageImage::Of(*view);
    RETURN_IF_ERROR(Unlink(image));
    RETURN_IF_ERROR(FreePage(leaf));
    return DropChild(std::move(path));
}

// The child that the last step of `path` took is gone.
base::Status IndexTree::DropChild(Path path) {
    const Step step = path.back();
    path.pop_back();
    ASSIGN_OR_RETURN(IndexPageImage image, LoadImage(step.page));
    if (image.entries.empty()) {
        // A node that had its tail only.
        if (path.empty()) return Create();
        RETURN_IF_ERROR(Unlink(image));
        RETURN_IF_ERROR(FreePage(step.page));
        return DropChild(std::move(path));
    }
    if (step.child < image.entries.size()) {
        image.entries.erase(image.entries.begin() + static_cast<std::ptrdiff_t>(step.child));
    } else {
        image.tail = image.Child(image.entries.size() - 1);
        image.entries.pop_back();
    }
    RETURN_IF_ERROR(WriteImage(step.page, image));
    if (!image.entries.empty()) return {};
    return path.empty() ? CollapseRoot(image.tail) : MergeLonelyNode(std::move(path), step.page);
}

// The root takes over the content of its only child, and so on downwards.
base::Status IndexTree::CollapseRoot(PageNumber child) {
    while (true) {
        ASSIGN_OR_RETURN(IndexPageImage image, LoadImage(child));
        image.previous = 0;
        image.next = 0;
        RETURN_IF_ERROR(WriteImage(root_, image));
        RETURN_IF_ERROR(FreePage(child));
        if (image.is_leaf() || !image.entries.empty()) return {};
        child = image.tail;
    }
}

// A node with one child joins a neighbour below the same parent, if that has room.
base::Status IndexTree::MergeLonelyNode(Path path, PageNumber node) {
    const Step step = path.back();
    path.pop_back();
    ASSIGN_OR_RETURN(IndexPageImage parent, LoadImage(step.page));
    if (parent.entries.empty()) return {};
    ASSIGN_OR_RETURN(const IndexPageImage lonely, LoadImage(node));
    const std::size_t at = std::min(step.child, parent.entries.size());
    const bool with_left = at > 0;
    const PageNumber neighbour = parent.Child(with_left ? at - 1 : at + 1);
    ASSIGN_OR_RETURN(IndexPageImage joined, LoadImage(neighbour));
    // The key between the two, from the parent.
    Bytes between = parent.entries[with_left ? at - 1 : at];
    between.resize(between.size() - kChildBytes);
    if (with_left) {
        joined.entries.push_back(NodeEntry(between, joined.tail));
        joined.tail = lonely.tail;
    } else {
        joined.entries.insert(joined.entries.begin(), NodeEntry(between, lonely.tail));
    }
    if (joined.EncodedBytes(file_.format) > IndexRoom(file_.format)) return {};
    if (joined.previous == node) joined.previous = lonely.previous;
    if (joined.next == node) joined.next = lonely.next;
    RETURN_IF_ERROR(WriteImage(neighbour, joined));
    RETURN_IF_ERROR(Unlink(lonely));
    RETURN_IF_ERROR(FreePage(node));
    if (with_left) {
        if (at < parent.entries.size()) {
            Bytes& kept = parent.entries[at];
            base::StoreBig(kept.data() + kept.size() - kChildBytes, neighbour);
        } else {
            parent.tail = neighbour;
        }
        parent.entries.erase(parent.entries.begin() + static_cast<std::ptrdiff_t>(at - 1));
    } else {
        parent.entries.erase(parent.entries.begin());
    }
    RETURN_IF_ERROR(WriteImage(step.page, parent));
    if (!parent.entries.empty()) return {};
    return path.empty() ? CollapseRoot(parent.tail) : MergeLonelyNode(std::move(path), step.page);
}

base::Status IndexTree::Clear() {
    UsageMap map = file_.Map(map_);
    ASSIGN_OR_RETURN(const std::vector<PageNumber> pages, map.Members());
    for (const PageNumber page : pages) {
        if (page == root_) continue;
        RETURN_IF_ERROR(FreePage(page));
    }
    return Create();
}

}  // namespace jet
