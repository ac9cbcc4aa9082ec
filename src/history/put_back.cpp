#include "history/put_back.h"

#include "history/put_back_run.h"
#include "history/undo_order.h"
#include "jet/connection.h"

#include "base/unicode.h"

namespace history {
namespace {

using base::Result;
using base::Status;

// The attempts end: each has more rows left out than the one before, or goes row by row instead of
// at once.
Result<PutBackResult> PutBackIn(jet::Database& database, const FoldedChange& change,
                                const PartOfChange& part, const base::RunSteps& steps) {
    LeftOut left_out;
    auto mode = PutBackRun::Mode::kManyAtOnce;
    for (;;) {
        PutBackRun run(database, change, part, left_out, mode, steps);
        ASSIGN_OR_RETURN(const PutBackRun::Outcome outcome, run.Run());
        RETURN_IF_ERROR(base::StatusOf(steps.stop));
        if (outcome == PutBackRun::Outcome::kDone)
            return PutBackResult{database.recorded_rows(), run.TakeRefusals()};
        mode = PutBackRun::Mode::kOneByOne;
        database.Rollback();
        RETURN_IF_ERROR(database.Begin());
    }
}

}  // namespace

Result<PutBackResult> PutBack(jet::Connection& connection, HistoryFile& file, std::uint64_t number,
                              std::u16string name, const PartOfChange& part,
                              const base::RunSteps& steps) {
    RETURN_IF_ERROR(connection.Flush());
    ASSIGN_OR_RETURN(const std::vector<Change> changes, file.Changes());
    const Change* const undone = FindChange(changes, number);
    ASSIGN_OR_RETURN(std::vector<jet::Bytes> notes, file.NotesOf(number));
    ASSIGN_OR_RETURN(const FoldedChange change, FoldedChange::Fold(std::move(notes), steps.stop));
    RETURN_IF_ERROR(base::StatusOf(steps.stop));
    const bool is_undo = part.is_all() && undone != nullptr;
    const jet::NamedChange named(connection, std::move(name), is_undo ? undone->label.id : 0);
    PutBackResult result;
    RETURN_IF_ERROR(connection.Change([&](jet::Database& database) -> Status {
        ASSIGN_OR_RETURN(result, PutBackIn(database, change, part, steps));
        return Status::Ok();
    }));
    return result;
}

std::u16string RowName(const jet::NoteTable& table, const FoldedRow& row) {
    const auto& key = row.change == jet::RowChange::kInserted ? row.key_after : row.key_before;
    std::u16string name;
    for (std::size_t i = 0; i < key.size(); ++i) {
        if (!name.empty()) name += u", ";
        name += table.columns[table.key[i]].name + u" " + CellText(table, table.key[i], key[i]);
    }
    return name;
}

std::u16string CellText(const jet::NoteTable& table, std::size_t column,
                        const jet::NotedCell& cell) {
    const auto value = table.Decode(column, cell);
    return value.ok() ? CellText(*value) : base::ToUtf16(value.status().message());
}

std::u16string CellText(const jet::Value& value) {
    if (const auto* bytes = value.get_if<jet::Bytes>())
        return base::ToUtf16(std::to_string(bytes->size()) + " bytes");
    return jet::ToText(value);
}

}  // namespace history
