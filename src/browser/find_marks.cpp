#include "browser/find_marks.h"

#include "browser/table_tree_model.h"

#include <QtGui/QPainter>

#include <utility>

namespace browser {
namespace {

// Of 255: on a light ground and on a dark one the text stays well readable.
constexpr int kTintAlpha = 48;
constexpr int kFrameWidth = 2;

QColor Accent(const QStyleOptionViewItem& option) {
    return option.palette.color(QPalette::Active, QPalette::Highlight);
}

}  // namespace

void MarkFound(QStyleOptionViewItem& option) {
    option.font.setUnderline(true);
    QColor tint = Accent(option);
    tint.setAlpha(kTintAlpha);
    option.backgroundBrush = tint;
}

void DrawHereFrame(QPainter& painter, const QStyleOptionViewItem& option) {
    painter.save();
    painter.setPen(QPen(Accent(option), kFrameWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(option.rect.adjusted(1, 1, -1, -1));
    painter.restore();
}

FindMarkDelegate::FindMarkDelegate(MarkOf mark_of, QObject* parent)
    : QStyledItemDelegate(parent), mark_of_(std::move(mark_of)) {}

FindMark FindMarkDelegate::MarkOfNode(const QModelIndex& index) const {
    const auto table = TableTreeModel::TableOf(index);
    return table ? mark_of_(*table) : FindMark::kNone;
}

void FindMarkDelegate::initStyleOption(QStyleOptionViewItem* option,
                                       const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (MarkOfNode(index) != FindMark::kNone) MarkFound(*option);
}

void FindMarkDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    if (MarkOfNode(index) == FindMark::kHere) DrawHereFrame(*painter, option);
}

}  // namespace browser
