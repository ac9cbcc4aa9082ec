#include "maintenance/launcher_import.h"

#include "base/marked_text.h"
#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "catalogue/path_names.h"
#include "catalogue/process_values.h"
#include "catalogue/texts.h"
#include "catalogue/typed_values.h"
#include "jet/connection.h"
#include "maintenance/launcher_statements.h"
#include "maintenance/match_index.h"
#include "maintenance/text_lines.h"
#include "maintenance/texts.h"
#include "platform/application_folder.h"
#include "platform/file_system.h"
#include "platform/files.h"
#include "platform/shown_text.h"

#include <optional>

namespace maintenance {
namespace {

struct Match {
    MatchColumn column = MatchColumn::kChecksum;
    std::optional<std::int64_t> only_row;
};

base::Result<bool> HasRows(jet::Connection& connection, const QString& sql) {
    ASSIGN_OR_RETURN(const jet::Recordset rows, connection.Execute(sql.toStdU16String()));
    return !(rows.Bof() && rows.Eof());
}

// nullopt: no row. A key may be one that the database refuses.
base::Result<std::optional<Match>> AskDatabase(jet::Connection& connection, const QString& key,
                                               const QString& date_condition) {
    for (const MatchColumn column : {MatchColumn::kChecksum, MatchColumn::kDisplayName}) {
        ASSIGN_OR_RETURN(const bool has_rows,
                         HasRows(connection, MatchQuery(column, key, date_condition)));
        if (has_rows) return std::optional(Match{column, std::nullopt});
    }
    return std::optional<Match>();
}

base::Result<std::optional<Match>> FindMatch(jet::Connection& connection, const MatchIndex& index,
                                             const QString& key, const QString& date_condition) {
    if (!index.CanAnswer(key)) return AskDatabase(connection, key, date_condition);
    if (const auto rows = index.ByChecksum(key); rows.count > 0)
        return std::optional(Match{MatchColumn::kChecksum, rows.id});
    if (const auto rows = index.ByDisplayName(key); rows.count > 0)
        return std::optional(Match{MatchColumn::kDisplayName, rows.id});
    return std::optional<Match>();
}

}  // namespace

base::Result<QStringList> DatesAdded(jet::Connection& connection) {
    QStringList dates;
    ASSIGN_OR_RETURN(auto rows, connection.Execute(u"Select Distinct DateAdded from Tables"));
    while (!rows.Eof()) {
        ASSIGN_OR_RETURN(const jet::Value date, rows.Fields(std::size_t{0}));
        if (!date.is_null()) dates.append(catalogue::FieldText(date));
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return dates;
}

LauncherImport::LauncherImport(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                               platform::UserEvents& events, ImportDisplay& display)
    : catalogue_(catalogue), prompts_(prompts), events_(events), display_(display) {}

void LauncherImport::ImportAll() {
    Run({});
}

void LauncherImport::ImportAddedAfter(const QString& date) {
    if (catalogue::IsDate(date))
        Run(DateCondition(date));
    else
        Say(platform::Shown<catalogue::CatalogueTexts>(catalogue::kInvalidDate));
}

void LauncherImport::Run(const QString& date_condition) {
    display_.SetBusy(true);
    const QString path = LocateDataFile();
    if (path.isEmpty()) {
        Say(MaintenanceTexts::tr("The selected File is not a valid VPLauncher.dat file"));
    } else {
        ReadFile(path, date_condition);
        ShowResult();
    }
    display_.SetBusy(false);
}

// Cancelling the dialog leaves the preset file chosen. Empty: the file is not there.
QString LauncherImport::LocateDataFile() {
    platform::FileDialog dialog;
    dialog.name = QStringLiteral("CommonDialog1");
    dialog.title = MaintenanceTexts::tr("Locate DAT File");
    dialog.filter = QStringLiteral("VPlauncher.DAT|VPlauncher.dat");
    dialog.file_name =
        platform::FileIn(catalogue_.values->ApplicationFolder, QStringLiteral("vpLauncher.dat"));
    dialog.must_exist = false;
    const QString chosen = prompts_.ChooseFileToOpen(dialog);
    const QString path = chosen.isEmpty() ? dialog.file_name : chosen;
    const bool accepted = !catalogue::GetFileName(path).isEmpty() && platform::FileExists(path);
    return accepted ? path : QString();
}

void LauncherImport::ReadFile(const QString& path, const QString& date_condition) {
    updated_lines_ = 0;
    const auto files = platform::MakeFileSystem();
    auto lines = TextLines::Open(*files, path);
    if (!lines.ok()) {
        catalogue::ShowError(prompts_, lines.status());
        return;
    }
    const jet::NamedChange named(*catalogue_.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Import VPLauncher Data"));
    const MatchIndex index(*catalogue_.CatalogueConnection, date_condition);
    while (const auto line = lines->Next())
        ImportLine(*line, index, date_condition);
    catalogue::ShowError(prompts_, lines->status());
}

void LauncherImport::ImportLine(const QString& line, const MatchIndex& index,
                                const QString& date_condition) {
    events_.ProcessEvents();
    display_.SetReading({});
    display_.SetWriting({});
    const auto record = ParseLauncherLine(line);
    if (!record) return;
    display_.SetReading(
        MaintenanceTexts::tr("Reading: %1 CRC: %2").arg(record->name, record->checksum));
    if (!Update(*record, index, date_condition)) return;
    ++updated_lines_;
    display_.SetWriting(
        MaintenanceTexts::tr("Witing values from %1 to database").arg(record->name));
}

bool LauncherImport::Update(const LauncherRecord& record, const MatchIndex& index,
                            const QString& date_condition) {
    jet::Connection& connection = *catalogue_.CatalogueConnection;
    const auto match = FindMatch(connection, index, record.key, date_condition);
    Note(match.status());
    if (!match.ok() || !*match) return false;
    const QString sql =
        UpdateStatement(record, (*match)->column, date_condition, (*match)->only_row);
    const base::Status updated = connection.Execute(sql.toStdU16String()).status();
    Note(updated);
    return updated.ok();
}

void LauncherImport::Note(const base::Status& status) {
    if (status.ok() || catalogue::IsValueTrouble(status) || !database_failure_.ok()) return;
    database_failure_ = status;
}

void LauncherImport::ShowResult() {
    if (updated_lines_ == 0) {
        display_.SetWriting(
            MaintenanceTexts::tr("Task Complete %1 records updated").arg(updated_lines_));
        return;
    }
    display_.SetWriting(MaintenanceTexts::tr("Task Complete!"));
    display_.SetReading({});
    display_.SetDone();
}

void LauncherImport::Say(const QString& text) {
    platform::Message message;
    message.text = text;
    prompts_.Ask(message);
}

}  // namespace maintenance
