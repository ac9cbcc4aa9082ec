// The summary of a table's notes that is shown under the tree, and the lookup of single columns.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

namespace browser {

// The first three lines of `notes`, followed by "..." if there are more. Lines end with carriage
// returns.
QString SummariseNotes(const QString& notes);

// The summary for the first table with this FileName; empty if there is no such row or it has no
// notes.
base::Result<QString> NotesSummary(jet::Connection& connection, const QString& file_name);

// The column of the first row with this DisplayName as text; empty if there is no such row or the
// value is Null. `column` is not quoted: it must be a constant of the program.
base::Result<QString> LookupColumn(jet::Connection& connection, const QString& column,
                                   const QString& display_name);

}  // namespace browser
