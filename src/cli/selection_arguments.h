// From the words of a command line to rows of the catalogue: filters, operators and orders are
// those of the program's window.
#pragma once

#include "catalogue/table_selection.h"
#include "cli/arguments.h"
#include "jet/connection.h"

#include <cstdint>

namespace cli {

// Of --order and --descending; with a filter where --filter is given. Without --order rows come as
// the window's first order has them.
catalogue::Selection SelectionOfOptions(const Arguments& arguments);
// The same with FILTER, OPERATOR and VALUE. kInvalidArgument says what is wrong with them.
base::Result<catalogue::Selection> SelectionOfOperands(const Arguments& arguments);
// What is wrong with the selection's value, operator or filter; ok: nothing.
base::Status CheckSelection(const catalogue::Selection& selection);

// Of --columns; empty: not given. kInvalidArgument: a name is empty.
base::Result<QStringList> ColumnsOf(const Arguments& arguments);

// The rows, for reading from the first to the last; none is no failure.
base::Result<jet::Recordset> OpenRows(jet::Connection& connection,
                                      const catalogue::Selection& selection);

// kInvalidArgument: not a whole number.
base::Result<std::int64_t> IdOf(const QString& word);
base::Status NoSuchTable(std::int64_t id);

}  // namespace cli
