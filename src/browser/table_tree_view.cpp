#include "browser/table_tree_view.h"

#include "base/scope_guards.h"
#include "browser/main_window_settings.h"
#include "browser/table_tree_model.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QShowEvent>
#include <QtWidgets/QHeaderView>

namespace browser {

TableTreeView::TableTreeView(TableTreeModel& model, QWidget* parent) : QTreeView(parent) {
    setObjectName(QStringLiteral("tvwDB"));
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
    const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (is_enter && event->isAutoRepeat()) return;  // holding the key must not play again
    const bool is_menu = event->key() == Qt::Key_Menu ||
                         (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier);
    if (is_menu) {
        const QRect node = visualRect(currentIndex());
        Q_EMIT MenuPressed(viewport()->mapToGlobal(node.bottomLeft()));
        return;
    }
    if (event->key() == Qt::Key_Delete && event->modifiers() == Qt::NoModifier) {
        if (!event->isAutoRepeat()) Q_EMIT DeletePressed();
        return;
    }
    // The view's own answer would be to copy the name.
    if (event->matches(QKeySequence::Copy)) return event->ignore();
    const bool is_character = is_enter || !event->text().isEmpty();
    if (is_enter)
        Q_EMIT EnterPressed();
    else if (event->key() == Qt::Key_Asterisk && currentIndex() == model()->index(0, 0))
        expandAll();  // in one go; node by node is slow for many tables
    else
        QTreeView::keyPressEvent(event);
    if (is_character) Q_EMIT KeyPressed();
}

}  // namespace browser
