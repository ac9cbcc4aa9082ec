#include "cli/cli_fixture.h"

#include "catalogue/path_names.h"
#include "support/full_disk.h"
#include "support/qt_text.h"
#include "support/temporary_dir.h"
#include "support/unreadable.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using test_support::S;

class ChangingCommandsTest : public CliFixture {
protected:
    QString Tables() const { return folder.filePath(S("tables")); }

    // Runs the words as a dry run: nothing changes, and cells are told.
    void ExpectOnlyTold(const QStringList& words) {
        const QByteArray before = DatabaseBytes();
        EXPECT_EQ(Run(words + QStringList{S("--dry-run")}), kDone) << console.error;
        EXPECT_EQ(DatabaseBytes(), before);
        EXPECT_THAT(console.error, StartsWith("dry run: "));
    }
};

TEST_F(ChangingCommandsTest, ScanAddsNewTables) {
    Sql("DELETE FROM Tables WHERE ID > 1");
    ExpectOnlyTold({S("scan"), Tables()});
    EXPECT_EQ(console.error, "dry run: 2 added, 1 changed\n");
    EXPECT_THAT(console.out, HasSubstr("1\tDisplayName\t\"Attack\"\t\"Attack & Co\"\n"));
    EXPECT_EQ(Run(QStringList{S("scan"), Tables()}), kDone);
    EXPECT_EQ(console.error, "2 added, 1 changed\n");
    EXPECT_EQ(Scalar("Select Count(*) from Tables where CRC <> ''"), "2");
    EXPECT_EQ(Run(QStringList{S("scan"), Tables()}), kDone);
    EXPECT_EQ(console.error, "0 added, 0 changed\n");
    EXPECT_EQ(Run("scan /no/such/folder"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: /no/such/folder: there is no such folder\n");
}

TEST_F(ChangingCommandsTest, AFolderThatCannotBeListedIsAFailure) {
    const QString locked = folder.filePath(S("locked"));
    ASSERT_TRUE(QDir().mkdir(locked));
    ASSERT_TRUE(QFile::setPermissions(DatabasePath(), QFile::Permissions(0x6666)));
    const test_support::Unreadable unreadable({locked.toStdU16String()});
    EXPECT_EQ(Run(QStringList{S("scan"), S("-n"), locked}), kFailed);
    EXPECT_THAT(console.error, HasSubstr("locked"));
}

TEST_F(ChangingCommandsTest, ScanDryRunsBeforeTheFirstStart) {
    test_support::TemporaryDir first;
    ASSERT_TRUE(QDir(folder.path()).mkpath(S("share")));
    ASSERT_TRUE(catalogue::CreateEmptyCatalogue(
                    *files, folder.filePath(S("share/pinball.mdb")).toStdU16String(), 46346)
                    .ok());
    EXPECT_EQ(Run(QStringList{S("scan"), S("-n"), Tables(), S("-C"), first.path()}), kDone)
        << console.error;
    EXPECT_EQ(console.error, "dry run: 3 added, 0 changed\n");
    EXPECT_TRUE(QDir(first.path()).isEmpty());
    EXPECT_EQ(Run(QStringList{S("scan"), Tables(), S("-C"), first.path()}), kDone) << console.error;
    EXPECT_EQ(console.error, "3 added, 0 changed\n");
}

// Only what is told cell by cell needs the rows before and after.
TEST_F(ChangingCommandsTest, SetAndImportCountWhatTheyChange) {
    EXPECT_EQ(Run("set 1 Author=New"), kDone);
    EXPECT_EQ(console.error, "0 added, 1 changed\n");
    EXPECT_TRUE(console.out.empty());
    EXPECT_EQ(Run("set 1 Author=New"), kDone);
    EXPECT_EQ(console.error, "0 added, 0 changed\n");
    console.in = "ID,Author\n1,New\n2,New\n,New\n";
    EXPECT_EQ(Run("import -v -"), kDone);
    EXPECT_EQ(console.error, "1 added, 1 changed\n");
    console.in = "ID,Author\n1,Newer\n2,Newer\n,New\n";
    EXPECT_EQ(Run("import -"), kDone);
    EXPECT_EQ(console.error, "1 added, 2 changed\n");
}

TEST_F(ChangingCommandsTest, ExportShowsItsProgressToWhoWatches) {
    console.shows_progress = true;
    EXPECT_EQ(Run(QStringList{S("export"), folder.filePath(S("out.csv"))}), kDone);
    EXPECT_THAT(console.error, HasSubstr("\r66 %\033[K"));
    EXPECT_THAT(console.error, HasSubstr("\r\033[K3 tables\n"));
    console.is_terminal = true;
    EXPECT_EQ(Run("export"), kDone);
    EXPECT_TRUE(console.error.empty()) << "between the rows themselves";
}

TEST_F(ChangingCommandsTest, UpdateCopiesWhatTheFilesSay) {
    ExpectOnlyTold({S("update")});
    EXPECT_EQ(Run("update --verbose"), kDone);
    EXPECT_EQ(console.error, "0 added, 3 changed\n");
    EXPECT_THAT(console.out, HasSubstr("2\tAuthor\tnull\t\"Its Author\"\n"));
    EXPECT_EQ(Scalar("Select DisplayName from Tables where ID = 3"), "Fathom & Co");
}

TEST_F(ChangingCommandsTest, FilesThatCannotBeReadAreSaid) {
    const QString damaged = folder.filePath(S("tables/damaged.vpt"));
    QFile file(damaged);
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("no table") == 8);
    file.close();
    for (const QStringList& words : {QStringList{S("scan"), Tables()}, QStringList{S("update")}}) {
        EXPECT_EQ(Run(words), kDone);
        EXPECT_THAT(console.error, HasSubstr("tavolo-cli: " + damaged.toStdString()));
    }
    ASSERT_TRUE(file.remove());
    EXPECT_EQ(Run("update"), kDone);
    EXPECT_EQ(console.error.find("tavolo-cli: "), std::string::npos) << console.error;
}

TEST_F(ChangingCommandsTest, CrcComputesTheChecksums) {
    ExpectOnlyTold({S("crc")});
    EXPECT_EQ(Run("crc"), kDone);
    EXPECT_EQ(console.error, "0 added, 3 changed\n");
    EXPECT_TRUE(console.out.empty());
    EXPECT_NE(Scalar("Select CRC from Tables where ID = 1"), "");
}

TEST_F(ChangingCommandsTest, ProgressIsForTerminals) {
    console.shows_progress = true;
    EXPECT_EQ(Run("crc"), kDone);
    EXPECT_THAT(console.error, HasSubstr("\r33 %\033[K"));
    EXPECT_THAT(console.error, HasSubstr("\r\033[K0 added, 3 changed\n"));
}

TEST_F(ChangingCommandsTest, SetGivesFieldsNewValues) {
    ExpectOnlyTold({S("set"), S("1"), S("Author=New")});
    EXPECT_EQ(console.out, "1\tAuthor\t\"Some One\"\t\"New\"\n");
    EXPECT_EQ(Run(QStringList{S("set"), S("1"), S("author=A=B"), S("Favorite=no"), S("Notes="),
                              S("LastPlayed=2026-11-20 15:04:05"), S("--null=Year")}),
              kDone);
    EXPECT_EQ(Scalar("Select Author from Tables where ID = 1"), "A=B");
    EXPECT_EQ(Scalar("Select Favorite from Tables where ID = 1"), "False");
    EXPECT_EQ(Scalar("Select LastPlayed from Tables where ID = 1"), "11/20/2026 3:04:05 PM");
    EXPECT_EQ(Scalar("Select Count(*) from Tables where ID = 1 and Notes = '' and isNull([Year])"),
              "1");
}

TEST_F(ChangingCommandsTest, SetIsAllOrNothing) {
    EXPECT_EQ(Run("set 1 Author=New TimesPlayed=often"), kFailed);
    EXPECT_THAT(console.error, HasSubstr("TimesPlayed: \"often\" is not a number"));
    EXPECT_EQ(Scalar("Select Author from Tables where ID = 1"), "Some One");
    EXPECT_EQ(Run("set 1 Colour=red"), kFailed);
    EXPECT_THAT(console.error, HasSubstr("the catalogue has no column Colour"));
    EXPECT_EQ(Run("set 99 Author=x"), kFailed);
    EXPECT_THAT(console.error, HasSubstr("there is no table 99"));
    EXPECT_EQ(Scalar("Select Count(*) from Tables"), "3");
    EXPECT_EQ(Run("set 1"), kWrongUsage);
    EXPECT_EQ(Run("set 1 Author"), kWrongUsage);
    EXPECT_EQ(Run("set 1 ID=2"), kWrongUsage);
    EXPECT_EQ(Run("set one Author=x"), kWrongUsage);
}

TEST_F(ChangingCommandsTest, BackupCopiesTheCatalogue) {
    const QString backup = folder.filePath(S("pinball.BU"));
    EXPECT_EQ(Run("backup --dry-run"), kDone);
    EXPECT_FALSE(QFile::exists(backup));
    EXPECT_EQ(Run("backup"), kDone);
    EXPECT_EQ(console.out, backup.toStdString() + "\n");
    QFile copy(backup);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), DatabaseBytes());
}

