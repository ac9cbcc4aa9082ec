// UndoRedo: what the next undo and the next redo are, and doing them. Over restarts, as all of it
// is in the history file.
#pragma once

#include "history/put_back.h"
#include "history/undo_order.h"

#include <optional>
#include <string>

namespace history {

class UndoRedo {
public:
    // Both are borrowed; `file` keeps the notes of `connection`.
    UndoRedo(jet::Connection& connection, HistoryFile& file)
        : connection_(connection), file_(file) {}

    struct Next {
        std::uint64_t number = 0;  // of the change that is put back
        std::u16string name;       // of what the user did, without counts: "Purge"
        std::u16string caption;    // with them: "Purge (3,412 tables)"
        Change change;             // that is put back
    };
    struct Ahead {
        std::optional<Next> undo;  // nullopt: there is nothing to undo
        std::optional<Next> redo;
    };
    base::Result<Ahead> LookAhead();

    struct Done {
        std::u16string caption;      // "Undo Purge (3,412 tables)"
        std::u16string_view prefix;  // of change_names.h
        Next of;                     // what it was done to
        PutBackResult result;
    };
    // nullopt: there is nothing to undo or redo.
    base::Result<std::optional<Done>> Undo(const base::RunSteps& steps = {});
    base::Result<std::optional<Done>> Redo(const base::RunSteps& steps = {});
    // Undoes this change, whether newer ones were undone or not. kNotFound: there is none of this
    // number.
    base::Result<Done> UndoChange(std::uint64_t number);

private:
    base::Result<Done> Run(std::u16string_view prefix, const Next& next,
                           const base::RunSteps& steps = {});

    jet::Connection& connection_;
    HistoryFile& file_;
};

}  // namespace history
