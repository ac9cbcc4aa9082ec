#include "browser/picture_wall.h"

#include "base/scope_guards.h"
#include "browser/texts.h"
#include "browser/view_keys.h"
#include "browser/wall_model.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QScrollBar>

#include <algorithm>

namespace browser {
namespace {

// A notch of a wheel, in eighths of a degree.
constexpr int kNotch = 120;
// A notch of the wheel moves by three steps of the scroll bar, and so by a line of pictures.
constexpr int kStepsOfALine = 3;

}  // namespace

PictureWall::PictureWall(WallModel& model, QWidget* parent) : QListView(parent) {
    setObjectName(QStringLiteral("PictureWall"));
    setAccessibleName(BrowserTexts::tr("Tables as pictures"));
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setResizeMode(QListView::Adjust);
    setUniformItemSizes(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The columns fill the width beside it.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    connect(&model, &QAbstractItemModel::modelAboutToBeReset, this, &PictureWall::KeepPlace);
    setModel(&model);
    LayOut();
}

void PictureWall::LayOut() {
    if (!width_is_chosen_) picture_width_ = FirstPictureWidth(viewport()->width());
    const WallCells cells =
        CellsFor(viewport()->width(), picture_width_, fontMetrics().lineSpacing());
    if (cells == cells_) return;
    cells_ = cells;
    Q_EMIT CellsChanged();
    setGridSize(cells_.cell);
}

void PictureWall::SetPictureWidth(int width) {
    width_is_chosen_ = true;
    if (width == picture_width_) return;
    picture_width_ = width;
    const QModelIndex current = currentIndex();
    const bool current_is_shown = RowIsShown(current.row(), viewport()->height());
    const QModelIndex kept = current_is_shown ? current : model()->index(shown_rows().first, 0);
    LayOut();
    scrollTo(kept, current_is_shown ? QAbstractItemView::EnsureVisible
                                    : QAbstractItemView::PositionAtTop);
}

RowRange PictureWall::shown_rows() const {
    return ShownRows(viewport()->height());
}

RowRange PictureWall::ShownRows(int height) const {
    return RowsShown(cells_, verticalOffset(), height, model()->rowCount());
}

bool PictureWall::RowIsShown(int row, int height) const {
    const RowRange shown = ShownRows(height);
    return row >= 0 && row >= shown.first && row <= shown.last;
}

void PictureWall::KeepPlace() {
    const QModelIndex current = currentIndex();
    if (!current.isValid()) return;
    const QRect place = visualRect(current);
    place_of_current_ =
        viewport()->rect().intersects(place) ? std::optional(place.top()) : std::nullopt;
}

void PictureWall::SelectRow(int row) {
    const base::ScopedFlag guard(selecting_);
    const QModelIndex index = row < 0 ? QModelIndex() : model()->index(row, 0);
    setCurrentIndex(index);
    if (!index.isValid()) return clearSelection();
    scrollTo(index);
    if (!place_of_current_) return;
    scrollTo(index, QAbstractItemView::PositionAtTop);
    verticalScrollBar()->setValue(verticalScrollBar()->value() - *place_of_current_);
    place_of_current_.reset();
}

void PictureWall::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (!selecting_ && current.isValid()) Q_EMIT RowChosen(current.row());
}

// All items have one size: nothing has to be laid out again, as QListView would.
void PictureWall::dataChanged(const QModelIndex& first, const QModelIndex& last,
                              const QList<int>& roles) {
    QAbstractItemView::dataChanged(first, last, roles);  // NOLINT(bugprone-parent-virtual-call)
}

// Also reports a click on the row that is selected already.
void PictureWall::mousePressEvent(QMouseEvent* event) {
    const QPersistentModelIndex before = currentIndex();
    QListView::mousePressEvent(event);
    const QModelIndex hit = indexAt(event->position().toPoint());
    if (hit.isValid() && hit == before) Q_EMIT RowChosen(hit.row());
}

void PictureWall::mouseDoubleClickEvent(QMouseEvent* event) {
    QListView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid())
        Q_EMIT DoubleClicked();
}

void PictureWall::mouseReleaseEvent(QMouseEvent* event) {
    QListView::mouseReleaseEvent(event);
    if (event->button() == Qt::RightButton && indexAt(event->position().toPoint()).isValid())
        Q_EMIT MenuPressed(event->globalPosition().toPoint());
}

void PictureWall::keyPressEvent(QKeyEvent* event) {
    switch (ViewKeyOf(*event)) {
    case ViewKey::kPlay:
        if (event->isAutoRepeat()) return;  // holding the key must not play again
        Q_EMIT EnterPressed();
        Q_EMIT KeyPressed();
        return;
    case ViewKey::kMenu:
        Q_EMIT MenuPressed(viewport()->mapToGlobal(visualRect(currentIndex()).center()));
        return;
    case ViewKey::kDelete:
        if (!event->isAutoRepeat()) Q_EMIT DeletePressed();
        return;
    case ViewKey::kCopy:
        return event->ignore();
    case ViewKey::kOther:
        break;
    }
    QListView::keyPressEvent(event);
    if (!event->text().isEmpty()) Q_EMIT KeyPressed();
}

void PictureWall::wheelEvent(QWheelEvent* event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) return QListView::wheelEvent(event);
    wheel_ += event->angleDelta().y();
    const int steps = wheel_ / kNotch;
    wheel_ -= steps * kNotch;
    if (steps != 0) SetPictureWidth(StepPictureWidth(picture_width_, steps));
    event->accept();
}

// What is selected and was seen stays in sight; the view gets its size after it was shown first.
void PictureWall::resizeEvent(QResizeEvent* event) {
    const bool was_shown = RowIsShown(currentIndex().row(), event->oldSize().height());
    LayOut();
    QListView::resizeEvent(event);
    if (was_shown) scrollTo(currentIndex());
}

void PictureWall::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) LayOut();
}

// Scrolls to a row that was selected before the view had its size.
void PictureWall::showEvent(QShowEvent* event) {
    QListView::showEvent(event);
    if (!event->spontaneous() && currentIndex().isValid()) scrollTo(currentIndex());
}

void PictureWall::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    Q_EMIT Painted();
}

WallStep PictureWall::StepOf(CursorAction action) {
    switch (action) {
    case MoveUp:
        return WallStep::kUp;
    case MoveDown:
        return WallStep::kDown;
    case MovePageUp:
        return WallStep::kPageUp;
    case MovePageDown:
        return WallStep::kPageDown;
    case MoveHome:
        return WallStep::kFirst;
    case MoveEnd:
        return WallStep::kLast;
    case MoveLeft:
    case MovePrevious:
        return WallStep::kLeft;
    case MoveRight:
    case MoveNext:
        break;
    }
    return WallStep::kRight;
}

QModelIndex PictureWall::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
    const int rows = model()->rowCount();
    if (rows == 0) return {};
    if (!currentIndex().isValid()) return model()->index(0, 0);
    return model()->index(
        RowAfter(cells_, viewport()->height(), StepOf(action), currentIndex().row(), rows), 0);
}

void PictureWall::updateGeometries() {
    QListView::updateGeometries();
    verticalScrollBar()->setSingleStep(std::max(1, cells_.cell.height() / kStepsOfALine));
}

}  // namespace browser
