// WallDelegate: draws a table of the wall: its picture or what stands for it, a star for a
// favourite and a stop sign for a missing file in the corners, the name below, and Find's marks.
#pragma once

#include "browser/find_marks.h"
#include "browser/icon_list.h"
#include "browser/wall_geometry.h"
#include "browser/wall_model.h"
#include "thumbnails/thumbnail_loader.h"

#include <QtWidgets/QStyledItemDelegate>

namespace browser {

class WallDelegate : public QStyledItemDelegate {
public:
    using MarkOf = FindMarkDelegate::MarkOf;

    // All arguments are borrowed and outlive the delegate.
    WallDelegate(const WallModel& tables, const thumbnails::ThumbnailLoader& pictures,
                 IconList& icons, MarkOf mark_of, QObject* parent);

    void SetCells(const WallCells& cells) { cells_ = cells; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // The whole name, and why there is no picture where one could not be read.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    static void DrawGround(QPainter& painter, const QStyleOptionViewItem& option);
    QRect PictureBox(const QRect& cell) const;
    // Returns what it has drawn on, a part of `box`.
    QRect DrawPicture(QPainter& painter, const QStyleOptionViewItem& option, const QRect& box,
                      int row) const;
    void DrawPlaceholder(QPainter& painter, const QStyleOptionViewItem& option,
                         const QRect& box) const;
    void DrawIcons(QPainter& painter, const QStyleOptionViewItem& option, const QRect& picture,
                   const QModelIndex& index) const;
    void DrawName(QPainter& painter, const QStyleOptionViewItem& option, const QRect& box) const;

    const WallModel& tables_;
    const thumbnails::ThumbnailLoader& pictures_;
    IconList& icons_;
    MarkOf mark_of_;
    WallCells cells_;
};

}  // namespace browser
