#include "browser/tree_place.h"

#include <QtWidgets/QScrollBar>

#include <algorithm>
#include <unordered_map>

namespace browser {

void TreePlace::Remember(const TableTreeModel& model, const TableTreeView& tree) {
    const QModelIndex selected = tree.currentIndex();
    const auto table = model.TableOfNode(selected);
    if (!table) return;
    row_ = table;
    ids_.resize(model.table_count());
    for (std::size_t row = 0; row < ids_.size(); ++row)
        ids_[row] = model.Id(row);
    const QRect place = tree.visualRect(selected);
    const bool is_seen = place.isValid() && tree.viewport()->rect().intersects(place);
    lines_above_ = is_seen ? std::max(0, place.top() / std::max(1, place.height())) : 0;
}

QModelIndex TreePlace::Find(const TableTreeModel& model, Gone gone) const {
    if (!row_) return {};
    for (std::size_t row = 0; row < model.table_count(); ++row)
        if (model.Id(row) == ids_[*row_]) return model.IndexOfTable(row);
    if (gone == Gone::kTakesNone) return {};
    std::unordered_map<std::int32_t, std::size_t> rows;
    rows.reserve(model.table_count());
    for (std::size_t row = 0; row < model.table_count(); ++row)
        rows.emplace(model.Id(row), row);
    const auto node = [&](std::size_t row) {
        const auto found = rows.find(ids_[row]);
        return found == rows.end() ? QModelIndex() : model.IndexOfTable(found->second);
    };
    // What has moved up into its place, else what is left before it.
    for (std::size_t row = *row_ + 1; row < ids_.size(); ++row)
        if (const QModelIndex next = node(row); next.isValid()) return next;
    for (std::size_t row = *row_; row-- > 0;)
        if (const QModelIndex before = node(row); before.isValid()) return before;
    return {};
}

void TreePlace::Select(TableTreeView& tree, const QModelIndex& node) const {
    tree.SelectNode(node);
    tree.scrollTo(node, QAbstractItemView::PositionAtTop);
    QScrollBar& bar = *tree.verticalScrollBar();
    bar.setValue(bar.value() - lines_above_);
}

}  // namespace browser
