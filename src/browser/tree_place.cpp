#include "browser/tree_place.h"

#include <QtWidgets/QScrollBar>

#include <algorithm>
#include <iterator>

namespace browser {
void TreePlace::Remember(const TableTreeModel& model, const TableTreeView& tree) {
    const QModelIndex selected = tree.currentIndex();
    const auto table = model.TableOfNode(selected);
    if (!table) return;
    row_ = table;
    ids_ = model.tables()->Ids();
    const QRect place = tree.visualRect(selected);
    const bool is_seen = place.isValid() && tree.viewport()->rect().intersects(place);
    lines_above_ = is_seen ? std::max(0, place.top() / std::max(1, place.height())) : 0;
}

QModelIndex TreePlace::Find(const TableTreeModel& model, Gone gone) const {
    if (!row_) return {};
    const std::vector<std::int32_t>& now = model.tables()->Ids();
    const auto node = [&](std::int32_t id) {
        const auto found = std::find(now.begin(), now.end(), id);
        return found == now.end()
                   ? QModelIndex()
                   : model.IndexOfTable(static_cast<std::size_t>(found - now.begin()));
    };
    if (const QModelIndex same = node(ids_[*row_]); same.isValid()) return same;
    if (gone == Gone::kTakesNone) return {};
    if (const auto id = Neighbour(now)) return node(*id);
    return {};
}

// What has moved up into its place, else what is left before it.
std::optional<std::int32_t> TreePlace::Neighbour(std::vector<std::int32_t> now) const {
    const auto table = ids_.begin() + static_cast<std::ptrdiff_t>(*row_);
    // Mostly one table is gone: then the next one is found without the sorting.
    if (table + 1 != ids_.end() && std::find(now.begin(), now.end(), table[1]) != now.end())
        return table[1];
    std::sort(now.begin(), now.end());
    const auto is_there = [&](std::int32_t id) {
        return std::binary_search(now.begin(), now.end(), id);
    };
    if (const auto next = std::find_if(table + 1, ids_.end(), is_there); next != ids_.end())
        return *next;
    const auto end = std::make_reverse_iterator(ids_.begin());
    const auto before = std::find_if(std::make_reverse_iterator(table), end, is_there);
    return before != end ? std::optional(*before) : std::nullopt;
}

void TreePlace::Select(TableTreeView& tree, const QModelIndex& node) const {
    tree.SelectNode(node);
    tree.scrollTo(node, QAbstractItemView::PositionAtTop);
    QScrollBar& bar = *tree.verticalScrollBar();
    bar.setValue(bar.value() - lines_above_);
}

}  // namespace browser
