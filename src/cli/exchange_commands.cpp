// export and import.
#include "cli/change_report.h"
#include "cli/commands.h"
#include "cli/import_report.h"
#include "cli/opened_catalogue.h"
#include "cli/selection_arguments.h"
#include "cli/snapshot_before.h"

#include "exchange/exchange_file.h"
#include "exchange/row_import.h"
#include "exchange/row_writer.h"
#include "platform/files.h"

#include <optional>
#include <utility>

namespace cli {
namespace {

constexpr QStringView kStandardStream = u"-";

base::Status WrongUsage(const char* text) {
    return {base::StatusCode::kInvalidArgument, text};
}

exchange::Format FormatOf(const Arguments& arguments, const QString& file) {
    const QString name = arguments.Value("format");
    if (name == u"json") return exchange::Format::kJson;
    if (name == u"jsonl") return exchange::Format::kJsonLines;
    if (name == u"csv") return exchange::Format::kCsv;
    return exchange::FormatOfFile(file).value_or(exchange::Format::kCsv);
}

base::Result<catalogue::Selection> SelectionToExport(const Arguments& arguments) {
    const catalogue::Selection selection = SelectionOfOptions(arguments);
    if (selection.takes_value && !arguments.Has("value"))
        return WrongUsage("this filter needs --value");
    if (!selection.takes_value && (arguments.Has("value") || arguments.Has("operator")))
        return WrongUsage("only a filter that compares takes --operator and --value");
    RETURN_IF_ERROR(CheckSelection(selection));
    return selection;
}

// Rows of a catalogue and how many they are, if somebody watches their progress, else 0.
struct RowsToWrite {
    jet::Recordset rows;
    std::int64_t count = 0;
};

base::Result<RowsToWrite> OpenRowsToWrite(Program& program, jet::Connection& connection,
                                          const catalogue::Selection& selection) {
    RowsToWrite opened;
    if (!program.console.ErrorShowsProgress()) {
        ASSIGN_OR_RETURN(opened.rows, OpenRows(connection, selection));
        return opened;
    }
    RETURN_IF_ERROR(opened.rows.Open(catalogue::SelectionStatement(selection).toStdU16String(),
                                     connection, jet::CursorType::kStatic));
    opened.count = opened.rows.RecordCount();
    return opened;
}

// To the standard output piece by piece; to a file in one go, so that a full disk leaves an older
// one as it was.
base::Result<std::int64_t> Export(Program& program, RowsToWrite& opened, const QString& file,
                                  const exchange::WriteOptions& options) {
    const bool keeps = !program.is_dry_run();
    const bool goes_to_file = file != kStandardStream;
    QByteArray content;
    const auto take = [&](std::string_view bytes) {
        if (!goes_to_file) return keeps ? program.console.Write(bytes) : base::Status();
        content.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
        return base::Status();
    };
    const catalogue::Progress progress = [&](std::int64_t done, std::int64_t total) {
        program.console.ShowProgress(done, total);
    };
    // Where the rows themselves are shown nobody wants a line between them.
    const bool shows_progress = goes_to_file || !program.console.OutIsTerminal();
    ASSIGN_OR_RETURN(const std::int64_t count,
                     exchange::WriteRows(opened.rows, options, take,
                                         shows_progress ? progress : catalogue::Progress(),
                                         opened.count));
    if (!goes_to_file) return count;
    if (keeps) RETURN_IF_ERROR(platform::SaveFile(platform::AbsolutePath(file), content));
    return count;
}

base::Result<QByteArray> ReadInput(Program& program, const QString& name) {
    if (name == kStandardStream) return program.console.ReadIn(exchange::kMaxFileBytes);
    return exchange::ReadFile(platform::AbsolutePath(name));
}

exchange::ImportOptions OptionsOf(const Arguments& arguments) {
    exchange::ImportOptions options;
    const QString match = arguments.Value("match");
    if (match == u"file") options.match = exchange::MatchBy::kFile;
    if (match == u"crc") options.match = exchange::MatchBy::kCrc;
    options.update_only = arguments.Has("update-only");
    options.ignore_unknown = arguments.Has("ignore-unknown");
    return options;
}

int Import(Program& program, OpenedCatalogue& opened, exchange::RowSource& source) {
    SnapshotBefore(program, opened, "import");
    const auto report =
        ImportAndTell(program, opened.connection(), source, OptionsOf(program.arguments));
    const base::Status closed = opened.Close();
    if (report.ok()) TellProblems(program.console, program.arguments.operands.front(), *report);
    if (!report.ok() || !closed.ok()) return Finish(program, {report.status(), closed});
    if (!report->accepted()) return kFailed;
    if (report->passed_over > 0)
        program.console.WriteError(std::to_string(report->passed_over) + " passed over\n");
    return kDone;
}

}  // namespace

int RunExport(Program& program) {
    const Arguments& arguments = program.arguments;
    const auto selection = SelectionToExport(arguments);
    const auto columns = ColumnsOf(arguments);
    for (const base::Status& wrong : {selection.status(), columns.status()})
        if (!wrong.ok()) return FailUsage(program.console, wrong);
    const QString file = arguments.operands.value(0, kStandardStream.toString());
    auto opened = OpenedCatalogue::Open(program, Access::kRead);
    if (!opened.ok()) return Fail(program, opened.status());
    auto rows = OpenRowsToWrite(program, (*opened)->connection(), *selection);
    if (!rows.ok()) return Fail(program, rows.status());
    if (const auto places = exchange::ColumnPlaces(rows->rows, *columns); !places.ok())
        return FailUsage(program.console, places.status());
    const auto count = Export(program, *rows, file,
                              {.format = FormatOf(arguments, file),
                               .columns = *columns,
                               .escape_formulas = arguments.Has("escape-formulas")});
    if (!count.ok()) return Fail(program, count.status());
    if (program.is_dry_run() || file != kStandardStream)
        program.console.WriteError((program.is_dry_run() ? "dry run: " : "") +
                                   std::to_string(*count) + " tables\n");
    return kDone;
}

int RunImport(Program& program) {
    const QString& file = program.arguments.operands.front();
    // Read before the catalogue is taken: what writes the file may need it.
    const auto bytes = ReadInput(program, file);
    if (!bytes.ok()) return Fail(program, bytes.status());
    auto opened = OpenedCatalogue::Open(program, AccessForChanges(program));
    if (!opened.ok()) return Fail(program, opened.status());
    const std::string_view content(bytes->constData(), static_cast<std::size_t>(bytes->size()));
    const auto source = exchange::MakeRowSource(content, FormatOf(program.arguments, file),
                                                program.arguments.Has("unescape-formulas"));
    return Import(program, **opened, *source);
}

base::Result<exchange::ImportReport> ImportAndTell(Program& program, jet::Connection& connection,
                                                   exchange::RowSource& source,
                                                   const exchange::ImportOptions& options) {
    std::optional<ChangeReport> changes;
    if (TellsCells(program)) {
        ASSIGN_OR_RETURN(ChangeReport begun, ChangeReport::Begin(program, connection));
        changes.emplace(std::move(begun));
    }
    ASSIGN_OR_RETURN(exchange::ImportReport report,
                     exchange::ImportRows(connection, source, options));
    if (!report.accepted()) return report;
    if (changes)
        RETURN_IF_ERROR(changes->Finish(connection));
    else
        TellSummary(program, report.added, report.changed);
    return report;
}

base::Status FirstProblem(const exchange::ImportReport& report) {
    if (report.accepted()) return {};
    return {base::StatusCode::kInvalidArgument, report.problems.front().text};
}

void TellProblems(Console& console, const QString& file, const exchange::ImportReport& report) {
    for (const exchange::RowProblem& problem : report.problems) {
        QString place = file + u':';
        if (problem.line > 0) place += QString::number(problem.line) + u':';
        console.Complain(place + u' ' + QString::fromStdString(problem.text));
    }
    const auto told = static_cast<std::int64_t>(report.problems.size());
    if (report.problem_count > told)
        console.Complain(QStringLiteral("and %1 more").arg(report.problem_count - told));
    if (!report.accepted()) {
        console.Complain(QStringLiteral("nothing was imported"));
        return;
    }
    for (const std::u16string& name : report.unknown_columns)
        console.Complain(
            QStringLiteral("the column %1 was left out").arg(QString::fromStdU16String(name)));
}

}  // namespace cli
