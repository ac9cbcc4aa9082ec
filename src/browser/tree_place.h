// TreePlace: which table is selected in the tree and where in the view it stands, kept while the
// tree is filled anew.
#pragma once

#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace browser {

class TreePlace {
public:
    // Call before the tree is emptied. An empty tree, or one in which nothing is selected, leaves
    // what was remembered before.
    void Remember(const TableTreeModel& model, const TableTreeView& tree);

    enum class Gone { kTakesTheNeighbour, kTakesNone };
    // The node of that table, or of its nearest neighbour in the order that was remembered if the
    // table is gone; invalid: there is none, or nothing was remembered.
    QModelIndex Find(const TableTreeModel& model, Gone gone) const;
    // Selects the node and brings it where the table stood in the view. The node is not clicked.
    void Select(TableTreeView& tree, const QModelIndex& node) const;

private:
    // The nearest of the tables that are there now, in the order of ids_; nullopt: none is.
    std::optional<std::int32_t> Neighbour(std::vector<std::int32_t> now) const;

    std::optional<std::size_t> row_;  // of the table among `ids_`
    std::vector<std::int32_t> ids_;   // of all tables, in the order of the tree
    int lines_above_ = 0;             // in the view, above the table
};

}  // namespace browser