TEST_F(ChangingCommandsTest, CompactGivesBackWhatIsNotUsed) {
    for (int i = 0; i < 60; ++i)
        Sql("INSERT INTO Tables (DisplayName, Notes) VALUES ('Gone', String(1500, 'n'))");
    Sql("DELETE FROM Tables WHERE DisplayName = 'Gone'");
    const auto told = [](const QByteArray& database) {
        return std::to_string(database.size()) + " bytes";
    };
    const QByteArray before = DatabaseBytes();
    EXPECT_EQ(Run("compact --dry-run"), kDone) << console.error;
    EXPECT_EQ(DatabaseBytes(), before);
    const std::string dry = console.out;
    EXPECT_EQ(Run("compact"), kDone) << console.error;
    const QByteArray after = DatabaseBytes();
    EXPECT_LT(after.size(), before.size());
    EXPECT_EQ(console.out, told(before) + " before, " + told(after) + " now\n");
    EXPECT_EQ(dry, told(before) + " before, " + told(after) + " when compacted\n");
    EXPECT_EQ(Run("compact --json"), kDone);
    EXPECT_THAT(console.out,
                StartsWith("{\"schema\": 1, \"bytes_before\": " + std::to_string(after.size())));
    Sql("INSERT INTO Tables (DisplayName) VALUES ('Next')");
    EXPECT_EQ(Scalar("Select ID from Tables where DisplayName = 'Next'"), "64");
    EXPECT_EQ(Scalar("Select Author from Tables where ID = 1"), "Some One");
}

