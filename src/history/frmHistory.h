// frmHistory: what was changed in the catalogue, by what and when; the fields of one change before
// and after; and putting back one field, one table, or all of it. Its own name, as the system it
// follows has no such window.
#pragma once

#include "catalogue/catalogue.h"
#include "history/history_file.h"
#include "history/history_models.h"
#include "history/put_back.h"
#include "platform/latest_task.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace history {

class frmHistory : public QDialog {
    Q_OBJECT

public:
    // Everything is borrowed and outlives the window; `file` keeps the history of the catalogue.
    // `rows_changed` is called after something was put back. Shown modally by exec().
    frmHistory(catalogue::Catalogue& catalogue, HistoryFile& file, platform::UserPrompts& prompts,
               std::function<void()> rows_changed, QWidget* parent = nullptr);

private:
    void BuildControls();
    void BuildLayout();
    QTableView* MakeView(const char* object_name, const QString& title, QAbstractItemModel& model);
    QPushButton* MakeButton(const char* object_name, const QString& caption);

    // Reads the changes; the newest is chosen.
    void ShowChanges();
    // Reads the chosen change, and then filters its lines, in a thread of their own: 100,000 tables
    // take some tenths of a second each.
    void ShowChosen();
    void ShowLines(ChangeLinesModel::LinesPointer lines);
    ChangeLines::RowNames NamesOfRows();
    void ApplyFilter();
    void ShowCount();
    void EnableButtons();
    int ChosenRow(const QTableView& view) const;
    // Asks, and puts the chosen change back, or a part of it.
    void PutBackPart(const PartOfChange& part, const QString& what);
    void PutFieldBack();
    void PutTableBack();

    catalogue::Catalogue& catalogue_;
    HistoryFile& file_;
    platform::UserPrompts& prompts_;
    std::function<void()> rows_changed_;
    ChangeListModel changes_;
    ChangeLinesModel lines_;
    ChangeLines::RowNames names_;  // empty: not asked for yet
    QTableView* changes_view_ = nullptr;
    QTableView* lines_view_ = nullptr;
    QLineEdit* txtFilter_ = nullptr;
    QComboBox* cboField_ = nullptr;
    QLabel* lblCount_ = nullptr;
    QPushButton* cmdField_ = nullptr;
    QPushButton* cmdTable_ = nullptr;
    QPushButton* cmdAll_ = nullptr;
    QPushButton* cmdClose_ = nullptr;
    platform::LatestTask<base::Result<ChangeLinesModel::LinesPointer>> reading_;
    platform::LatestTask<std::vector<ChangeLines::Place>> filtering_;
};

}  // namespace history
