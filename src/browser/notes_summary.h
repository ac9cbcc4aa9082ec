// The short view of a table's notes that stands under the tree, and single columns found by display
// name.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

namespace browser {

// At most the first three lines of `notes`; "..." is appended when there is a third carriage
// return, that is, a fourth line. Lines end at carriage returns; a text without one is returned
// whole.
QString SummariseNotes(const QString& notes);

// The summary of the notes of the table whose FileName is `file_name`; empty without a row or
// without notes.
base::Result<QString> NotesSummary(jet::Connection& connection, const QString& file_name);

// The column of the first row with this DisplayName as text; empty when there is no row or the
// value is Null. `column` goes into the statement as it is: a name of the program, never a text of
// the user.
base::Result<QString> LookupColumn(jet::Connection& connection, const QString& column,
                                   const QString& display_name);

}  // namespace browser
