// Inserting: an entry goes into its leaf; a leaf that is full is split, and the nodes above it when
// they are full.
#include "jet/errors.h"
#include "jet/index/index_page_split.h"
#include "jet/index/index_tree.h"

#include <algorithm>

namespace jet {
namespace {

// Two entries and what a node adds to them always fit a page, so that every page can be split.
std::size_t MaxEntryBytes(const Format& format) {
    return IndexRoom(format) / 2 - 2 * kChildBytes;
}

}  // namespace

base::Result<PageNumber> IndexTree::NewPage() {
    ASSIGN_OR_RETURN(const PageNumber page, file_.allocator.Allocate());
    RETURN_IF_ERROR(file_.Map(map_).Add(page, file_.allocator));
    return page;
}

base::Result<IndexPageImage> IndexTree::LoadImage(PageNumber page, std::uint8_t level) const {
    ASSIGN_OR_RETURN(const PageView bytes, file_.store.Read(page));
    const auto view = IndexPageView::Parse(bytes.bytes(), file_.format, table_);
    if (!view) return DamagedPage(page, "not a page of this index");
    if (view->is_leaf() != (level == 0))
        return DamagedPage(page, "an index page at the wrong depth");
    IndexPageImage image = IndexPageImage::Of(*view, level);
    if (image.is_leaf()) return image;
    ASSIGN_OR_RETURN(image.previous, NodeLink(page, image.previous, 1));
    ASSIGN_OR_RETURN(image.next, NodeLink(page, image.next, 0));
    return image;
}

// A node's link to its neighbour `other`; 0 unless that one has the link back. The links of
// nodes are never followed, and some engines do not keep them: they may lead anywhere.
base::Result<PageNumber> IndexTree::NodeLink(PageNumber page, PageNumber other,
                                             std::size_t back) const {
    if (other == 0 || other >= file_.store.page_count()) return PageNumber{0};
    ASSIGN_OR_RETURN(const PageView bytes, file_.store.Read(other));
    const auto view = IndexPageView::Parse(bytes.bytes(), file_.format, table_);
    if (!view || view->is_leaf()) return PageNumber{0};
    return (back == 0 ? view->previous() : view->next()) == page ? other : PageNumber{0};
}

base::Status IndexTree::WriteImage(PageNumber page, const IndexPageImage& image) {
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page));
    if (!image.Write(bytes, file_.format, table_)) return JetError(ErrorNumber::kRecordTooLarge);
    return {};
}

base::Status IndexTree::SetLink(PageNumber page, IndexLink link, PageNumber target) {
    if (page == 0) return {};
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page));
    if (!IndexPageView::Parse(bytes, file_.format, table_))
        return DamagedPage(page, "not a page of this index");
    base::StoreLittle(bytes.data() + file_.format.LinkOffset(link), target);
    return {};
}

base::Status IndexTree::Create() {
    ++changes_;
    return WriteImage(root_, IndexPageImage());
}

base::Result<bool> IndexTree::Insert(std::span<const std::byte> key, RowId row) {
    Bytes entry(key.begin(), key.end());
    base::AppendBig(entry, row.page << 8 | row.slot);
    if (entry.size() > MaxEntryBytes(file_.format)) return JetError(ErrorNumber::kRecordTooLarge);
    Path path;
    ASSIGN_OR_RETURN(PageNumber leaf, FindLeaf(entry, path));
    ++changes_;
    ASSIGN_OR_RETURN(std::span<std::byte> bytes, file_.store.Change(leaf));
    auto view = IndexPageView::Parse(bytes, file_.format, table_);
    if (!view) return DamagedPage(leaf, "not a leaf of this index");
    const std::size_t position = view->LowerBound(entry);
    if (position < view->count() && view->Compare(position, entry) == 0)
        return DamagedPage(leaf, "the index has an entry for a new row");
    if (position == view->count() && !IsRightmost(path)) {
        // Only when the key in the parent is larger than all entries below it.
        RETURN_IF_ERROR(SetLast(std::move(path), entry));
        path.clear();
        ASSIGN_OR_RETURN(leaf, FindLeaf(entry, path));
        ASSIGN_OR_RETURN(bytes, file_.store.Change(leaf));
        view = IndexPageView::Parse(bytes, file_.format, table_);
        if (!view || view->LowerBound(entry) != position)
            return DamagedPage(leaf, "not the leaf that was found before");
    }
    const auto has_key = [&](std::size_t i) {
        return i < view->count() && view->EntryBytes(i) == entry.size() && view->StartsWith(i, key);
    };
    const bool is_new = !has_key(position) && (position == 0 || !has_key(position - 1));
    if (InsertInPlace(bytes, file_.format, *view, position, entry)) return is_new;
    IndexPageImage image = IndexPageImage::Of(*view, 0);
    image.entries.insert(image.entries.begin() + static_cast<std::ptrdiff_t>(position),
                         std::move(entry));
    if (image.Write(bytes, file_.format, table_)) return is_new;
    const bool ascending = IsRightmost(path) && position + 1 == image.entries.size();
    RETURN_IF_ERROR(Split(std::move(path), leaf, image, ascending));
    return is_new;
}

