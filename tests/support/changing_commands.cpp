#include "support/changing_commands.h"

#include "browser/favourites.h"
#include "browser/table_record.h"
#include "catalogue/catalogue.h"
#include "catalogue/new_catalogue.h"
#include "catalogue/process_values.h"
#include "catalogue/quoting.h"
#include "catalogue/start_up.h"
#include "checksum/crc_refresh.h"
#include "discovery/folder_scan.h"
#include "exchange/exchange_file.h"
#include "exchange/row_import.h"
#include "jet/connection.h"
#include "launcher/update_play_count.h"
#include "maintenance/file_dates.h"
#include "maintenance/launcher_import.h"
#include "maintenance/play_counts.h"
#include "maintenance/purge.h"
#include "maintenance/reset_paths.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "support/vpt_builder.h"
#include "tableinfo/update_from_table_files.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace test_support {

namespace {

constexpr int kTableFiles = 50;
constexpr int kNewFolders = 100;
constexpr double kMadeAt = 46000;  // days since 1899-12-30

void Require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(1);
}

void Require(const base::Status& status) {
    Require(status.ok(), status.message().c_str());
}

class YesPrompts final : public platform::UserPrompts {
public:
    platform::MessageAnswer Ask(const platform::Message& message) override {
        return message.buttons == platform::MessageButtons::kYesNo ? platform::MessageAnswer::kYes
                                                                   : platform::MessageAnswer::kOk;
    }
    QString ChooseFileToOpen(const platform::FileDialog& dialog) override {
        return dialog.file_name;
    }
    QString ChooseFileToSave(const platform::FileDialog& dialog) override {
        return dialog.file_name;
    }
    QString ChooseFolder(const QString&, const QString&) override { return {}; }
};

class NoDisplay final : public maintenance::ImportDisplay {
public:
    void SetBusy(bool) override {}
    void SetReading(const QString&) override {}
    void SetWriting(const QString&) override {}
    void SetDone() override {}
};

void WriteFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            qPrintable(path));
}

QString PlaceForManyFiles() {
    const QString memory = QStringLiteral("/dev/shm");
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

QString TableFile(const QString& folder, int i) {
    return QDir::toNativeSeparators(
        QStringLiteral("%1/table %2.vpt").arg(folder).arg(i % kTableFiles));
}

QString Checksum(int row) {
    return QString::number(0x9E3779B9U * static_cast<unsigned>(row + 1), 16).toUpper();
}

// A maintenance command asks and reports through these.
struct Context {
    YesPrompts prompts;
    platform::NoUserEvents events;
    maintenance::CommandContext For(catalogue::Catalogue& catalogue) {
        return {catalogue, prompts, events, [] {}, {}};
    }
};

// As the scan's window does: the update of all rows from their files belongs to the scan.
base::Status Scan(const TablesFolder& folder, catalogue::Catalogue& catalogue) {
    const jet::NamedChange named(*catalogue.CatalogueConnection, discovery::kScanName);
    platform::NoUserEvents events;
    discovery::UnwatchedScan observer;
    discovery::FolderScan scan(catalogue, events, observer);
    RETURN_IF_ERROR(scan.Run(folder.new_folder()));
    if (scan.found_count() != folder.rows())
        return base::Status(base::StatusCode::kNotFound, "the scan did not find all files");
    return tableinfo::UpdateFromTableFiles(catalogue, 0, nullptr);
}

// With the tables' drive unplugged.
base::Status Purge(const TablesFolder& folder, catalogue::Catalogue& catalogue) {
    const QString away = folder.table_folder() + QStringLiteral(" away");
    Require(QDir().rename(folder.table_folder(), away), "hiding the tables");
    Context context;
    maintenance::PurgeMissingTables(context.For(catalogue));
    Require(QDir().rename(away, folder.table_folder()), "showing the tables");
    return {};
}

base::Status ImportLauncherData(const TablesFolder&, catalogue::Catalogue& catalogue) {
    YesPrompts prompts;
    platform::NoUserEvents events;
    NoDisplay display;
    maintenance::LauncherImport import(catalogue, prompts, events, display);
    import.ImportAll();
    return import.database_failure();
}

base::Status ImportRows(const TablesFolder& folder, catalogue::Catalogue& catalogue) {
    ASSIGN_OR_RETURN(const QByteArray bytes, exchange::ReadFile(folder.rows_file()));
    const auto source = exchange::MakeRowSource(
        {bytes.constData(), static_cast<std::size_t>(bytes.size())}, exchange::Format::kCsv);
    ASSIGN_OR_RETURN(const exchange::ImportReport report,
                     exchange::ImportRows(*catalogue.CatalogueConnection, *source, {}));
    return report.accepted()
               ? base::Status()
               : base::Status(base::StatusCode::kInvalidArgument, report.problems.front().text);
}

base::Status Edit(const TablesFolder& folder, catalogue::Catalogue& catalogue) {
    browser::TableRecord record;
    RETURN_IF_ERROR(browser::LoadTableRecord(*catalogue.CatalogueConnection,
                                             TableFile(folder.table_folder(), 7), record));
    for (const auto field : {catalogue::DetailField::kDisplayName, catalogue::DetailField::kNotes})
        record.fields[static_cast<std::size_t>(field)] = QStringLiteral("Edited");
    record.pin_mame = !record.pin_mame;
    return browser::SaveTableRecord(*catalogue.CatalogueConnection, record);
}

base::Status ToggleFavorites(const TablesFolder&, catalogue::Catalogue& catalogue) {
    browser::ShownSelection shown;
    shown.tag = QStringLiteral("12");
    shown.text = QStringLiteral("Pinball table number 12");
    return browser::ToggleFavorites(*catalogue.CatalogueConnection, shown).status();
}

}  // namespace

