#include "browser/tree_controller.h"

#include "browser/favourites.h"
#include "catalogue/error_report.h"
#include "catalogue/process_values.h"
#include "platform/files.h"

#include <QtWidgets/QMenu>

#include <algorithm>

namespace browser {

bool OpensPopup(const TableTreeModel& model, const QModelIndex& selected, int x_twips) {
    if (!model.has_nodes() || !selected.isValid()) return false;
    return TableTreeModel::Tag(selected) != kDetailTag && model.NodeNumber(selected) > kRootNode &&
           x_twips < kPopupLimitTwips;
}

TreeController::TreeController(const Parts& parts, DetailHost& host) : parts_(parts), host_(host) {
    ConnectTree();
}

void TreeController::ConnectTree() {
    TableTreeView* const tree = &parts_.tree;
    connect(tree, &TableTreeView::NodeClicked, this, &TreeController::NodeClick);
    connect(tree, &TableTreeView::DoubleClicked, this, &TreeController::DoubleClick);
    connect(tree, &TableTreeView::EnterPressed, this, [this] { PlaySelected(); });
    connect(tree, &TableTreeView::KeyPressed, this, &TreeController::KeyPress);
    connect(tree, &TableTreeView::RightButtonUp, this, &TreeController::ShowPopup);
    connect(tree, &TableTreeView::MenuPressed, this,
            [this](const QPoint& position) { ShowPopup(0, position); });
    const auto root_icon = [this](const QString& icon) {
        return [this, icon](const QModelIndex& index) {
            if (parts_.model.NodeNumber(index) == kRootNode) parts_.model.SetRootIcon(icon);
        };
    };
    connect(tree, &QTreeView::expanded, this, root_icon(QStringLiteral("open")));
    connect(tree, &QTreeView::collapsed, this, root_icon(QStringLiteral("closed")));
}

QString TreeController::SelectedTag() const {
    return TableTreeModel::Tag(parts_.tree.currentIndex());
}

QString TreeController::SelectedText() const {
    return parts_.tree.currentIndex().data().toString();
}

// Does not use the tag: the FileName of a table may be any text, also a tag of another node.
bool TreeController::IsTable(const QModelIndex& index) const {
    return index.data(TableTreeModel::kNodeKeyRole).isValid();
}

void TreeController::RecordStored(const TableRecord& record) {
    const QModelIndex selected = parts_.tree.currentIndex();
    const QString key = TableTreeModel::NodeKey(record.fields[kId]);
    if (selected.data(TableTreeModel::kNodeKeyRole).toString() != key) return;
    parts_.model.SetFileName(selected, record.fields[kFileName]);
    parts_.model.SetImageFile(selected, record.fields[kImageFile]);
}

void TreeController::RememberSelectedNode() {
    const std::int64_t number = parts_.model.NodeNumber(parts_.tree.currentIndex());
    if (number != 0) selected_node_index_ = number;
}

void TreeController::SelectTableNode(std::int64_t number) {
    const QModelIndex index = parts_.model.IndexOfNode(number);
    if (!index.isValid()) return;
    parts_.tree.SelectNode(index);
    NodeClick(index);
}

bool TreeController::SelectTable(const std::function<bool(const QString&)>& is_wanted) {
    const QModelIndex root = parts_.model.RootIndex();
    for (int row = 0; row < parts_.model.rowCount(root); ++row) {
        const QModelIndex index = parts_.model.index(row, 0, root);
        if (!is_wanted(TableTreeModel::Tag(index))) continue;
        parts_.tree.SelectNode(index);
        NodeClick(index);
        return true;
    }
    return false;
}

bool TreeController::SelectTableWithId(const QString& id) {
    bool is_number = false;
    const std::int32_t wanted = id.toInt(&is_number);
    if (!is_number) return false;
    const std::vector<std::int32_t>& ids = parts_.model.tables()->Ids();
    const auto found = std::find(ids.begin(), ids.end(), wanted);
    if (found == ids.end()) return false;
    const QModelIndex index =
        parts_.model.IndexOfTable(static_cast<std::size_t>(found - ids.begin()));
    parts_.tree.SelectNode(index);
    NodeClick(index);
    return true;
}

void TreeController::NodeClick(const QModelIndex& index) {
    const QString tag = TableTreeModel::Tag(index);
    if (tag == kRootTag) return;
    if (tag == kDetailTag) {
        parts_.details.ClearTableDetails();
        return;
    }
    selected_node_index_ = parts_.model.NodeNumber(index);
    parts_.details.ShowTableDetails(tag);
}

bool TreeController::PlaySelected() {
    const QString tag = SelectedTag();
    if (!parts_.model.has_nodes() || tag.isEmpty() || tag == kDetailTag) return false;
    if (play_table_ && platform::FileExists(parts_.catalogue.values->paths.Of(tag)))
        play_table_(tag, SelectedText(), parts_.details.DetailText(kId).toInt());
    // Events are processed while a table is played: another node may be selected now, or a record
    // may be changed.
    const QString selected = SelectedTag();
    if (selected.isEmpty() || selected == kDetailTag || parts_.details.record_changed())
        return false;
    parts_.details.ShowTableDetails(selected);
    return true;
}

void TreeController::DoubleClick() {
    if (!PlaySelected()) return;
    const QModelIndex selected = parts_.tree.currentIndex();
    if (IsTable(selected)) parts_.tree.collapse(selected);
}

void TreeController::KeyPress() {
    host_.SetComments(parts_.details.NotesSummary(SelectedTag()));
}

void TreeController::ShowPopup(int x_twips, const QPoint& position) {
    if (OpensPopup(parts_.model, parts_.tree.currentIndex(), x_twips)) parts_.popup.popup(position);
}

void TreeController::ToggleSelectedFavorite() {
    const QModelIndex selected = parts_.tree.currentIndex();
    if (!IsTable(selected)) return;
    const QString tag = SelectedTag();
    const auto toggled = ToggleFavorites(*parts_.catalogue.CatalogueConnection,
                                         {.tree_is_empty = !parts_.model.has_nodes(),
                                          .tag = tag,
                                          .text = SelectedText(),
                                          .favorite_checked = parts_.details.FavoriteChecked(),
                                          .filter_key = parts_.filter_bar.FilterKey()});
    if (!toggled.ok()) return catalogue::ShowError(parts_.prompts, toggled.status());
    if (!toggled->done) return;
    parts_.model.SetTableIcon(selected, QStringLiteral("favorite"));
    parts_.details.ShowTableDetails(tag);
    if (toggled->leaves_filter) parts_.filter_bar.Choose(QStringLiteral("All"));
}

}  // namespace browser