TEST_F(ChangingCommandsTest, CompactLeavesACatalogueInUseAlone) {
    WithConnection([&](jet::Connection&) {
        const QByteArray before = DatabaseBytes();
        EXPECT_EQ(Run("compact"), kInUse);
        EXPECT_EQ(DatabaseBytes(), before);
        EXPECT_EQ(Run("compact --dry-run"), kDone);
    });
}

TEST_F(ChangingCommandsTest, RepairTellsWhatIsLost) {
    const QString output = folder.filePath(S("repaired.mdb"));
    EXPECT_EQ(Run({S("repair"), DatabasePath(), output}), kDone) << console.error;
    EXPECT_THAT(console.out, HasSubstr(" 0 losses\n"));
    EXPECT_EQ(Run({S("repair"), DatabasePath(), output}), kFailed);
    EXPECT_THAT(console.error, HasSubstr("already exists"));
    QFile::remove(output);

    QByteArray damaged = DatabaseBytes();
    const QByteArray author = QByteArray::fromHex("fffe536f6d65204f6e65");  // Some One
    const qsizetype at = damaged.indexOf(author);
    ASSERT_GT(at, 0);
    const qsizetype page = at / 4096 * 4096;
    damaged[page + 18] = '\xff';  // where the third of its rows begins
    damaged[page + 19] = '\x1f';
    QFile file(DatabasePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(damaged);
    file.close();
    EXPECT_EQ(Run("compact"), kFailed);
    EXPECT_EQ(Run({S("repair"), S("-n"), DatabasePath(), output}), kFailed);
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_EQ(DatabaseBytes(), damaged);
    EXPECT_EQ(Run({S("repair"), DatabasePath(), output}), kFailed);
    EXPECT_THAT(console.out, HasSubstr(", row 2, table Tables: "));
    EXPECT_EQ(Run({S("repair"), S("-nj"), DatabasePath(), S("other.mdb")}), kFailed);
    EXPECT_THAT(console.out, HasSubstr("\"row\": 2, \"table\": \"Tables\""));
    ASSERT_TRUE(QFile::remove(DatabasePath()) && QFile::rename(output, DatabasePath()));
    EXPECT_EQ(Run("verify --quick"), kDone) << console.out;
    EXPECT_EQ(Scalar("Select Count(*) from Tables"), "2");
    EXPECT_EQ(Run({S("repair"), S("/no/such.mdb"), output}), kFailed);
    EXPECT_EQ(Run("repair one.mdb"), kWrongUsage);
}

TEST_F(ChangingCommandsTest, PlayStartsTheSimulator) {
    settings.values[S("TAVOLO/GENERAL/VPEXE")] = S("/vp/vp.exe");
    const std::string line = "\"/vp/vp.exe\" /Play -\"" + TablePath("Attack") + "\"";
    EXPECT_EQ(Run("play --dry-run attack"), kDone);
    EXPECT_EQ(console.out, line + "\n");
    EXPECT_TRUE(programs.started.empty());
    EXPECT_EQ(Scalar("Select TimesPlayed from Tables where ID = 1"), "3");
    EXPECT_EQ(Run("play 1"), kDone);
    ASSERT_EQ(programs.started.size(), 1u);
    EXPECT_EQ(programs.started[0].toStdString(), line);
    EXPECT_EQ(Scalar("Select TimesPlayed from Tables where ID = 1"), "4");
}

TEST_F(ChangingCommandsTest, PlayWatchesTheWindowAndLeavesTheCatalogueToOthers) {
    settings.values[S("TAVOLO/GENERAL/VPEXE")] = S("/vp/vp.exe");
    windows.windows = {{S("VPinball"), S("Visual Pinball - [Attack*]")}};
    int rounds = 0;
    windows.on_find = [&] {
        if (++rounds == 3) {
            EXPECT_EQ(Scalar("Select TimesPlayed from Tables where ID = 1"), "4");
            windows.windows = {{S("VPinball"), S("Visual Pinball - [Attack]")}};
        }
    };
    EXPECT_EQ(Run("play Attack"), kDone);
    EXPECT_EQ(windows.closed, std::vector<QString>{S("Visual Pinball - [Attack]")});
}

TEST_F(ChangingCommandsTest, PlaySaysWhyItCannot) {
    EXPECT_EQ(Run("play 1"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: Please Set the location of the VP executable\n");
    EXPECT_EQ(Run("play Nothing"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: there is no table \"Nothing\"\n");
    Sql("UPDATE Tables SET DisplayName = 'Taxi' WHERE ID = 3");
    EXPECT_EQ(Run("play Taxi"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: several tables are called \"Taxi\": 2, 3\n");
    QFile::remove(QString::fromStdString(TablePath("Attack")));
    EXPECT_EQ(Run("play Attack"), kFailed);
    EXPECT_THAT(console.error, HasSubstr("there is no such file"));
}

TEST_F(ChangingCommandsTest, ExportAndImportGoBackAndForth) {
    const QString file = folder.filePath(S("out.csv"));
    EXPECT_EQ(Run(QStringList{S("export"), S("-n"), file}), kDone);
    EXPECT_EQ(console.error, "dry run: 3 tables\n");
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_EQ(Run(QStringList{S("export"), file}), kDone);
    EXPECT_EQ(console.error, "3 tables\n");
    EXPECT_EQ(Run(QStringList{S("import"), file}), kDone);
    EXPECT_EQ(console.error, "0 added, 0 changed\n");
    Sql("UPDATE Tables SET Author = 'Changed' WHERE ID = 1");
    Sql("DELETE FROM Tables WHERE ID = 2");
    ExpectOnlyTold({S("import"), file});
    EXPECT_THAT(console.out, HasSubstr("1\tAuthor\t\"Changed\"\t\"Some One\"\n"));
    EXPECT_EQ(Run(QStringList{S("import"), file}), kDone);
    EXPECT_EQ(console.error, "1 added, 1 changed\n");
    EXPECT_EQ(Scalar("Select DisplayName from Tables where ID = 2"), "Taxi");
}

TEST_F(ChangingCommandsTest, ExportTakesAFilter) {
    EXPECT_EQ(Run("export -f Favorites -c ID,Year"), kDone);
    EXPECT_EQ(console.out, "ID,Year\r\n1,1995\r\n");
    EXPECT_EQ(Run("export -f Year --operator=< --value=1990 -c ID --format=jsonl -"), kDone);
    EXPECT_EQ(console.out, "{\"ID\": 2}\n");
    EXPECT_EQ(Run("export -f Year"), kWrongUsage);
    EXPECT_EQ(Run("export --value=3"), kWrongUsage);
    EXPECT_EQ(Run("export --filter=TimesPlayed"), kWrongUsage);
    EXPECT_EQ(Run(QStringList{S("export"), S("-f"), S("Times Played"), S("--value=x")}),
              kWrongUsage);
}

TEST_F(ChangingCommandsTest, FormulasAreEscapedAndUnescaped) {
    Sql("UPDATE Tables SET Author = '=1+1' WHERE ID = 1");
    EXPECT_EQ(Run("export --escape-formulas -c ID,Author -f Favorites"), kDone);
    EXPECT_EQ(console.out, "ID,Author\r\n1,'=1+1\r\n");
    console.in = QByteArray::fromStdString(console.out);
    EXPECT_EQ(Run("import --unescape-formulas --verbose -"), kDone);
    EXPECT_EQ(console.error, "0 added, 0 changed\n");
}

TEST_F(ChangingCommandsTest, ImportNamesBadRowsAndColumns) {
    console.in = "ID,TimesPlayed,Colour\n1,5,red\n2,often,blue\n";
    EXPECT_EQ(Run("import -"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: -:3: TimesPlayed: \"often\" is not a number\n"
                             "tavolo-cli: -: the catalogue has no column Colour\n"
                             "tavolo-cli: nothing was imported\n");
    EXPECT_EQ(Scalar("Select TimesPlayed from Tables where ID = 1"), "3");
    console.in = "ID,TimesPlayed,Colour\n1,5,red\n50,1,blue\n";
    EXPECT_EQ(Run("import --ignore-unknown --update-only -"), kDone);
    EXPECT_EQ(console.error, "0 added, 1 changed\ntavolo-cli: the column Colour was left out\n"
                             "1 passed over\n");
}

TEST_F(ChangingCommandsTest, ImportFindsRowsAsAsked) {
    const QJsonObject found{{S("FileName"), QString::fromStdString(TablePath("Taxi"))},
                            {S("Author"), S("Found")}};
    console.in = QJsonDocument(found).toJson();
    EXPECT_EQ(Run("import --match=file --format=json -"), kDone) << console.error;
    EXPECT_EQ(Scalar("Select Author from Tables where ID = 2"), "Found");
    Run("crc");
    const std::string crc = Scalar("Select CRC from Tables where ID = 3");
    console.in = QByteArray::fromStdString("CRC,Author\n" + crc + ",By CRC\n");
    EXPECT_EQ(Run("import -m crc -"), kDone) << console.error;
    EXPECT_EQ(Scalar("Select Author from Tables where ID = 3"), "By CRC");
    EXPECT_EQ(Run("import /no/such.csv"), kFailed);
}

// After each write that the disk still takes: the catalogue is as before or as afterwards.
TEST_F(ChangingCommandsTest, AFullDiskLeavesTheCatalogueWhole) {
    console.in = "ID,DisplayName\n";
    for (int id = 1; id <= 500; ++id)
        console.in += QByteArray::number(id) + ",Table " + QByteArray::number(id) + "\n";
    const QByteArray before = DatabaseBytes();
    bool was_full = true;
    int failures = 0;
    for (int writes = 0; was_full; writes = writes * 2 + 1) {
        QFile::remove(DatabasePath() + S("-journal"));
        QFile database(DatabasePath());
        ASSERT_TRUE(database.open(QIODevice::WriteOnly));
        database.write(before);
        database.close();
        test_support::FullDisk disk(*files, writes);
        const int status = Run(QStringList{S("import"), S("-")}, &disk);
        was_full = disk.was_full();
        if (status != kDone) ++failures;
        const std::string rows = Scalar("Select Count(*) from Tables");
        const std::string renamed =
            Scalar("Select Count(*) from Tables where DisplayName = 'Table 1'");
        EXPECT_TRUE((rows == "3" && renamed == "0") || (rows == "500" && renamed == "1"))
            << writes << ": " << rows << ", " << renamed << "; " << console.error;
        EXPECT_TRUE(was_full || rows == "500");
    }
    EXPECT_GT(failures, 0);
}

// The path map, which is a setting and no part of the catalogue.

TEST_F(ChangingCommandsTest, ThePathMapIsListedChangedAndProposed) {
    Sql("UPDATE Tables SET FileName = 'C:\\Tables\\' & DisplayName & '.VPT'");
    const QByteArray before = DatabaseBytes();
    const std::string tables = folder.filePath(QStringLiteral("tables")).toStdString();
    EXPECT_EQ(Run("path-map"), kDone);
    EXPECT_EQ(console.out, "\t\t3\t0\n");
    EXPECT_EQ(Run({QStringLiteral("path-map"), QStringLiteral("add"), QStringLiteral("c:/tables"),
                   QString::fromStdString(tables + "/.")}),
              kDone);
    EXPECT_EQ(Run("path-map list"), kDone);
    EXPECT_EQ(console.out, "c:/tables\t" + tables + "\t3\t3\n\t\t0\t0\n");
    EXPECT_EQ(Run("verify --quick"), kDone);
    EXPECT_EQ(Run("path-map add C:\\Tables\\ /elsewhere"), kFailed);
    EXPECT_THAT(console.error, testing::HasSubstr("already"));
    EXPECT_EQ(Run("path-map remove D:\\"), kFailed);
    EXPECT_EQ(Run("path-map remove C:\\TABLES\\"), kDone);
    EXPECT_EQ(Run("path-map propose"), kDone);
    const std::string proposal =
        "C:\\Tables\\\t" +
        catalogue::WithTrailingSeparator(QString::fromStdString(tables)).toStdString() + "\t3\t3\n";
    EXPECT_EQ(console.out, proposal);
    EXPECT_EQ(Run("path-map"), kDone);
    EXPECT_EQ(console.out, "\t\t3\t0\n");
    EXPECT_EQ(Run({QStringLiteral("path-map"), QStringLiteral("propose"), QStringLiteral("--take"),
                   QString::fromStdString(tables)}),
              kDone);
    EXPECT_EQ(console.out, proposal);
    EXPECT_EQ(Run("verify --quick"), kDone);
    EXPECT_EQ(Run("path-map propose"), kDone);
    EXPECT_EQ(console.out, "");
    EXPECT_EQ(DatabaseBytes(), before);
    for (const char* const wrong :
         {"path-map dance", "path-map add C:\\", "path-map remove", "path-map list all"})
        EXPECT_EQ(Run(wrong), kWrongUsage) << wrong;
}

TEST_F(ChangingCommandsTest, APathMapThatCannotBeReadIsEmptiedByRemoving) {
    settings.values[QStringLiteral("TAVOLO/PATHS/MAP")] = QStringLiteral("{");
    EXPECT_EQ(Run("path-map"), kFailed);
    EXPECT_EQ(Run("path-map add C:\\ /c"), kFailed);
    EXPECT_EQ(Run("path-map remove C:\\"), kDone);
    EXPECT_EQ(Run("path-map"), kDone);
}

}  // namespace
}  // namespace cli
