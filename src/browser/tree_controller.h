// TreeController: what clicks, keys and the pop-up menu of the tree do.
#pragma once

#include "browser/detail_panel.h"
#include "browser/filter_bar.h"
#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"

#include <functional>

class QMenu;

namespace browser {

// Right clicks at this distance from the left edge, in twips, and beyond open no menu: it belongs
// to the names.
inline constexpr int kPopupLimitTwips = 2350;

// Whether a right click on the tree opens the pop-up menu.
bool OpensPopup(const TableTreeModel& model, const QModelIndex& selected, int x_twips);

class TreeController : public QObject {
    Q_OBJECT

public:
    // Starts a table in the simulator and comes back when the play is over.
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

    // Everything in `parts` is borrowed and outlives the controller; `host` shows the notes under
    // the tree.
    TreeController(const Parts& parts, DetailHost& host);

    void SetPlayTable(PlayTable play) { play_table_ = std::move(play); }

    // Of the selected node; empty when no node is selected.
    QString SelectedTag() const;
    QString SelectedText() const;
    // A table, and neither the root nor a detail line, is selected.
    bool TableIsSelected() const { return IsTable(parts_.tree.currentIndex()); }

    // A node number; 0: none. Kept between runs.
    std::int64_t SelectedNodeIndex() const { return selected_node_index_; }
    void SetSelectedNodeIndex(std::int64_t number) { selected_node_index_ = number; }
    void RememberSelectedNode();
    // The selected node stands for another file when its record has this id.
    void FileNameStored(const QString& id, const QString& file_name);

    // Selects a node, scrolls to it and shows its table. A number that no node has is ignored.
    void SelectTableNode(std::int64_t number);

    // The double click: plays the selected table, shows its details again and closes its node.
    void DoubleClick();
    // Flips the favourite flag of the selected table; what goes wrong with the database is shown.
    void ToggleSelectedFavorite();

private:
    void ConnectTree();
    void NodeClick(const QModelIndex& index);
    void KeyPress();
    // Plays the selected table when its file is there, then shows its details again. True: a table
    // or the root is selected.
    bool PlaySelected();
    void ShowPopup(int x_twips, const QPoint& position);
    bool IsTable(const QModelIndex& index) const;

    Parts parts_;
    DetailHost& host_;
    PlayTable play_table_;
    std::int64_t selected_node_index_ = 0;
};

}  // namespace browser