// In memory where there is room for it: a disk would need minutes to delete all these files.
TablesFolder::TablesFolder(int rows)
    : folder_(PlaceForManyFiles() + QStringLiteral("/tavolo-tables-XXXXXX")), rows_(rows) {
    Require(folder_.isValid(), "making a folder");
    MakeTableFiles();
    MakeCatalogue();
    WriteLauncherFile();
    WriteRowsFile();
}

void TablesFolder::MakeTableFiles() const {
    Require(QDir().mkpath(table_folder()), "making a folder");
    for (int i = 0; i < kTableFiles; ++i)
        Require(VptBuilder()
                    .Text(u"TableName", u"A name from its file")
                    .Text(u"AuthorName", u"Author in the file")
                    .Text(u"TableVersion", u"2.0")
                    .Text(u"TableBlurb", u"Words")
                    .Text(u"TableRules", std::u16string(60, u'r'))
                    .Text(u"CompanyName", u"Bally")
                    .Text(u"CompanyYear", u"1981")
                    .Write(TableFile(table_folder(), i).toStdU16String()));
    for (int i = 0; i < kNewFolders; ++i)
        Require(QDir().mkpath(QStringLiteral("%1/%2").arg(new_folder()).arg(i)), "making a folder");
    for (int i = 0; i < rows_; ++i)
        WriteFile(QStringLiteral("%1/%2/new %3.vpt").arg(new_folder()).arg(i % kNewFolders).arg(i),
                  QByteArray::number(i));
}

