// Putting back what a change did, cell by cell, in one transaction that is a change of its own. A
// cell is put back only while it holds what the change wrote; a deleted row comes back with its key
// if that is free; an inserted row goes only if nobody changed it since. What others have changed
// meanwhile stays and is listed.
#pragma once

#include "base/run_steps.h"
#include "history/folded_change.h"
#include "history/history_file.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace jet {
class Connection;
}

namespace history {

// Something that stays as it is. Texts for the user, as fields are shown.
struct Refusal {
    std::u16string table;
    std::u16string row;    // its key, "ID 12"; empty: the table has none
    std::u16string field;  // empty: the row as a whole
    std::u16string now;
    std::u16string then;    // what would have been put back
    std::u16string reason;  // a sentence
    bool operator==(const Refusal&) const = default;
};

struct PutBackResult {
    std::size_t rows = 0;  // that were changed, deleted or inserted again
    std::vector<Refusal> refusals;
};

// A part of a change; nullopt: all of it. A row that was inserted or deleted is a whole: of one
// field of it, all comes back or goes.
struct PartOfChange {
    std::optional<std::size_t> row;     // position in FoldedChange::rows()
    std::optional<std::size_t> column;  // position in NoteTable::columns
    bool is_all() const { return !row && !column; }
};

// Puts back change `number` as a change named `name`. All of a change is an undo: the new change
// names it. `connection` is open and has `file` for its notes. `steps` are the rows of the change.
// kNotFound: there is no such change any more. On failure, or stopped, nothing has changed.
base::Result<PutBackResult> PutBack(jet::Connection& connection, HistoryFile& file,
                                    std::uint64_t number, std::u16string name,
                                    const PartOfChange& part = {},
                                    const base::RunSteps& steps = {});

// The key of a row for the user, "ID 12"; empty: the table has none.
std::u16string RowName(const jet::NoteTable& table, const FoldedRow& row);
// A cell as it is shown; long binaries by their size. "" for Null.
std::u16string CellText(const jet::NoteTable& table, std::size_t column,
                        const jet::NotedCell& cell);
std::u16string CellText(const jet::Value& value);

}  // namespace history
