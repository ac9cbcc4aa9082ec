// Removing: an entry leaves its leaf; a leaf without entries leaves the tree, and so do nodes
// without children. The key above a leaf that lost its largest entry stays: a larger one does no
// harm. What becomes of sparse pages: index_tree_balance.cpp.
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
        if (view->count() == 1 || !RemoveInPlace(bytes, file_.format, *view, position)) {
            IndexPageImage image = IndexPageImage::Of(*view);
            image.entries.erase(image.entries.begin() + static_cast<std::ptrdiff_t>(position));
            if (!image.Write(bytes, file_.format, table_)) return errors::RecordTooLarge();
        }
        return path.empty() || !IsSparse(UsedBytes(bytes, file_.format), file_.format)
                   ? base::Status()
                   : Balance(std::move(path), leaf);
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
    return WriteShrunkNode(std::move(path), step.page, image);
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