void TablesFolder::MakeCatalogue() const {
    const auto files = platform::MakeFileSystem();
    Require(catalogue::CreateEmptyCatalogue(*files, database().toStdU16String(), kMadeAt));
    jet::Connection connection(*files, [] { return kMadeAt; });
    catalogue::ProcessValues values;
    values.ApplicationFolder = folder();
    Require(connection.Open(u"Data Source=" + database().toStdU16String()));
    platform::SystemClock clock;
    catalogue::Catalogue made{&connection, &values, nullptr, &clock};
    Require(catalogue::UpgradeCatalogue(made));
    for (int i = 1; i <= rows_; ++i) {
        const QString sql =
            QStringLiteral("INSERT INTO Tables (DisplayName, FileName, Author, Notes, RulesText, "
                           "ImageFile, PinMame, FileDate, DateAdded, TimesPlayed, CRC) VALUES ("
                           "'Pinball table number %1', '%2', 'Author %3', 'Some notes on table %1',"
                           " '%4', '/pictures/table %1.jpg', %5, #1/2/2003 4:05:06 PM#, "
                           "'2-Nov-%6', %7, '%8')")
                .arg(QString::number(i), catalogue::QuoteSql(TableFile(table_folder(), i)),
                     QString::number(i % 911), QString(i % 50 == 0 ? 3000 : 0, u'x'),
                     i % 3 == 0 ? QStringLiteral("true") : QStringLiteral("false"),
                     QString::number(10 + i % 16), QString::number(1 + i % 9), Checksum(i));
        Require(connection.Execute(sql.toStdU16String()).status());
    }
    Require(connection.Close());
    Require(QFile::rename(database(), catalogue()), "naming the catalogue");
}

void TablesFolder::WriteLauncherFile() const {
    QByteArray lines;
    for (int i = rows_; i >= 1; --i)
        lines +=
            QStringLiteral("Table %1\\1.%1\\$%2\\Launcher's author %1\\19%3\\Bally\\VPinMame\r\n")
                .arg(i)
                .arg(Checksum(i))
                .arg(i % 100, 2, 10, QLatin1Char('0'))
                .toLatin1();
    WriteFile(launcher_file(), lines);
}

void TablesFolder::WriteRowsFile() const {
    QByteArray lines = "ID,Company,Notes\r\n";
    for (int i = 1; i <= rows_; ++i)
        lines +=
            QStringLiteral("%1,Company %2,\"Notes, of a file\"\r\n").arg(i).arg(i % 37).toUtf8();
    WriteFile(rows_file(), lines);
}

void TablesFolder::StartAgain() const {
    for (const QString& name : QDir(folder()).entryList({QStringLiteral("pinball*")}, QDir::Files))
        Require(QFile::remove(Path(name)), qPrintable(name));
    Require(QFile::copy(catalogue(), database()), "copying the catalogue");
}

std::vector<ChangingCommand> ChangingCommands() {
    using Folder = const TablesFolder&;
    using Tables = catalogue::Catalogue&;
    return {
        {"Scan for New Tables", true, Scan},
        {"Import Data from VPTs", true,
         [](Folder, Tables tables) { return tableinfo::UpdateFromTableFiles(tables, 0, nullptr); }},
        {"Purge", true, Purge},
        {"Reset Paths", true,
         [](Folder folder, Tables tables) {
             YesPrompts prompts;
             return maintenance::ResetPaths(tables, prompts, QStringLiteral("Table"),
                                            folder.table_folder(), QStringLiteral("/elsewhere"));
         }},
        {"Reset File Dates", true,
         [](Folder, Tables tables) {
             Context context;
             maintenance::UpdateFileDates(context.For(tables));
             return base::Status();
         }},
        {"Reset Times Played", true,
         [](Folder, Tables tables) {
             Context context;
             maintenance::ResetTimesPlayed(context.For(tables));
             return base::Status();
         }},
        {"Update CRC's", true,
         [](Folder, Tables tables) {
             platform::NoUserEvents events;
             return checksum::RefreshCrcs(tables, events, [](const QString&) {});
         }},
        {"Import VPLauncher Data", true, ImportLauncherData},
        {"Import", true, ImportRows},
        {"Edit", false, Edit},
        {"Edit Rules", false,
         [](Folder, Tables tables) {
             return browser::SaveRulesText(*tables.CatalogueConnection, QStringLiteral("12"),
                                           QString(5000, u'y'));
         }},
        {"Toggle Favorites", false, ToggleFavorites},
        {"Play", false,
         [](Folder, Tables tables) {
             return launcher::UpdatePlayCount(*tables.CatalogueConnection, 12);
         }},
        {"Delete", false,
         [](Folder, Tables tables) {
             return browser::DeleteRecord(*tables.CatalogueConnection, QStringLiteral("12"));
         }},
    };
}

}  // namespace test_support
