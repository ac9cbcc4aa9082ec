// Which change is undone next, and which undo is taken back next: derived from the changes alone,
// so it survives restarts. An undo is a change that names the one that it takes back; a redo takes
// an undo back. A new change leaves nothing to redo.
#pragma once

#include "history/change_index.h"

#include <cstdint>
#include <span>
#include <vector>

namespace history {

struct UndoOrder {
    // Numbers of changes, the next one last. `redo`: of undos.
    std::vector<std::uint64_t> undo;
    std::vector<std::uint64_t> redo;
};

// `changes`: the oldest first.
UndoOrder OrderOf(std::span<const Change> changes);

// The change that an undo or redo, directly or through others, is about; itself for any other
// change, and where the one that it names has left the history.
const Change& OriginOf(std::span<const Change> changes, const Change& change);

// nullptr: no change has this number.
const Change* FindChange(std::span<const Change> changes, std::uint64_t number);

}  // namespace history
