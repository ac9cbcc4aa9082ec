#include "browser/table_tree_view.h"

#include "base/scope_guards.h"
#include "browser/main_window_settings.h"
#include "browser/table_tree_model.h"
#include "browser/texts.h"
#include "browser/view_keys.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QShowEvent>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>

#include <algorithm>

namespace browser {

TableTreeView::TableTreeView(TableTreeModel& model, QWidget* parent) : QTreeView(parent) {
    setObjectName(QStringLiteral("tvwDB"));
    setAccessibleName(BrowserTexts::tr("Tables"));
    setUniformRowHeights(true);
    setHeaderHidden(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setIndentation(15);
    setModel(&model);
    // Long names scroll; only visible rows are measured.
    header()->setStretchLastSection(false);
    header()->setResizeContentsPrecision(0);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void TableTreeView::SelectNode(const QModelIndex& index) {
    const base::ScopedFlag guard(selecting_);
    setCurrentIndex(index);
    scrollTo(index);
}

int TableTreeView::WidthOfNames() const {
    constexpr int kMeasured = 500;
    const QModelIndex root = model()->index(0, 0);
    int longest = 0;
    for (int row = 0; row < std::min(model()->rowCount(root), kMeasured); ++row)
        longest = std::max(longest, fontMetrics().horizontalAdvance(
                                        model()->index(row, 0, root).data().toString()));
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    const int icon = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    return 2 * indentation() + icon + 4 * margin + longest + 2 * frameWidth() +
           verticalScrollBar()->sizeHint().width();
}

void TableTreeView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    if (!selecting_ && current.isValid()) Q_EMIT NodeClicked(current);
}

// Also reports a click on the node that is selected already, but not on the arrow before it.
void TableTreeView::mousePressEvent(QMouseEvent* event) {
    const QPersistentModelIndex before = currentIndex();
    QTreeView::mousePressEvent(event);
    const QModelIndex hit = indexAt(event->position().toPoint());
    if (!hit.isValid() || hit != before) return;
    if (event->position().x() >= visualRect(hit).left()) Q_EMIT NodeClicked(hit);
}

void TableTreeView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    const QModelIndex hit = indexAt(event->position().toPoint());
    const bool on_node = hit.isValid() && event->position().x() >= visualRect(hit).left();
    if (event->button() == Qt::LeftButton && on_node) Q_EMIT DoubleClicked();
}

void TableTreeView::mouseReleaseEvent(QMouseEvent* event) {
    QTreeView::mouseReleaseEvent(event);
    if (event->button() == Qt::RightButton)
        Q_EMIT RightButtonUp(ToTwips(qRound(event->position().x())),
                             event->globalPosition().toPoint());
}

// The selection is painted up to the right edge.
void TableTreeView::resizeEvent(QResizeEvent* event) {
    QTreeView::resizeEvent(event);
    header()->setMinimumSectionSize(viewport()->width());
}

// Scrolls to a node that was selected before the view had its size.
void TableTreeView::showEvent(QShowEvent* event) {
    QTreeView::showEvent(event);
    if (event->spontaneous()) return;
    scrollToTop();
    scrollTo(currentIndex());
}

void TableTreeView::keyPressEvent(QKeyEvent* event) {
    switch (ViewKeyOf(*event)) {
    case ViewKey::kPlay:
        if (event->isAutoRepeat()) return;  // holding the key must not play again
        Q_EMIT EnterPressed();
        Q_EMIT KeyPressed();
        return;
    case ViewKey::kMenu:
        Q_EMIT MenuPressed(viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft()));
        return;
    case ViewKey::kDelete:
        if (!event->isAutoRepeat()) Q_EMIT DeletePressed();
        return;
    case ViewKey::kCopy:
        return event->ignore();
    case ViewKey::kOther:
        break;
    }
    if (event->key() == Qt::Key_Asterisk && currentIndex() == model()->index(0, 0))
        expandAll();  // in one go; node by node is slow for many tables
    else
        QTreeView::keyPressEvent(event);
    if (!event->text().isEmpty()) Q_EMIT KeyPressed();
}

}  // namespace browser
