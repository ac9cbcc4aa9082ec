// The commands on catalogues of older installations; what they leave is read by mdbtools and
// checked page by page.
#include "catalogue/field_text.h"
#include "catalogue/path_names.h"
#include "maintenance/backup.h"
#include "maintenance/file_dates.h"
#include "maintenance/launcher_import.h"
#include "maintenance/play_counts.h"
#include "maintenance/purge.h"
#include "maintenance/reset_paths.h"
#include "platform/files.h"
#include "support/catalogue_fixture.h"
#include "support/programs.h"
#include "support/test_data.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace maintenance {
namespace {

class NoDisplay final : public ImportDisplay {
public:
    int updated = 0;
    void SetBusy(bool) override {}
    void SetReading(const QString&) override {}
    void SetWriting(const QString& text) override { updated += text.startsWith(u"Witing"); }
    void SetDone() override {}
};

class OldCatalogueTest : public test_support::CatalogueFixture,
                         public testing::WithParamInterface<std::filesystem::path> {
protected:
    void SetUp() override {
        ASSERT_TRUE(QFile::copy(QString::fromStdString(GetParam().string()), DatabasePath()));
        ASSERT_TRUE(
            QFile(DatabasePath()).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        const auto opened = catalogue::Main(catalogue);
        ASSERT_TRUE(opened.ok()) << opened.message();
    }

    CommandContext Context() {
        return {catalogue, prompts, events, [] {}, {}};
    }
    int Count(const QString& condition = QStringLiteral("true")) {
        return Scalar(QStringLiteral("select count(*) from Tables where ") + condition).toInt();
    }
    // Gives every table of one folder of the catalogue a file here and changes its path
    // accordingly. How many there are.
    int MoveOneFolder() {
        const QString old = catalogue::GetFolder(Scalar(
            QStringLiteral("select FileName from Tables where not isnull(FileName) order by ID")));
        const QString next = folder.path() + u'/';
        int moved = 0;
        auto rows = connection->Execute(u"select FileName from Tables");
        for (; !rows->Eof(); rows->MoveNext().Ignore()) {
            const QString path = catalogue::FieldText(*rows, u"FileName").value();
            if (catalogue::GetFolder(path).compare(old, Qt::CaseInsensitive) != 0) continue;
            QFile file(next + catalogue::GetFileName(path));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << file.fileName().toStdString();
            ++moved;
        }
        const auto done = ResetPaths(catalogue, prompts, QStringLiteral("Table"), old, next);
        EXPECT_TRUE(done.ok()) << done.message();
        return moved;
    }
    static QByteArray ExportedRows(const QString& database) {
        const auto exported =
            test_support::OutputOf({"mdb-export", database.toStdString(), "Tables"});
        EXPECT_TRUE(exported) << "mdb-export failed";
        return QByteArray::fromStdString(exported.value_or(""));
    }
    static void ExpectSound(const QString& database) {
        const auto run =
            test_support::RunProgram({TAVOLO_BIN_FOLDER "/tavolo-dbcheck", database.toStdString()});
        EXPECT_EQ(run.status, 0) << run.output;
    }
    void CloseAndExpectSound() {
        ASSERT_TRUE(connection->Close().ok());
        ExpectSound(DatabasePath());
    }

    test_support::FakeEvents events;
};

TEST_P(OldCatalogueTest, AMovedFolderIsFoundAndThePurgeKeepsItAlone) {
    const int before = Count();
    const int moved = MoveOneFolder();
    ASSERT_GT(moved, 0);
    UpdateFileDates(Context());
    PurgeMissingTables(Context());
    EXPECT_EQ(Count(), moved);
    EXPECT_LE(moved, before);
    EXPECT_EQ(Count(QStringLiteral("isnull(FileDate)")), 0);
    CloseAndExpectSound();
    EXPECT_GE(ExportedRows(DatabasePath()).count('\n'), moved);
}

TEST_P(OldCatalogueTest, PlayCountsAreReset) {
    Execute(QStringLiteral("update Tables set TimesPlayed = ID, LastPlayed = #1/2/2003#"));
    ResetTimesPlayed(Context());
    EXPECT_EQ(Count(QStringLiteral("TimesPlayed = 0 and isnull(LastPlayed)")), Count());
    CloseAndExpectSound();
}

TEST_P(OldCatalogueTest, TheBackupHoldsWhatTheCatalogueHolds) {
    Execute(QStringLiteral("update Tables set Notes = 'changed' where ID < 50"));
    EXPECT_TRUE(BackupData(Context(), QString()).ok());
    ASSERT_EQ(prompts.messages.size(), 1U);
    const QString backup = folder.filePath(QStringLiteral("pinball.BU"));
    EXPECT_EQ(ExportedRows(backup), ExportedRows(DatabasePath()));
    ExpectSound(backup);
    CloseAndExpectSound();
}

TEST_P(OldCatalogueTest, TheImportFindsRowsByChecksum) {
    Execute(QStringLiteral("update Tables set CRC = 'F' & ID"));
    QFile file(folder.filePath(QStringLiteral("vpLauncher.dat")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (int id = 1; id <= 100; ++id)
        file.write("n\\9.9\\$F" + QByteArray::number(id) + "\\O'Hara \xE9\\1999\\-\\VPinMame\r\n");
    file.close();
    NoDisplay display;
    LauncherImport(catalogue, prompts, events, display).ImportAll();
    EXPECT_EQ(display.updated, Count(QStringLiteral("ID <= 100")));
    EXPECT_EQ(Count(QStringLiteral("Author = 'O''Hara ' & chr(233) and PinMame = true and "
                                   "Company = 'VPinMame' and Version = '9.9'")),
              display.updated);
    CloseAndExpectSound();
}

INSTANTIATE_TEST_SUITE_P(Files, OldCatalogueTest, testing::ValuesIn(test_support::OldCatalogues()),
                         test_support::NameOfFile);

}  // namespace
}  // namespace maintenance
