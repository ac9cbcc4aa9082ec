// scan, update, crc, set and backup.
#include "base/marked_text.h"
#include "cli/change_report.h"
#include "cli/commands.h"
#include "cli/import_report.h"
#include "cli/opened_catalogue.h"
#include "cli/selection_arguments.h"
#include "cli/snapshot_before.h"

#include "catalogue/program_files.h"
#include "checksum/crc_refresh.h"
#include "discovery/folder_scan.h"
#include "exchange/row_import.h"
#include "maintenance/backup.h"
#include "platform/application_folder.h"
#include "platform/files.h"
#include "platform/user_events.h"
#include "tableinfo/update_from_table_files.h"

#include <functional>

namespace cli {
namespace {

catalogue::Progress ProgressOf(Program& program) {
    return [&program](std::int64_t done, std::int64_t total) {
        program.console.ShowProgress(done, total);
    };
}

// Opens the catalogue, runs `change` and tells what it has changed. `command`: whose name goes with
// the snapshot that is made before.
int RunChange(Program& program, const char* command,
              const std::function<base::Status(OpenedCatalogue&)>& change) {
    auto opened = OpenedCatalogue::Open(program, AccessForChanges(program));
    if (!opened.ok()) return Fail(program, opened.status());
    SnapshotBefore(program, **opened, command);
    jet::Connection& connection = (*opened)->connection();
    auto report = ChangeReport::Begin(program, connection);
    if (!report.ok()) return Fail(program, report.status());
    const base::Status changed = change(**opened);
    // What was done before a failure stays, and is told.
    const base::Status told = report->Finish(connection);
    const base::Status closed = (*opened)->Close();
    // Stops nothing.
    const base::Status kept = (*opened)->history().TakeFailure();
    if (!kept.ok()) program.console.Complain(kept);
    return Finish(program, {changed, told, closed});
}

// Stops nothing.
void Tell(Program& program, const catalogue::PassedOver& passed_over) {
    const base::Status summary = passed_over.Summary();
    if (!summary.ok()) program.console.Complain(summary);
}

base::Status Scan(Program& program, OpenedCatalogue& opened, const QString& folder) {
    platform::NoUserEvents events;
    discovery::UnwatchedScan observer;
    const jet::NamedChange named(opened.connection(), discovery::kScanName);
    discovery::FolderScan scan(opened.get(), events, observer);
    RETURN_IF_ERROR(scan.Run(folder));
    RETURN_IF_ERROR(scan.start_listing());
    catalogue::PassedOver passed_over = scan.passed_over();
    base::Status updated = tableinfo::UpdateFromTableFiles(opened.get(), 1, nullptr,
                                                           ProgressOf(program), &passed_over);
    Tell(program, passed_over);
    return updated;
}

// The fields of one table as a source of rows with a single one.
class Assignments final : public exchange::RowSource {
public:
    explicit Assignments(const QString& id) {
        Add(QStringLiteral("ID"), exchange::Cell::Text(id.toStdU16String()));
    }
    void Add(const QString& column, exchange::Cell cell) {
        columns_.push_back(column.toStdU16String());
        cells_.push_back(std::move(cell));
    }
    const std::vector<std::u16string>& columns() const override { return columns_; }
    bool columns_are_known() const override { return true; }
    bool Next(exchange::SourceRow& row) override {
        if (is_done_) return false;
        is_done_ = true;
        row.cells = cells_;
        return true;
    }
    const base::Status& status() const override { return status_; }

private:
    std::vector<std::u16string> columns_;
    std::vector<exchange::Cell> cells_;
    bool is_done_ = false;
    base::Status status_;
};

// kInvalidArgument: a word has no "=", or there is nothing to change.
base::Status TakeAssignments(const Arguments& arguments, Assignments& assignments) {
    for (const QString& word : arguments.operands.mid(1)) {
        const qsizetype equals = word.indexOf(u'=');
        const QString name = word.left(equals);
        if (equals <= 0 || name.compare(QLatin1String("ID"), Qt::CaseInsensitive) == 0)
            return {base::StatusCode::kInvalidArgument,
                    "'" + word.toStdString() + "' is not FIELD=VALUE"};
        assignments.Add(name, exchange::Cell::Text(word.mid(equals + 1).toStdU16String()));
    }
    for (const QString& name : arguments.Values("null"))
        assignments.Add(name, exchange::Cell::Null());
    if (assignments.columns().size() == 1)
        return {base::StatusCode::kInvalidArgument, "FIELD=VALUE is missing"};
    return {};
}

}  // namespace

int RunScan(Program& program) {
    const QString folder = platform::AbsolutePath(program.arguments.operands.front());
    if (!platform::FolderExists(folder))
        return Fail(program, {base::StatusCode::kNotFound,
                              folder.toStdString() + ": there is no such folder"});
    return RunChange(program, "scan",
                     [&](OpenedCatalogue& opened) { return Scan(program, opened, folder); });
}

int RunUpdate(Program& program) {
    return RunChange(program, "update", [&](OpenedCatalogue& opened) {
        catalogue::PassedOver passed_over;
        base::Status updated = tableinfo::UpdateFromTableFiles(opened.get(), 1, nullptr,
                                                               ProgressOf(program), &passed_over);
        Tell(program, passed_over);
        return updated;
    });
}

int RunCrc(Program& program) {
    platform::NoUserEvents events;
    return RunChange(program, "crc", [&](OpenedCatalogue& opened) {
        catalogue::PassedOver passed_over;
        base::Status refreshed = checksum::RefreshCrcs(
            opened.get(), events, [](const QString&) {}, ProgressOf(program), &passed_over);
        Tell(program, passed_over);
        return refreshed;
    });
}

int RunSet(Program& program) {
    const auto id = IdOf(program.arguments.operands.front());
    Assignments assignments(program.arguments.operands.front());
    const base::Status taken =
        id.ok() ? TakeAssignments(program.arguments, assignments) : id.status();
    if (!taken.ok()) return FailUsage(program.console, taken);
    auto opened = OpenedCatalogue::Open(program, AccessForChanges(program));
    if (!opened.ok()) return Fail(program, opened.status());
    const jet::NamedChange named((*opened)->connection(), MARKED_TEXT("HistoryTexts", "Edit"));
    const auto report =
        ImportAndTell(program, (*opened)->connection(), assignments, {.update_only = true});
    base::Status done = report.ok() ? FirstProblem(*report) : report.status();
    if (report.ok() && report->passed_over > 0) done = NoSuchTable(*id);
    return Finish(program, {done, (*opened)->Close()});
}

int RunBackup(Program& program) {
    auto opened = OpenedCatalogue::Open(program, AccessForChanges(program));
    if (!opened.ok()) return Fail(program, opened.status());
    const QString backup = platform::FileIn((*opened)->get().values->ApplicationFolder,
                                            catalogue::kBackupFile.toString());
    if (!program.is_dry_run()) {
        const base::Status done = maintenance::MakeBackup((*opened)->get(), program.outside.files);
        if (!done.ok()) return Fail(program, done);
    }
    program.console.Print(backup);
    return kDone;
}

}  // namespace cli
