// export and import.
#include "cli/change_report.h"
#include "cli/commands.h"
#include "cli/import_report.h"
#include "cli/opened_catalogue.h"
#include "cli/selection_arguments.h"

#include "exchange/exchange_file.h"
#include "exchange/row_import.h"
#include "exchange/row_writer.h"
#include "platform/files.h"

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

// To the standard output piece by piece; to a file in one go, so that a full disk leaves an older
// one as it was.
base::Result<std::int64_t> Export(Program& program, jet::Recordset& rows, const QString& file,
                                  const exchange::WriteOptions& options) {
    const bool keeps = !program.is_dry_run();
    if (file == kStandardStream)
        return exchange::WriteRows(rows, options, [&](std::string_view bytes) {
            return keeps ? program.console.Write(bytes) : base::Status();
        });
    QByteArray content;
    ASSIGN_OR_RETURN(const std::int64_t count,
                     exchange::WriteRows(rows, options, [&](std::string_view bytes) {
                         content.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
                         return base::Status();
                     }));
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
    auto changes = ChangeReport::Begin(program, opened.connection());
    if (!changes.ok()) return Fail(program, changes.status());
    const auto report =
        exchange::ImportRows(opened.connection(), source, OptionsOf(program.arguments));
    if (!report.ok()) return Fail(program, report.status());
    TellProblems(program.console, program.arguments.operands.front(), *report);
    if (!report->accepted()) return kFailed;
    const base::Status told = changes->Finish(opened.connection());
    const base::Status closed = opened.Close();
    for (const base::Status& status : {told, closed})
        if (!status.ok()) return Fail(program, status);
    if (report->passed_over > 0)
        program.console.WriteError(std::to_string(report->passed_over) + " passed over\n");
    return kDone;
}

}  // namespace

int RunExport(Program& program) {
    const Arguments& arguments = program.arguments;
    const auto selection = SelectionToExport(arguments);
    if (!selection.ok())
        return FailUsage(program.console, QString::fromStdString(selection.status().message()));
    const QString file = arguments.operands.value(0, kStandardStream.toString());
    auto opened = OpenedCatalogue::Open(program, Access::kRead);
    if (!opened.ok()) return Fail(program, opened.status());
    auto rows = OpenRows((*opened)->connection(), *selection);
    if (!rows.ok()) return Fail(program, rows.status());
    const auto count = Export(program, *rows, file,
                              {.format = FormatOf(arguments, file),
                               .columns = ColumnsOf(arguments),
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
