#include "exchange/table_exchange.h"

#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "exchange/exchange_file.h"
#include "exchange/row_import.h"
#include "exchange/row_writer.h"
#include "exchange/texts.h"
#include "platform/files.h"

#include <algorithm>

namespace exchange {
namespace {

using Stop = catalogue::LongRun::Stop;

constexpr std::size_t kShownProblems = 10;

platform::FileDialog DialogFor(const QString& title) {
    platform::FileDialog dialog;
    dialog.title = title;
    dialog.filter = QStringLiteral("CSV (*.csv)|*.csv|JSON (*.json)|*.json|") +
                    ExchangeTexts::tr("JSON lines") + QStringLiteral(" (*.jsonl)|*.jsonl");
    dialog.default_extension = QStringLiteral("csv");
    return dialog;
}

// ok, as all is said.
base::Status Tell(platform::UserPrompts& prompts, const QString& title, const QString& text) {
    prompts.Ask({text, title, platform::MessageIcon::kInformation});
    return {};
}

base::Status Show(platform::UserPrompts& prompts, const base::Status& failure) {
    catalogue::ShowError(prompts, failure);
    return {};
}

base::Result<std::int64_t> Write(jet::Connection& connection, const catalogue::Selection& shown,
                                 const QString& path, const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(auto rows, catalogue::OpenSelection(connection, shown));
    if (!rows) return std::int64_t{0};
    RETURN_IF_ERROR(rows->MoveLast());
    const std::int64_t total = rows->RecordCount();
    RETURN_IF_ERROR(rows->MoveFirst());
    QByteArray content;
    ASSIGN_OR_RETURN(const std::int64_t count,
                     WriteRows(
                         *rows, {.format = FormatOfFile(path).value_or(Format::kCsv)},
                         [&](std::string_view bytes) {
                             content.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
                             return base::StatusOf(steps.stop);
                         },
                         steps.progress, total));
    RETURN_IF_ERROR(base::StatusOf(steps.stop));
    RETURN_IF_ERROR(platform::SaveFile(path, content));
    return count;
}

// What the file offers to find tables by.
MatchBy MatchOf(std::string_view content, Format format) {
    const auto source = MakeRowSource(content, format);
    SourceRow row;
    while (!source->columns_are_known() && source->Next(row)) {
    }
    const auto has = [&](QStringView name) {
        return std::ranges::any_of(source->columns(), [&](const std::u16string& column) {
            return QStringView(column).compare(name, Qt::CaseInsensitive) == 0;
        });
    };
    if (has(u"ID")) return MatchBy::kId;
    if (has(u"FileName")) return MatchBy::kFile;
    return has(u"CRC") ? MatchBy::kCrc : MatchBy::kId;
}

QString ProblemText(const ImportReport& report) {
    QStringList lines{ExchangeTexts::tr("Nothing was imported:")};
    const std::size_t shown = std::min(report.problems.size(), kShownProblems);
    for (const RowProblem& problem : std::span(report.problems).first(shown)) {
        const QString place =
            problem.line > 0 ? ExchangeTexts::tr("line %1: ").arg(problem.line) : QString();
        lines.append(place + QString::fromStdString(problem.text));
    }
    const auto more = report.problem_count - static_cast<std::int64_t>(shown);
    if (more > 0) lines.append(ExchangeTexts::tr("and %1 more").arg(more));
    return lines.join(u'\n');
}

}  // namespace

base::Status ExportTables(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                          const std::optional<catalogue::Selection>& shown) {
    const QString title = ExchangeTexts::tr("Export");
    if (!shown) return Tell(prompts, title, ExchangeTexts::tr("There is no table to export"));
    const QString path = prompts.ChooseFileToSave(DialogFor(title));
    if (path.isEmpty()) return {};
    const auto count =
        RunLong(catalogue, {title, Stop::kOnRequest}, [&](const base::RunSteps& steps) {
            return Write(*catalogue.CatalogueConnection, *shown, path, steps);
        });
    if (base::IsStopped(count.status())) return count.status();
    if (!count.ok()) return Show(prompts, count.status());
    return Tell(prompts, title,
                ExchangeTexts::tr("%1 tables exported to:\n%2").arg(*count).arg(path));
}

base::Status ImportTables(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                          const std::function<void()>& refresh_tree) {
    const QString title = ExchangeTexts::tr("Import");
    const QString path = prompts.ChooseFileToOpen(DialogFor(title));
    if (path.isEmpty()) return {};
    const auto bytes = RunLong(catalogue, {ExchangeTexts::tr("Reading the file")},
                               [&](const base::RunSteps&) { return ReadFile(path); });
    if (!bytes.ok()) return Show(prompts, bytes.status());
    const std::string_view content(bytes->constData(), static_cast<std::size_t>(bytes->size()));
    const Format format = FormatOfFile(path).value_or(Format::kCsv);
    ImportOptions options{.match = MatchOf(content, format),
                          .dry_run = true,
                          .lines = std::ranges::count(content, '\n')};
    const auto run = [&](const QString& what) {
        return RunLong(catalogue, {what, Stop::kOnRequest}, [&](const base::RunSteps& steps) {
            const auto source = MakeRowSource(content, format);
            return ImportRows(*catalogue.CatalogueConnection, *source, options, steps);
        });
    };
    const auto report = run(ExchangeTexts::tr("Comparing"));
    if (base::IsStopped(report.status())) return report.status();
    if (!report.ok()) return Show(prompts, report.status());
    if (!report->accepted()) return Tell(prompts, title, ProblemText(*report));
    const QString question =
        ExchangeTexts::tr(
            "%1 tables will be added and %2 changed.\nAre you sure you want to continue?")
            .arg(report->added)
            .arg(report->changed);
    const auto answer = prompts.Ask(
        {question, title, platform::MessageIcon::kExclamation, platform::MessageButtons::kYesNo});
    if (answer != platform::MessageAnswer::kYes) return {};
    options.dry_run = false;
    base::Status done = run(title).status();
    if (base::IsStopped(done)) return done;
    catalogue::ShowError(prompts, done);
    refresh_tree();
    return {};
}

}  // namespace exchange
