// list, find and show: rows of the catalogue on the standard output.
#include "cli/commands.h"
#include "cli/opened_catalogue.h"
#include "cli/selection_arguments.h"
#include "cli/terminal_text.h"

#include "catalogue/field_text.h"
#include "exchange/row_writer.h"

#include <string>
#include <vector>

namespace cli {
namespace {

// Of those that the catalogue has.
constexpr const char* kListed[] = {"ID", "DisplayName", "Company", "Year", "Author", "FileName"};

std::vector<std::size_t> ListedPlaces(const jet::Recordset& rows) {
    std::vector<std::size_t> places;
    for (const char* name : kListed) {
        const auto place = exchange::ColumnPlaces(rows, {QString::fromLatin1(name)});
        if (place.ok()) places.push_back(place->front());
    }
    return places;
}

std::string HeadLine(const jet::Recordset& rows, const std::vector<std::size_t>& places,
                     bool is_bold) {
    std::string line;
    for (const std::size_t place : places) {
        if (!line.empty()) line += '\t';
        AppendTerminalText(line, rows.FieldName(place));
    }
    return is_bold ? "\033[1m" + line + "\033[0m\n" : line + "\n";
}

base::Status PrintRows(Program& program, jet::Recordset& rows, const QStringList& columns) {
    Console& console = program.console;
    ASSIGN_OR_RETURN(std::vector<std::size_t> places, exchange::ColumnPlaces(rows, columns));
    if (columns.isEmpty()) places = ListedPlaces(rows);
    std::string lines;
    if (console.OutIsTerminal()) lines = HeadLine(rows, places, console.OutIsColoured());
    while (!rows.Eof()) {
        for (std::size_t i = 0; i < places.size(); ++i) {
            ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(places[i]));
            if (i > 0) lines += '\t';
            AppendTerminalText(lines, jet::ToText(value));
        }
        lines += '\n';
        RETURN_IF_ERROR(rows.MoveNext());
        if (lines.size() < kPieceBytes) continue;
        RETURN_IF_ERROR(console.Write(lines));
        lines.clear();
    }
    return console.Write(lines);
}

base::Status Write(Program& program, jet::Recordset& rows, const QStringList& columns) {
    if (!program.arguments.Has("json")) return PrintRows(program, rows, columns);
    return exchange::WriteRows(rows, {.format = exchange::Format::kJson, .columns = columns},
                               [&](std::string_view bytes) { return program.console.Write(bytes); })
        .status();
}

enum class Nothing { kIsFine, kIsTold };

int ListSelection(Program& program, const catalogue::Selection& selection, Nothing nothing) {
    const auto columns = ColumnsOf(program.arguments);
    if (!columns.ok()) return FailUsage(program.console, columns.status());
    auto opened = OpenedCatalogue::Open(program, Access::kRead);
    if (!opened.ok()) return Fail(program, opened.status());
    auto rows = OpenRows((*opened)->connection(), selection);
    if (!rows.ok()) return Fail(program, rows.status());
    if (const auto places = exchange::ColumnPlaces(*rows, *columns); !places.ok())
        return FailUsage(program.console, places.status());
    const bool is_empty = rows->Eof();
    const base::Status written = Write(program, *rows, *columns);
    if (!written.ok()) return Fail(program, written);
    if (!is_empty || nothing == Nothing::kIsFine) return kDone;
    program.console.Complain(QStringLiteral("No matching records found"));
    return kFailed;
}

}  // namespace

int RunList(Program& program) {
    return ListSelection(program, SelectionOfOptions(program.arguments), Nothing::kIsFine);
}

int RunFind(Program& program) {
    const auto selection = SelectionOfOperands(program.arguments);
    if (!selection.ok()) return FailUsage(program.console, selection.status());
    return ListSelection(program, *selection, Nothing::kIsTold);
}

int RunShow(Program& program) {
    const auto id = IdOf(program.arguments.operands.front());
    if (!id.ok()) return FailUsage(program.console, id.status());
    auto opened = OpenedCatalogue::Open(program, Access::kRead);
    if (!opened.ok()) return Fail(program, opened.status());
    const QString sql = QStringLiteral("Select * from Tables where ID = ") + QString::number(*id);
    auto rows = (*opened)->connection().Execute(sql.toStdU16String());
    if (!rows.ok()) return Fail(program, rows.status());
    if (rows->Eof()) return Fail(program, NoSuchTable(*id));
    if (program.arguments.Has("json")) {
        const base::Status written = Write(program, *rows, {});
        return written.ok() ? kDone : Fail(program, written);
    }
    for (std::size_t field = 0; field < rows->FieldCount(); ++field) {
        const auto value = rows->Fields(field);
        if (!value.ok()) return Fail(program, value.status());
        program.console.Print(QString::fromStdU16String(rows->FieldName(field)) +
                              QStringLiteral(": ") + ShownText(catalogue::FieldText(*value)));
    }
    return kDone;
}

}  // namespace cli
