// Finding and walking. Changing: index_tree_insert.cpp and index_tree_remove.cpp.
#include "jet/index_tree.h"

#include "jet/storage_errors.h"

#include <limits>

namespace jet {
namespace {

constexpr int kAnyLevel = -1;

}  // namespace

base::Result<IndexTree::Place> IndexTree::Load(PageNumber page, int expected_level) const {
    Place place;
    ASSIGN_OR_RETURN(place.page, file_.store.Read(page));
    auto view = IndexPageView::Parse(place.page.bytes(), file_.format, table_);
    if (!view) return errors::DamagedPage(page, "not a page of this index");
    place.view = std::move(*view);
    if (expected_level != kAnyLevel && place.view.level() != expected_level)
        return errors::DamagedPage(page, "an index page of the wrong level");
    return place;
}

// Down to the leaf where `target` is or would be. `path`, when given, receives the nodes passed.
base::Result<IndexTree::Place> IndexTree::Descend(std::span<const std::byte> target,
                                                  Path* path) const {
    ASSIGN_OR_RETURN(Place place, Load(root_, kAnyLevel));
    PageNumber page = root_;
    while (!place.view.is_leaf()) {
        const std::size_t child = place.view.LowerBound(target);
        if (path != nullptr) path->push_back({page, child});
        page = child < place.view.count() ? place.view.Child(child) : place.view.tail();
        ASSIGN_OR_RETURN(place, Load(page, place.view.level() - 1));
    }
    if (path != nullptr) path->push_back({page, 0});
    place.entry = place.view.LowerBound(target);
    return place;
}

base::Result<PageNumber> IndexTree::FindLeaf(std::span<const std::byte> target, Path& path) const {
    PageNumber page = root_;
    {
        ASSIGN_OR_RETURN(const PageView root, file_.store.Read(root_));
        if (root.bytes()[0] == static_cast<std::byte>(PageType::kIndexLeaf)) return page;
    }
    for (int level = kAnyLevel; level != 0;) {
        ASSIGN_OR_RETURN(const Place place, Load(page, level));
        if (place.view.is_leaf())
            return errors::DamagedPage(page, "an index page of the wrong level");
        const std::size_t child = place.view.LowerBound(target);
        path.push_back({page, child});
        page = child < place.view.count() ? place.view.Child(child) : place.view.tail();
        level = place.view.level() - 1;
    }
    return page;
}

base::Result<IndexTree::Place> IndexTree::Seek(std::span<const std::byte> target) const {
    ASSIGN_OR_RETURN(Place place, Descend(target, nullptr));
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
    ASSIGN_OR_RETURN(Place place, Descend(target, nullptr));
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
        if (hops-- == 0) return errors::DamagedPage(root_, "the leaves of the index form a circle");
        if (place.view.count() > 0) place.view.CopyEntry(place.view.count() - 1, last);
        ASSIGN_OR_RETURN(place, Load(next, 0));
        place.entry = 0;
        // Ascending from leaf to leaf: no walk goes in circles.
        if (!last.empty() && place.view.count() > 0 && place.view.Compare(0, last) <= 0)
            return errors::DamagedPage(next, "the leaves of the index are out of order");
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
        if (hops-- == 0) return errors::DamagedPage(root_, "the leaves of the index form a circle");
        if (place.view.count() > 0) place.view.CopyEntry(0, first);
        ASSIGN_OR_RETURN(place, Load(previous, 0));
        place.entry = place.view.count();
        if (!first.empty() && place.entry > 0 && place.view.Compare(place.entry - 1, first) >= 0)
            return errors::DamagedPage(previous, "the leaves of the index are out of order");
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
