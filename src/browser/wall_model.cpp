#include "browser/wall_model.h"

namespace browser {

WallModel::WallModel(const TableTreeModel& tables, QObject* parent)
    : QAbstractListModel(parent), tables_(tables) {
    connect(&tables, &QAbstractItemModel::modelAboutToBeReset, this, [this] { beginResetModel(); });
    connect(&tables, &QAbstractItemModel::modelReset, this, [this] { endResetModel(); });
    connect(&tables, &QAbstractItemModel::dataChanged, this, &WallModel::TellChange);
}

// Of tables only: the root and the detail lines are not shown.
void WallModel::TellChange(const QModelIndex& first, const QModelIndex& last) {
    const auto from = TableTreeModel::TableOf(first);
    const auto to = TableTreeModel::TableOf(last);
    if (from && to)
        Q_EMIT dataChanged(index(static_cast<int>(*from)), index(static_cast<int>(*to)));
}

int WallModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(tables_.table_count());
}

thumbnails::TablePicture WallModel::PictureOf(int row) const {
    const auto table = static_cast<std::size_t>(row);
    return {tables_.ImageFileOf(table), tables_.FileNameOf(table)};
}

// Has the file looked for; false until that is known.
bool WallModel::IsMissing(std::size_t table) const {
    tables_.LookForFile(table);
    return tables_.IsKnownMissing(table);
}

QVariant WallModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const auto table = static_cast<std::size_t>(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return tables_.tables()->DisplayName(table);
    case Qt::AccessibleTextRole:
        return tables_.SpokenName(table);
    case kIsMissingRole:
        return IsMissing(table);
    case kIsFavoriteRole:
        return tables_.IsFavorite(table);
    default:
        return {};
    }
}

}  // namespace browser
