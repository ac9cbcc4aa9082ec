// Rows of the tree for other programs: as text and as files.
#pragma once

#include "browser/table_tree_model.h"
#include "catalogue/local_paths.h"

#include <QtCore/QMimeData>
#include <QtCore/QModelIndex>

#include <memory>
#include <vector>

namespace browser {

// The tables that a node stands for: itself, the table of a detail line, all tables of the root.
std::vector<std::size_t> TablesOf(const TableTreeModel& model, const QModelIndex& node);

// A line of each table, its fields parted by tabs: name, author, company, year, file. Tabs and line
// breaks inside of a field become blanks.
QString RowsAsText(const TableTreeModel& model, const std::vector<std::size_t>& tables);

// The table files that exist, as file managers put them on the clipboard to be copied; null: none
// exists.
std::unique_ptr<QMimeData> RowsAsFiles(const TableTreeModel& model,
                                       const std::vector<std::size_t>& tables,
                                       const catalogue::LocalPaths& paths);

}  // namespace browser
