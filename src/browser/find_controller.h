// FindController: jumps through the tables that the tree shows while something is typed into the
// Find bar. It changes neither the question nor the order of the tables, and asks the database
// nothing as long as keys come: a table is selected, and its details shown, when the typing rests
// or when the user goes to it by a key.
#pragma once

#include "browser/find_bar.h"
#include "browser/find_indexer.h"
#include "browser/find_marks.h"
#include "browser/find_query.h"
#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace browser {

class FindController : public QObject {
    Q_OBJECT

public:
    struct Parts {
        TableTreeModel& model;
        TableTreeView& tree;
        FindBar& bar;
    };
    struct Actions {
        std::function<void(std::size_t table)> select;  // and shows its details
        std::function<void()> play;                     // the selected table
        // Whether a table may be selected now without a click: nobody is editing, no command is at
        // work.
        std::function<bool()> may_select;
    };

    // Everything in `parts` is borrowed and outlives the controller.
    FindController(const Parts& parts, Actions actions);

    // Opens the bar, or puts the focus into it. Does nothing when the tree is empty.
    void Open();
    // To the next or previous found table, around the ends; opens the bar with the last text if it
    // is closed.
    void Next();
    void Previous();

    FindMark MarkOf(std::size_t table) const;
    const std::vector<std::uint32_t>& found() const { return found_; }

Q_SIGNALS:
    // Other tables are marked than before, or the user is at another one.
    void MarksChanged();
    // The table is to be seen.
    void PlaceShown(std::size_t table);

private:
    void ShowMarks();
    void Leave();
    // Takes the text away, then leaves.
    void Escape();
    void NodeClicked(const QModelIndex& index);
    // Of the model's content.
    void Forget();
    void MakeIndex();
    void TextChanged(const QString& text);
    // Looks for the text again; from the place where the search began, or, if `stays`, from where
    // the user is.
    void Search(bool stays);
    void ShowPlace();
    void ShowCount();
    void Step(int by);
    bool ReopenForStep();
    // Selects the table where the user is, if another one is selected.
    void SelectHere();
    void Play();
    void LookForSomeFiles();
    std::size_t SelectedTable() const;

    Parts parts_;
    Actions actions_;
    FindIndexer indexer_;
    FindQuery query_;
    std::vector<std::uint32_t> found_;  // tables, in their order
    std::optional<std::size_t> here_;   // of found_; nullopt: none is found
    std::size_t start_ = 0;             // table from which the search began
    QString last_text_;                 // that found something
    QTimer& rest_;                      // of typing, until the details are shown; the bar's
    QTimer search_again_;               // after files were looked for
    QTimer look_for_files_;
    std::size_t next_file_ = 0;  // table whose file is to be looked for
};

}  // namespace browser
