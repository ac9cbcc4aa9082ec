// compact and repair.
#include "cli/commands.h"
#include "cli/opened_catalogue.h"
#include "cli/snapshot_before.h"
#include "cli/terminal_text.h"

#include "catalogue/start_up.h"
#include "exchange/cell.h"
#include "exchange/row_writer.h"
#include "history/history_file.h"
#include "jet/repair/compact.h"
#include "jet/repair/repair.h"
#include "jet/tables/database.h"
#include "platform/files.h"
#include "platform/text_view.h"

namespace cli {
namespace {

jet::CompactProgress ProgressOf(Program& program) {
    return [&program](std::uint64_t done, std::uint64_t total) {
        program.console.ShowProgress(static_cast<std::int64_t>(done),
                                     static_cast<std::int64_t>(total));
        return base::Status();
    };
}

base::Result<jet::CompactReport> Compact(Program& program) {
    if (program.is_dry_run()) {
        ASSIGN_OR_RETURN(const auto opened, OpenedCatalogue::Open(program, Access::kRead));
        return jet::MeasureCompact(opened->connection().database()->pages(), ProgressOf(program));
    }
    jet::FileSystem& files = program.outside.files;
    const std::filesystem::path path = platform::ToPath(CataloguePath(program));
    const auto keep_history = [&](const jet::CompactReport& report) {
        return history::HistoryFile::Rebind(files, path, report.mark_before, report.mark_after);
    };
    return jet::CompactInPlace(files, path, ProgressOf(program), keep_history);
}

void PrintJson(Console& console, const jet::CompactReport& report) {
    console
        .Write("{\"schema\": " + std::to_string(exchange::kSchemaVersion) +
               ", \"bytes_before\": " + std::to_string(report.bytes_before()) +
               ", \"bytes_after\": " + std::to_string(report.bytes_after()) + ", \"tables\": " +
               std::to_string(report.tables) + ", \"rows\": " + std::to_string(report.rows) + "}\n")
        .Ignore();
}

// ---------------------------------------------------------------------------------------- repair

std::string Json(const std::string& text) {
    std::string json;
    exchange::AppendJsonText(json, platform::View(QString::fromStdString(text)));
    return json;
}

void PrintText(Console& console, const jet::RepairReport& report) {
    for (const jet::RepairLoss& loss : report.losses) {
        std::string line;
        AppendTerminalText(line, platform::View(QString::fromStdString(jet::Describe(loss))));
        console.Write(line + "\n").Ignore();
    }
    if (report.loss_count > report.losses.size())
        console.Print(QStringLiteral("and %1 more").arg(report.loss_count - report.losses.size()));
    console.Print(QStringLiteral("%1 tables, %2 rows, %3 losses")
                      .arg(report.tables)
                      .arg(report.rows)
                      .arg(report.loss_count));
}

void PrintJson(Console& console, const jet::RepairReport& report) {
    std::string json = "{\"schema\": " + std::to_string(exchange::kSchemaVersion) +
                       ", \"tables\": " + std::to_string(report.tables) +
                       ", \"rows\": " + std::to_string(report.rows) +
                       ", \"losses\": " + std::to_string(report.loss_count) + ", \"findings\": [";
    const char* separator = "\n";
    for (const jet::RepairLoss& loss : report.losses) {
        json += separator + std::string("{\"page\": ") + std::to_string(loss.page) +
                ", \"row\": " + (loss.row < 0 ? "null" : std::to_string(loss.row)) +
                ", \"table\": " + Json(loss.table) + ", \"field\": " + Json(loss.field) +
                ", \"reason\": " + Json(loss.reason) + "}";
        separator = ",\n";
    }
    console.Write(json + "]}\n").Ignore();
}

}  // namespace

int RunCompact(Program& program) {
    SnapshotBefore(program, "compact");
    const auto report = Compact(program);
    if (!report.ok()) return Fail(program, report.status());
    if (program.arguments.Has("json"))
        PrintJson(program.console, *report);
    else
        program.console.Print(QStringLiteral("%1 bytes before, %2 bytes %3")
                                  .arg(report->bytes_before())
                                  .arg(report->bytes_after())
                                  .arg(program.is_dry_run() ? QStringLiteral("when compacted")
                                                            : QStringLiteral("now")));
    return kDone;
}

int RunRepair(Program& program) {
    const auto from = platform::ToPath(platform::AbsolutePath(program.arguments.operands.front()));
    const auto to = platform::ToPath(platform::AbsolutePath(program.arguments.operands.back()));
    jet::FileSystem& files = program.outside.files;
    jet::RepairReport report;
    const base::Status done = program.is_dry_run() ? jet::TryRepair(files, from, report)
                                                   : jet::Repair(files, from, to, report);
    if (!done.ok()) return Fail(program, done);
    if (program.arguments.Has("json"))
        PrintJson(program.console, report);
    else
        PrintText(program.console, report);
    return report.loss_count == 0 ? kDone : kFailed;
}

}  // namespace cli
