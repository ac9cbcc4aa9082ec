// TreeController: the actions of clicks, keys and the pop-up menu of the tree.
#pragma once

#include "browser/detail_panel.h"
#include "browser/filter_bar.h"
#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"
#include "catalogue/catalogue.h"

#include <functional>

class QMenu;

namespace browser {

// A right click opens the pop-up menu only at less than this distance from the left edge, in twips.
inline constexpr int kPopupLimitTwips = 2350;

// True if a right click at `x_twips` from the left edge opens the pop-up menu.
bool OpensPopup(const TableTreeModel& model, const QModelIndex& selected, int x_twips);

class TreeController : public QObject {
    Q_OBJECT

public:
    // Plays a table; returns when the play is over.
    using PlayTable =
        std::function<void(const QString& path, const QString& display_name, std::int32_t id)>;

    struct Parts {
        catalogue::Catalogue& catalogue;
        platform::UserPrompts& prompts;
        TableTreeModel& model;
        TableTreeView& tree;
        DetailPanel& details;
        FilterBar& filter_bar;
        QMenu& popup;
    };

    // All arguments are borrowed and outlive the controller. `host` shows the notes under the tree.
    TreeController(const Parts& parts, DetailHost& host);

    void SetPlayTable(PlayTable play) { play_table_ = std::move(play); }

    // Tag and text of the selected node; empty when none is selected.
    QString SelectedTag() const;
    QString SelectedText() const;
    // True when the selected node is a table, neither the root nor a detail line.
    bool TableIsSelected() const { return IsTable(parts_.tree.currentIndex()); }

    // The node number (node_number.h) of the last selected node, kept between runs; 0: none.
    std::int64_t SelectedNodeIndex() const { return selected_node_index_; }
    void SetSelectedNodeIndex(std::int64_t number) { selected_node_index_ = number; }
    void RememberSelectedNode();
    // Sets what the selected node knows of the files of its record, if it is the node of `record`.
    void RecordStored(const TableRecord& record);

    // Selects a node, scrolls to it and shows its table. Ignores a number that no node has.
    void SelectTableNode(std::int64_t number);

    // The same with the first table that `is_wanted` takes by its FileName. False: there is none.
    bool SelectTable(const std::function<bool(const QString& file_name)>& is_wanted);

    // What a click on a node does, for one that is selected already.
    void ShowNode(const QModelIndex& index) { NodeClick(index); }

    // The same with the table whose row has this id.
    bool SelectTableWithId(const QString& id);

    // Plays the selected table, shows its details again and collapses its node.
    void DoubleClick();
    // Inverts the favourite flag of the selected table. A failure of the database is shown in a
    // box.
    void ToggleSelectedFavorite();

private:
    void ConnectTree();
    void NodeClick(const QModelIndex& index);
    void KeyPress();
    // Plays the selected table if its file exists, then shows its details again. True if a table or
    // the root is selected afterwards.
    bool PlaySelected();
    void ShowPopup(int x_twips, const QPoint& position);
    bool IsTable(const QModelIndex& index) const;

    Parts parts_;
    DetailHost& host_;
    PlayTable play_table_;
    std::int64_t selected_node_index_ = 0;
};

}  // namespace browser