// The key that says so stands in the lowest node whose child on the path is not the tail.
base::Status IndexTree::SetLast(Path path, std::span<const std::byte> last) {
    while (!path.empty() && path.back().is_tail)
        path.pop_back();
    if (path.empty()) return {};
    const Step step = path.back();
    path.pop_back();
    ASSIGN_OR_RETURN(IndexPageImage image, LoadImage(step.page, step.level));
    if (step.child >= image.entries.size())
        return DamagedPage(step.page, "a node that lost an entry");
    Bytes key = NodeEntry(last, image.Child(step.child));
    if (image.entries[step.child] == key) return {};
    image.entries[step.child] = std::move(key);
    if (image.EncodedBytes(file_.format) <= IndexRoom(file_.format))
        return WriteImage(step.page, image);
    return Split(std::move(path), step.page, image, false);
}

// `image` is what page `page` should hold and cannot; `path` leads to it from the root.
base::Status IndexTree::Split(Path path, PageNumber page, const IndexPageImage& image,
                              bool ascending) {
    std::vector<Bytes> lasts;
    std::vector<IndexPageImage> pieces;
    if (image.is_leaf()) {
        pieces = SplitLeaf(image, ascending, file_.format);
        for (const IndexPageImage& piece : pieces)
            lasts.push_back(piece.entries.back());
    } else {
        if (image.entries.size() < 3) return JetError(ErrorNumber::kRecordTooLarge);
        pieces = SplitNode(image, ascending, file_.format, lasts);
    }
    for (IndexPageImage& piece : pieces)
        piece.level = image.level;
    if (path.empty()) return GrowRoot(std::move(pieces), std::move(lasts));

    std::vector<Part> parts{{page, std::move(lasts[0])}};
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        ASSIGN_OR_RETURN(const PageNumber added, NewPage());
        parts.push_back({added, std::move(lasts[i])});
    }
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        pieces[i].previous = i == 0 ? image.previous : parts[i - 1].page;
        pieces[i].next = i + 1 == pieces.size() ? image.next : parts[i + 1].page;
        RETURN_IF_ERROR(WriteImage(parts[i].page, pieces[i]));
    }
    RETURN_IF_ERROR(SetLink(image.next, IndexLink::kPrevious, parts.back().page));
    return ReplaceChild(std::move(path), parts);
}

// In the node at the end of `path`, the child that was split gives way to its parts. The last part
// keeps the child's own entry (or stays the tail): nothing larger than that entry can have come in.
base::Status IndexTree::ReplaceChild(Path path, const std::vector<Part>& parts) {
    const Step step = path.back();
    path.pop_back();
    ASSIGN_OR_RETURN(IndexPageImage image, LoadImage(step.page, step.level));
    if (step.is_tail) {
        image.tail = parts.back().page;
    } else {
        Bytes& kept = image.entries[step.child];
        base::StoreBig(kept.data() + kept.size() - kChildBytes, parts.back().page);
    }
    std::vector<Bytes> added;
    for (std::size_t i = 0; i + 1 < parts.size(); ++i)
        added.push_back(NodeEntry(parts[i].last, parts[i].page));
    const auto at = image.entries.begin() +
                    static_cast<std::ptrdiff_t>(std::min(step.child, image.entries.size()));
    image.entries.insert(at, added.begin(), added.end());
    if (image.EncodedBytes(file_.format) <= IndexRoom(file_.format))
        return WriteImage(step.page, image);
    const bool ascending = step.is_tail && IsRightmost(path);
    return Split(std::move(path), step.page, image, ascending);
}

// The root page keeps its number: its content moves to new pages one level below it.
base::Status IndexTree::GrowRoot(std::vector<IndexPageImage> pieces, std::vector<Bytes> lasts) {
    std::vector<PageNumber> pages;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        ASSIGN_OR_RETURN(const PageNumber added, NewPage());
        pages.push_back(added);
    }
    IndexPageImage root;
    root.level = static_cast<std::uint8_t>(pieces[0].level + 1);
    root.tail = pages.back();
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        pieces[i].previous = i == 0 ? 0 : pages[i - 1];
        pieces[i].next = i + 1 == pieces.size() ? 0 : pages[i + 1];
        RETURN_IF_ERROR(WriteImage(pages[i], pieces[i]));
        if (i + 1 < pieces.size()) root.entries.push_back(NodeEntry(lasts[i], pages[i]));
    }
    if (root.EncodedBytes(file_.format) <= IndexRoom(file_.format)) return WriteImage(root_, root);
    return Split({}, root_, root, false);
}

}  // namespace jet
