// What changes are called in the user's language. The history file and the logic keep the English
// names (change_names.h).
#pragma once

#include "history/change_index.h"
#include "history/undo_redo.h"

#include <QtCore/QString>

namespace history {

// "3,412".
QString GroupedText(std::uint64_t number);
// "12 fields".
QString FieldsText(std::uint64_t fields);
// A name as it is stored: "Purge", "Undo Purge"; empty: that of a change without one.
QString ShownName(std::u16string_view name);
// With the number of rows: "Purge (3,412 tables)".
QString ShownName(const Change& change);
// The change that would be put back, named after what the user did.
QString ShownName(const UndoRedo::Next& next);
// "Undo Purge (3,412 tables)".
QString ShownName(const UndoRedo::Done& done);

}  // namespace history
