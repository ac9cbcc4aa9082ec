// Removing: an entry leaves its leaf; a leaf without entries leaves the tree, and so do nodes
// without children. Where the greatest entry below a node's child goes, the node's key follows.
// For sparse pages see index_tree_balance.cpp.
#include "jet/errors.h"
#include "jet/index/index_tree.h"

#include <algorithm>

namespace jet {

base::Status IndexTree::FreePage(PageNumber page) {
    RETURN_IF_ERROR(file_.Map(map_).Remove(page));
    return file_.allocator.Free(page);
}

base::Status IndexTree::Unlink(const IndexPageImage& image) {
    RETURN_IF_ERROR(SetLink(image.previous, IndexLink::kNext, image.next));
    return SetLink(image.next, IndexLink::kPrevious, image.previous);
}

base::Result<bool> IndexTree::Remove(std::span<const std::byte> key, RowId row) {
    Bytes entry(key.begin(), key.end());
    base::AppendBig(entry, row.page << 8 | row.slot);
    Path path;
    ASSIGN_OR_RETURN(const PageNumber leaf, FindLeaf(entry, path));
    {
        ASSIGN_OR_RETURN(const Place place, LoadLeaf(leaf));
        const std::size_t position = place.view.LowerBound(entry);
        if (position >= place.view.count() || place.view.Compare(position, entry) != 0)
            return false;
    }
    RETURN_IF_ERROR(RemoveEntry(std::move(path), leaf, entry));
    return true;
}

base::Result<bool> IndexTree::RemoveByScan(RowId row) {
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

// `path` leads to the leaf.
base::Status IndexTree::RemoveEntry(Path path, PageNumber leaf, std::span<const std::byte> entry) {
    ++changes_;
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(leaf));
    const auto view = IndexPageView::Parse(bytes, file_.format, table_);
    if (!view) return DamagedPage(leaf, "not a page of this index");
    const std::size_t position = view->LowerBound(entry);
    if (position >= view->count()) return DamagedPage(leaf, "not a page of this index");
    const std::size_t left = view->count() - 1;  // entries that stay
    if (left == 0 && !path.empty()) {
        RETURN_IF_ERROR(Unlink(IndexPageImage::Of(*view, 0)));
        RETURN_IF_ERROR(FreePage(leaf));
        return DropChild(std::move(path));
    }
    Bytes last;
    if (position == left && left > 0) view->CopyEntry(left - 1, last);
    if (left == 0 || !RemoveInPlace(bytes, file_.format, *view, position)) {
        IndexPageImage image = IndexPageImage::Of(*view, 0);
        image.entries.erase(image.entries.begin() + static_cast<std::ptrdiff_t>(position));
        if (!image.Write(bytes, file_.format, table_))
            return JetError(ErrorNumber::kRecordTooLarge);
    }
    const bool is_sparse = !path.empty() && IsSparse(UsedBytes(bytes, file_.format), file_.format);
    if (!last.empty() && !IsRightmost(path)) {
        RETURN_IF_ERROR(SetLast(std::move(path), last));
        if (!is_sparse) return {};
        ASSIGN_OR_RETURN(path, PathTo(last, leaf));
    }
    return is_sparse ? Balance(std::move(path), leaf) : base::Status();
}

// The child that the last step of `path` took is gone.
base::Status IndexTree::DropChild(Path path) {
    const Step step = path.back();
    path.pop_back();
    ASSIGN_OR_RETURN(IndexPageImage image, LoadImage(step.page, step.level));
    if (image.entries.empty()) {
        // A node that had its tail only.
        if (path.empty()) return Create();
        RETURN_IF_ERROR(Unlink(image));
        RETURN_IF_ERROR(FreePage(step.page));
        return DropChild(std::move(path));
    }
    if (!step.is_tail) {
        image.entries.erase(image.entries.begin() + static_cast<std::ptrdiff_t>(step.child));
        return WriteShrunkNode(std::move(path), step.page, image);
    }
    image.tail = image.Child(image.entries.size() - 1);
    Bytes last = std::move(image.entries.back());
    last.resize(last.size() - kChildBytes);
    image.entries.pop_back();
    if (IsRightmost(path)) return WriteShrunkNode(std::move(path), step.page, image);
    RETURN_IF_ERROR(WriteImage(step.page, image));
    RETURN_IF_ERROR(SetLast(std::move(path), last));
    ASSIGN_OR_RETURN(path, PathTo(last, step.page));
    return WriteShrunkNode(std::move(path), step.page, image);
}

// The root takes over the content of its only child, and so on downwards.
base::Status IndexTree::CollapseRoot(PageNumber child, std::uint8_t level) {
    while (true) {
        ASSIGN_OR_RETURN(IndexPageImage image, LoadImage(child, level));
        image.previous = 0;
        image.next = 0;
        RETURN_IF_ERROR(WriteImage(root_, image));
        RETURN_IF_ERROR(FreePage(child));
        if (image.is_leaf() || !image.entries.empty()) return {};
        child = image.tail;
        --level;
    }
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
