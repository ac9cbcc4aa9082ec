#include "browser/wall_delegate.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QToolTip>

#include <algorithm>
#include <utility>

namespace browser {
namespace {

constexpr int kIconSide = 16;
constexpr int kIconMargin = 3;
// Of 255: the ground of an empty place, by the text's colour on that of the view.
constexpr int kEmptyAlpha = 20;
constexpr int kEdgeAlpha = 70;
constexpr qreal kEmptyIconOpacity = 0.5;
constexpr qreal kDisabledOpacity = 0.5;
// Of 255: the ground of an icon, by which it is seen on every picture.
constexpr int kIconGroundAlpha = 210;
constexpr qreal kRounding = 4;

QPalette::ColorGroup GroupOf(const QStyleOptionViewItem& option) {
    if (!option.state.testFlag(QStyle::State_Enabled)) return QPalette::Disabled;
    return option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
}

QColor TextColor(const QStyleOptionViewItem& option) {
    const bool is_selected = option.state.testFlag(QStyle::State_Selected);
    return option.palette.color(GroupOf(option),
                                is_selected ? QPalette::HighlightedText : QPalette::Text);
}

QColor Faint(QColor color, int alpha) {
    color.setAlpha(alpha);
    return color;
}

// `size` in the middle of `box`, smaller where it must be.
QRect InTheMiddle(QSize size, const QRect& box) {
    if (size.width() > box.width() || size.height() > box.height())
        size.scale(box.size(), Qt::KeepAspectRatio);
    QRect place(QPoint(), size);
    place.moveCenter(box.center());
    return place;
}

}  // namespace

WallDelegate::WallDelegate(const WallModel& tables, const thumbnails::ThumbnailLoader& pictures,
                           IconList& icons, MarkOf mark_of, QObject* parent)
    : QStyledItemDelegate(parent), tables_(tables), pictures_(pictures), icons_(icons),
      mark_of_(std::move(mark_of)) {}

QSize WallDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return cells_.cell;
}

QRect WallDelegate::PictureBox(const QRect& cell) const {
    return {cell.left() + (cell.width() - cells_.picture.width()) / 2, cell.top() + cells_.margin,
            cells_.picture.width(), cells_.picture.height()};
}

// What the style draws of an item without texts: it would put them beside the picture.
void WallDelegate::DrawGround(QPainter& painter, const QStyleOptionViewItem& option) {
    const QStyle* const style = option.widget ? option.widget->style() : QApplication::style();
    QStyleOptionViewItem ground = option;
    ground.text.clear();
    ground.state &= ~QStyle::State_HasFocus;
    style->drawControl(QStyle::CE_ItemViewItem, &ground, &painter, option.widget);
    if (!option.state.testFlag(QStyle::State_HasFocus)) return;
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(option);
    focus.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
    focus.backgroundColor = option.palette.color(GroupOf(option), QPalette::Highlight);
    style->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, option.widget);
}

void WallDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const FindMark mark = mark_of_(static_cast<std::size_t>(index.row()));
    if (mark != FindMark::kNone) MarkFound(item);
    DrawGround(*painter, item);
    const QRect box = PictureBox(option.rect);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    DrawIcons(*painter, item, DrawPicture(*painter, item, box, index.row()), index);
    DrawName(*painter, item, box);
    painter->restore();
    if (mark == FindMark::kHere) DrawHereFrame(*painter, option);
}

QRect WallDelegate::DrawPicture(QPainter& painter, const QStyleOptionViewItem& option,
                                const QRect& box, int row) const {
    const auto* const known = pictures_.Find(tables_.PictureOf(row));
    if (known == nullptr || known->image.isNull()) {
        DrawPlaceholder(painter, option, box);
        return box;
    }
    const qreal scale = painter.device()->devicePixelRatioF();
    const QSize natural = (QSizeF(known->image.size()) / scale).toSize().expandedTo({1, 1});
    // One that was made for another size is stretched until its own comes.
    const bool is_of_this_size = known->box == (QSizeF(box.size()) * scale).toSize();
    const QSize wanted =
        is_of_this_size ? natural : known->image.size().scaled(box.size(), Qt::KeepAspectRatio);
    if (GroupOf(option) == QPalette::Disabled) painter.setOpacity(kDisabledOpacity);
    const QRect place = InTheMiddle(wanted, box);
    painter.drawImage(place, known->image);
    painter.setOpacity(1);
    return place;
}

void WallDelegate::DrawPlaceholder(QPainter& painter, const QStyleOptionViewItem& option,
                                   const QRect& box) const {
    const QColor ink = TextColor(option);
    painter.setPen(QPen(Faint(ink, kEdgeAlpha), 1));
    painter.setBrush(Faint(ink, kEmptyAlpha));
    painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), kRounding, kRounding);
    const int side = std::min(box.width(), box.height()) / 3;
    painter.setOpacity(kEmptyIconOpacity);
    icons_.Icon(QStringLiteral("pinball")).paint(&painter, InTheMiddle({side, side}, box));
    painter.setOpacity(1);
}

void WallDelegate::DrawIcons(QPainter& painter, const QStyleOptionViewItem& option,
                             const QRect& picture, const QModelIndex& index) const {
    QRect place(picture.right() - kIconSide - kIconMargin, picture.top() + kIconMargin, kIconSide,
                kIconSide);
    const auto draw = [&](const QString& key) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(
            Faint(option.palette.color(GroupOf(option), QPalette::Base), kIconGroundAlpha));
        painter.drawRoundedRect(place.adjusted(-2, -2, 2, 2), kRounding, kRounding);
        icons_.Icon(key).paint(&painter, place);
        place.translate(-(kIconSide + 2 * kIconMargin), 0);
    };
    if (index.data(WallModel::kIsFavoriteRole).toBool()) draw(QStringLiteral("favorite"));
    if (index.data(WallModel::kIsMissingRole).toBool()) draw(QStringLiteral("stop"));
}

void WallDelegate::DrawName(QPainter& painter, const QStyleOptionViewItem& option,
                            const QRect& box) const {
    const QRect line(option.rect.left() + cells_.margin, box.bottom() + 1 + cells_.margin,
                     option.rect.width() - 2 * cells_.margin, cells_.line_height);
    painter.setFont(option.font);
    painter.setPen(TextColor(option));
    QString name = option.text;
    name.replace(u'\n', u' ').replace(QChar::LineSeparator, u' ');
    painter.drawText(line, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine,
                     option.fontMetrics.elidedText(name, Qt::ElideRight, line.width()));
}

bool WallDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QString text = index.data(Qt::AccessibleTextRole).toString();
    const auto* const known = pictures_.Find(tables_.PictureOf(index.row()));
    if (known != nullptr && !known->failure.isEmpty()) text += u'\n' + known->failure;
    // Names are texts of others, and no HTML.
    QToolTip::showText(event->globalPos(),
                       QStringLiteral("<p style='white-space:pre'>") + text.toHtmlEscaped(), view);
    return true;
}

}  // namespace browser
