// history and undo: what was changed, and taking it back.
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/opened_catalogue.h"
#include "cli/terminal_text.h"

#include "catalogue/start_up.h"
#include "exchange/cell.h"
#include "exchange/row_writer.h"
#include "history/change_names.h"
#include "history/undo_redo.h"
#include "jet/values/conversions.h"
#include "platform/files.h"

namespace cli {
namespace {

QString Text(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// Number, time, name, rows and fields, with tabs between them.
QString Line(const history::Change& change) {
    return QStringLiteral("%1\t%2\t%3\t%4\t%5")
        .arg(change.number)
        .arg(Text(jet::FormatDate(change.label.time, u"yyyy-mm-dd hh:nn:ss")),
             ShownText(Text(history::DisplayName(change))))
        .arg(change.rows())
        .arg(change.fields);
}

std::string Json(const history::Change& change) {
    std::string json = "{\"number\": " + std::to_string(change.number) + ", \"time\": ";
    exchange::AppendJsonText(json, jet::FormatDate(change.label.time, u"yyyy-mm-dd hh:nn:ss"));
    json += ", \"name\": ";
    exchange::AppendJsonText(json, change.label.name);
    return json + ", \"rows\": " + std::to_string(change.rows()) +
           ", \"fields\": " + std::to_string(change.fields) + "}";
}

std::string Json(const std::vector<history::Change>& changes) {
    std::string json =
        "{\n  \"schema\": " + std::to_string(exchange::kSchemaVersion) + ",\n  \"changes\": [";
    for (const history::Change& change : changes)
        json += (&change == changes.data() ? "\n    " : ",\n    ") + Json(change);
    return json + (changes.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

void Complain(Program& program, const history::Refusal& refusal) {
    QStringList where;
    for (const std::u16string& part : {refusal.table, refusal.row, refusal.field})
        if (!part.empty()) where.append(Text(part));
    QString line = where.join(QStringLiteral(", ")) + QStringLiteral(": ");
    if (!refusal.field.empty())
        line += QStringLiteral("now '") + Text(refusal.now) + QStringLiteral("', was '") +
                Text(refusal.then) + QStringLiteral("': ");
    program.console.Complain(ShownText(line + Text(refusal.reason)));
}

base::Result<history::UndoRedo::Done> Undo(Program& program, OpenedCatalogue& opened) {
    history::UndoRedo undo_redo(opened.connection(), opened.history());
    if (!program.arguments.operands.isEmpty()) {
        bool is_number = false;
        const qulonglong number = program.arguments.operands.front().toULongLong(&is_number);
        if (!is_number)
            return base::Status(base::StatusCode::kInvalidArgument,
                                "'" + program.arguments.operands.front().toStdString() +
                                    "' is not the number of a change");
        return undo_redo.UndoChange(number);
    }
    const bool is_redo = program.arguments.Has("redo");
    ASSIGN_OR_RETURN(auto done, is_redo ? undo_redo.Redo() : undo_redo.Undo());
    if (!done)
        return base::Status(base::StatusCode::kNotFound,
                            is_redo ? "There is nothing to redo." : "There is nothing to undo.");
    return std::move(*done);
}

}  // namespace

// A catalogue that is in use may have changes whose notes have not reached the file yet.
int RunHistory(Program& program) {
    auto opened = OpenedCatalogue::Open(program, Access::kRead);
    if (!opened.ok()) return Fail(program, opened.status());
    const auto changes = (*opened)->history().Changes();
    if (!changes.ok()) return Fail(program, changes.status());
    if (program.arguments.Has("json")) {
        program.console.Write(Json(*changes)).Ignore();
        return kDone;
    }
    for (const history::Change& change : *changes)
        program.console.Print(Line(change));
    return kDone;
}

int RunUndo(Program& program) {
    auto opened = OpenedCatalogue::Open(program, Access::kWrite);
    if (!opened.ok()) return Fail(program, opened.status());
    const auto done = Undo(program, **opened);
    if (!done.ok()) return Fail(program, done.status());
    program.console.Print(ShownText(Text(done->caption)));
    for (const history::Refusal& refusal : done->result.refusals)
        Complain(program, refusal);
    for (const base::Status& status : {(*opened)->Close(), (*opened)->history().TakeFailure()})
        if (!status.ok()) return Fail(program, status);
    return done->result.refusals.empty() ? kDone : kFailed;
}

}  // namespace cli
