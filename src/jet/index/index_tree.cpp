// Finding and scanning. Changing: index_tree_insert.cpp and index_tree_remove.cpp.
#include "jet/index/index_tree.h"

#include "jet/errors.h"

#include <algorithm>

namespace jet {

bool IndexTree::IsRightmost(const Path& path) {
    return std::ranges::all_of(path, &Step::is_tail);
}

base::Result<IndexTree::Place> IndexTree::Load(PageNumber page) const {
    Place place;
    ASSIGN_OR_RETURN(place.page, file_.store.Read(page));
    auto view = IndexPageView::Parse(place.page.bytes(), file_.format, table_);
    if (!view) return DamagedPage(page, "not a page of this index");
    place.view = std::move(*view);
    return place;
}

base::Result<IndexTree::Place> IndexTree::LoadLeaf(PageNumber page) const {
    ASSIGN_OR_RETURN(Place place, Load(page));
    if (!place.view.is_leaf()) return DamagedPage(page, "not a leaf of this index");
    return place;
}

base::Result<const IndexPageView*> IndexTree::LoadNode(PageNumber number, Place& leaf) const {
    ASSIGN_OR_RETURN(PageView page, file_.store.Read(number));
    KnownNode& known = nodes_[number % nodes_.size()];
    if (known.number == number && known.page && known.page.data() == page.data())
        return &known.view;
    auto view = IndexPageView::Parse(page.bytes(), file_.format, table_);
    if (!view) return DamagedPage(number, "not a page of this index");
    if (view->is_leaf()) {
        leaf = {std::move(page), std::move(*view), 0};
        return nullptr;
    }
    known = {number, std::move(page), std::move(*view)};
    return &known.view;
}

base::Result<IndexTree::Place> IndexTree::Descend(std::span<const std::byte> target) const {
    Place leaf;
    PageNumber page = root_;
    for (std::size_t depth = 0; depth <= kMaxIndexLevels; ++depth) {
        ASSIGN_OR_RETURN(const IndexPageView* const node, LoadNode(page, leaf));
        if (node == nullptr) {
            leaf.entry = leaf.view.LowerBound(target);
            return leaf;
        }
        const std::size_t child = node->LowerBound(target);
        page = child < node->count() ? node->Child(child) : node->tail();
    }
    return DamagedPage(root_, "an index that is too deep");
}

base::Result<PageNumber> IndexTree::FindLeaf(std::span<const std::byte> target, Path& path) const {
    PageNumber page = root_;
    while (true) {
        ASSIGN_OR_RETURN(const PageView bytes, file_.store.Read(page));
        if (HasType(bytes.bytes(), PageType::kIndexLeaf)) break;
        const auto view = IndexPageView::Parse(bytes.bytes(), file_.format, table_);
        if (!view) return DamagedPage(page, "not a page of this index");
        if (path.size() >= kMaxIndexLevels) return DamagedPage(root_, "an index that is too deep");
        const std::size_t child = view->LowerBound(target);
        const bool is_tail = child >= view->count();
        path.push_back({page, child, is_tail, 0});
        page = is_tail ? view->tail() : view->Child(child);
    }
    for (std::size_t i = 0; i < path.size(); ++i)
        path[i].level = static_cast<std::uint8_t>(path.size() - i);
    return page;
}

base::Result<IndexTree::Path> IndexTree::PathTo(std::span<const std::byte> target,
                                                PageNumber page) const {
    Path path;
    ASSIGN_OR_RETURN(const PageNumber leaf, FindLeaf(target, path));
    if (leaf == page) return path;
    const auto found = std::ranges::find(path, page, &Step::page);
    if (found == path.end()) return DamagedPage(page, "a page that its index does not reach");
    path.erase(found, path.end());
    return path;
}

base::Result<IndexTree::Place> IndexTree::Seek(std::span<const std::byte> target) const {
    ASSIGN_OR_RETURN(Place place, Descend(target));
    // A node's entry may be larger than the last one below it: then the answer is on the next leaf.
    if (place.entry == place.view.count() && place.view.count() > 0) {
        --place.entry;
        RETURN_IF_ERROR(Next(place));
    } else if (place.view.count() == 0) {
        RETURN_IF_ERROR(Next(place));
    }
    return place;
}

base::Result<IndexTree::Place> IndexTree::SeekBefore(std::span<const std::byte> target) const {
    ASSIGN_OR_RETURN(Place place, Descend(target));
    RETURN_IF_ERROR(Previous(place));
    return place;
}

base::Status IndexTree::Next(Place& place) const {
    ++place.entry;
    PageNumber hops = file_.store.page_count();
    Bytes last;
    while (place.entry >= place.view.count()) {
        const PageNumber next = place.view.next();
        if (next == 0) {
            place = {};
            return {};
        }
        if (hops-- == 0) return DamagedPage(root_, "the leaves of the index form a circle");
        if (place.view.count() > 0) place.view.CopyEntry(place.view.count() - 1, last);
        ASSIGN_OR_RETURN(place, LoadLeaf(next));
        place.entry = 0;
        // Ascending from leaf to leaf: no scan goes in circles.
        if (!last.empty() && place.view.count() > 0 && place.view.Compare(0, last) <= 0)
            return DamagedPage(next, "the leaves of the index are out of order");
    }
    return {};
}

base::Status IndexTree::Previous(Place& place) const {
    PageNumber hops = file_.store.page_count();
    Bytes first;
    while (place.entry == 0) {
        const PageNumber previous = place.view.previous();
        if (previous == 0) {
            place = {};
            return {};
        }
        if (hops-- == 0) return DamagedPage(root_, "the leaves of the index form a circle");
        if (place.view.count() > 0) place.view.CopyEntry(0, first);
        ASSIGN_OR_RETURN(place, LoadLeaf(previous));
        place.entry = place.view.count();
        if (!first.empty() && place.entry > 0 && place.view.Compare(place.entry - 1, first) >= 0)
            return DamagedPage(previous, "the leaves of the index are out of order");
    }
    --place.entry;
    return {};
}

base::Result<bool> IndexTree::HasOther(std::span<const std::byte> key, RowId except) const {
    ASSIGN_OR_RETURN(Place place, Seek(key));
    while (!place.at_end() && place.view.StartsWith(place.entry, key)) {
        if (place.view.EntryBytes(place.entry) == key.size() + kRowIdBytes &&
            place.view.Row(place.entry) != except)
            return true;
        RETURN_IF_ERROR(Next(place));
    }
    return false;
}

}  // namespace jet
