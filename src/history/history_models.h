// The two lists of the History window: the changes, and the fields of one of them.
#pragma once

#include "history/change_index.h"
#include "history/change_lines.h"

#include <QtCore/QAbstractTableModel>

#include <memory>
#include <optional>
#include <vector>

namespace history {

// The newest change first.
class ChangeListModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { kWhen, kWhat, kFields, kColumnCount };
    using QAbstractTableModel::QAbstractTableModel;

    // The oldest first, as the history has them.
    void Show(std::vector<Change> changes);
    // The number of the change in a line; nullopt: there is no such line.
    std::optional<std::uint64_t> NumberOf(int row) const;
    const Change* ChangeOf(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<Change> changes_;
};

class ChangeLinesModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { kTable, kField, kBefore, kAfter, kColumnCount };
    using QAbstractTableModel::QAbstractTableModel;

    using LinesPointer = std::shared_ptr<const ChangeLines>;
    // All lines of a change; null: none.
    void Show(LinesPointer lines);
    // Some of them.
    void ShowOnly(std::vector<ChangeLines::Place> shown);
    // null: nothing is shown.
    const LinesPointer& lines() const { return lines_; }
    // Requires: there is such a line.
    ChangeLines::Place PlaceOf(int row) const { return shown_.at(static_cast<std::size_t>(row)); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    LinesPointer lines_;
    std::vector<ChangeLines::Place> shown_;
};

}  // namespace history
