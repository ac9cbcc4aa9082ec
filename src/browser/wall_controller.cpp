#include "browser/wall_controller.h"

#include "base/scope_guards.h"

#include <utility>

namespace browser {

WallController::WallController(const Parts& parts, Actions actions,
                               thumbnails::ThumbnailLoader::Load load)
    : parts_(parts), actions_(std::move(actions)), pictures_(std::move(load), {}),
      delegate_(*new WallDelegate(parts.wall_model, pictures_, parts.icons, actions_.mark_of,
                                  &parts.wall)) {
    parts_.wall.hide();
    delegate_.SetCells(parts_.wall.cells());
    parts_.wall.setItemDelegate(&delegate_);
    connect(&parts_.wall, &PictureWall::CellsChanged, this,
            [this] { delegate_.SetCells(parts_.wall.cells()); });
    connect(&parts_.wall, &PictureWall::Painted, this, &WallController::Want);
    connect(&pictures_, &thumbnails::ThumbnailLoader::Arrived, parts_.wall.viewport(),
            qOverload<>(&QWidget::update));
    connect(&parts_.model, &QAbstractItemModel::modelReset, this, [this] { pictures_.Doubt(); });
    ConnectTree();
}

void WallController::ConnectTree() {
    const PictureWall* const wall = &parts_.wall;
    TableTreeView* const tree = &parts_.tree;
    connect(wall, &PictureWall::RowChosen, this, &WallController::Choose);
    connect(wall, &PictureWall::DoubleClicked, tree, &TableTreeView::DoubleClicked);
    connect(wall, &PictureWall::EnterPressed, tree, &TableTreeView::EnterPressed);
    connect(wall, &PictureWall::DeletePressed, tree, &TableTreeView::DeletePressed);
    connect(wall, &PictureWall::MenuPressed, tree, &TableTreeView::MenuPressed);
    connect(wall, &PictureWall::KeyPressed, tree, &TableTreeView::KeyPressed);
    connect(tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &WallController::Follow);
}

// The tree tells everybody else.
void WallController::Choose(int row) {
    const QModelIndex node = parts_.model.IndexOfTable(static_cast<std::size_t>(row));
    const base::ScopedFlag guard(choosing_);
    if (parts_.tree.currentIndex() == node)
        actions_.show_node(node);
    else
        parts_.tree.setCurrentIndex(node);
}

void WallController::Follow() {
    if (choosing_) return;
    const auto table = parts_.model.TableOfNode(parts_.tree.currentIndex());
    parts_.wall.SelectRow(table ? static_cast<int>(*table) : -1);
}

void WallController::ShowViews(bool has_tables) {
    const bool has_focus = parts_.tree.hasFocus() || parts_.wall.hasFocus();
    // Who gives the focus to the tree means the list of tables.
    parts_.tree.setFocusProxy(is_wanted_ ? &parts_.wall : nullptr);
    parts_.tree.setVisible(has_tables && !is_wanted_);
    parts_.wall.setVisible(has_tables && is_wanted_);
    if (has_focus && has_tables) parts_.tree.setFocus();
    if (auto tidy = is_wanted_ ? std::exchange(actions_.tidy, {}) : nullptr)
        pictures_.Run(std::move(tidy));
    if (!parts_.wall.isVisibleTo(parts_.wall.parentWidget())) pictures_.Clear();
}

void WallController::Step(int steps) {
    parts_.wall.SetPictureWidth(StepPictureWidth(parts_.wall.picture_width(), steps));
}

void WallController::LookAgain() {
    pictures_.Doubt();
    parts_.wall.viewport()->update();
}

void WallController::ShowPlace(std::size_t table) {
    parts_.wall.scrollTo(parts_.wall_model.index(static_cast<int>(table)));
}

QSize WallController::BoxInPixels() const {
    return (QSizeF(parts_.wall.cells().picture) * parts_.wall.devicePixelRatioF()).toSize();
}

// After each painting, so that it is always the pictures that are seen, and those that will be seen
// next, which are made.
void WallController::Want() {
    const RowRange shown = parts_.wall.shown_rows();
    if (shown.first != first_before_) downwards_ = shown.first > first_before_;
    first_before_ = shown.first;
    const QSize box = BoxInPixels();
    if (box.isEmpty()) return;
    std::vector<thumbnails::ThumbnailLoader::Wish> wishes;
    for (const int row : RowsWanted(shown, parts_.wall_model.rowCount(), downwards_))
        wishes.push_back({parts_.wall_model.PictureOf(row), box});
    pictures_.Want(wishes);
}

}  // namespace browser
