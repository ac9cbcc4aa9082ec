#include "history/undo_redo.h"

#include "history/change_names.h"
#include "jet/connection.h"

namespace history {
namespace {

using base::Result;

UndoRedo::Next NextOf(std::span<const Change> changes, const Change& change) {
    const Change& origin = OriginOf(changes, change);
    return {change.number, origin.label.name, DisplayName(change, origin.label.name), change};
}

std::optional<UndoRedo::Next> LastOf(std::span<const Change> changes,
                                     const std::vector<std::uint64_t>& numbers) {
    if (numbers.empty()) return std::nullopt;
    return NextOf(changes, *FindChange(changes, numbers.back()));
}

}  // namespace

Result<UndoRedo::Ahead> UndoRedo::LookAhead() {
    RETURN_IF_ERROR(connection_.Flush());
    ASSIGN_OR_RETURN(const std::vector<Change> changes, file_.Changes());
    const UndoOrder order = OrderOf(changes);
    return Ahead{LastOf(changes, order.undo), LastOf(changes, order.redo)};
}

Result<UndoRedo::Done> UndoRedo::Run(std::u16string_view prefix, const Next& next,
                                     const base::RunSteps& steps) {
    const std::u16string begin(prefix);
    ASSIGN_OR_RETURN(PutBackResult result,
                     PutBack(connection_, file_, next.number,
                             begin + (next.name.empty() ? u"Change" : next.name), {}, steps));
    return Done{begin + next.caption, prefix, next, std::move(result)};
}

Result<std::optional<UndoRedo::Done>> UndoRedo::Undo(const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(const Ahead ahead, LookAhead());
    if (!ahead.undo) return std::optional<Done>();
    ASSIGN_OR_RETURN(Done done, Run(kUndoPrefix, *ahead.undo, steps));
    return std::optional(std::move(done));
}

Result<std::optional<UndoRedo::Done>> UndoRedo::Redo(const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(const Ahead ahead, LookAhead());
    if (!ahead.redo) return std::optional<Done>();
    ASSIGN_OR_RETURN(Done done, Run(kRedoPrefix, *ahead.redo, steps));
    return std::optional(std::move(done));
}

Result<UndoRedo::Done> UndoRedo::UndoChange(std::uint64_t number) {
    RETURN_IF_ERROR(connection_.Flush());
    ASSIGN_OR_RETURN(const std::vector<Change> changes, file_.Changes());
    const Change* const change = FindChange(changes, number);
    if (change == nullptr)
        return base::Status(base::StatusCode::kNotFound,
                            "The history has no change " + std::to_string(number) + ".");
    return Run(kUndoPrefix, NextOf(changes, *change));
}

}  // namespace history
