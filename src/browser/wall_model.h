// WallModel: the tables of the tree as a list, in the same order, for the wall of pictures. Row and
// table are the same number.
#pragma once

#include "browser/table_tree_model.h"
#include "thumbnails/table_picture.h"

#include <QtCore/QAbstractListModel>

namespace browser {

class WallModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { kIsMissingRole = Qt::UserRole, kIsFavoriteRole };

    // `tables` is borrowed and outlives the model.
    explicit WallModel(const TableTreeModel& tables, QObject* parent = nullptr);

    const TableTreeModel& tables() const { return tables_; }
    // Where the screenshot of a row is. Requires: 0 <= row < rowCount().
    thumbnails::TablePicture PictureOf(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void TellChange(const QModelIndex& first, const QModelIndex& last);
    bool IsMissing(std::size_t table) const;

    const TableTreeModel& tables_;
};

}  // namespace browser
