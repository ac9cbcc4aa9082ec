// RestoreDialog: the snapshots of the catalogue and pinball.BU in one list; how the chosen one
// differs from today; and the restore, after a question. What takes long is read in the keeper's
// thread; the restore itself by the catalogue's runner.
#pragma once

#include "snapshots/restore_catalogue.h"
#include "snapshots/snapshot_keeper.h"

#include <QtWidgets/QDialog>

#include <functional>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace snapshots {

class RestoreDialog : public QDialog {
    Q_OBJECT

public:
    // Everything is borrowed and outlives the window.
    struct Parts {
        catalogue::Catalogue& catalogue;
        SnapshotKeeper& keeper;
        platform::UserPrompts& prompts;
        std::function<void()> refresh_tree;
    };
    explicit RestoreDialog(Parts parts, QWidget* parent = nullptr);

Q_SIGNALS:
    // After the list, and after each comparison, is shown.
    void Shown();

private:
    void BuildControls();
    void ReadList();
    void ShowList(const base::Result<std::vector<RestoreEntry>>& entries);
    void ShowChosen();
    void ShowDifferences(int row, const base::Result<std::vector<TableDifference>>& differences);
    void RestoreChosen();
    bool Confirm(const RestoreEntry& entry);
    int ChosenRow() const;  // -1: none

    Parts parts_;
    std::vector<RestoreEntry> entries_;
    QTreeWidget* list_ = nullptr;
    QLabel* differences_ = nullptr;
    QPushButton* restore_ = nullptr;
};

}  // namespace snapshots
