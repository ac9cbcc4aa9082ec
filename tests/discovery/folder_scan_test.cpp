#include "discovery/folder_scan.h"

#include "catalogue/date_texts.h"
#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "catalogue/quoting.h"
#include "discovery/folder_scan_fixture.h"
#include "platform/files.h"
#include "support/programs.h"
#include "support/test_data.h"
#include "support/unreadable.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace discovery {
namespace {

TEST_F(FolderScanTest, TablesAtEveryDepthAreAddedOnce) {
    MakeFile(QStringLiteral("a.vpt"));
    MakeFile(QStringLiteral("one/b.vpt"));
    MakeFile(QStringLiteral("one/two/three/c.vpt"));
    EXPECT_EQ(Scan(), 3);
    EXPECT_EQ(Count(), QStringLiteral("3"));
    EXPECT_EQ(Scan(), 0);
    EXPECT_EQ(Count(), QStringLiteral("3"));
    EXPECT_TRUE(observer.added.isEmpty());
}

TEST_F(FolderScanTest, TheCatalogueIsReadOnceHoweverManyFilesAreFound) {
    constexpr int kFiles = 20;
    for (int i = 0; i < kFiles; ++i)
        MakeFile(QStringLiteral("%1.vpt").arg(i));
    MakeFile(QStringLiteral("too long a path/%1.vpt").arg(QString(240, u'x')));
    CountWalks();
    EXPECT_EQ(Scan(), kFiles);
    EXPECT_EQ(walks.scans, 1);
    EXPECT_EQ(walks.ranges, 2) << "of the first path, and of the one that has no key";
    EXPECT_EQ(Scan(), 0);
    EXPECT_EQ(walks.scans, 2);
}

TEST_F(FolderScanTest, ARowGetsItsFiveFieldsAndTheDefaultsOfTheOthers) {
    const QString path = MakeFile(QStringLiteral("Attack From Space.vpt"));
    const QDateTime modified(QDate(2003, 5, 7), QTime(14, 30, 9));
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::ReadWrite));
    ASSERT_TRUE(file.setFileTime(modified, QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(FieldOf(QStringLiteral("DisplayName"), path), QStringLiteral("Attack From Space"));
    EXPECT_EQ(FieldOf(QStringLiteral("FileDate"), path), catalogue::GeneralDate(modified));
    EXPECT_EQ(FieldOf(QStringLiteral("CRC"), path), QStringLiteral("CBF43926"));
    EXPECT_EQ(FieldOf(QStringLiteral("DateAdded"), path), QStringLiteral("11/20/2026"));
    EXPECT_EQ(FieldOf(QStringLiteral("Author"), path), QString());
    EXPECT_EQ(FieldOf(QStringLiteral("Favorite"), path), QStringLiteral("False"));
    EXPECT_EQ(FieldOf(QStringLiteral("TimesPlayed"), path), QStringLiteral("0"));
}

TEST_F(FolderScanTest, TheExtensionCountsInAnyLetterCaseAndOnlyAtTheEnd) {
    MakeFile(QStringLiteral("upper.VPT"));
    MakeFile(QStringLiteral("mixed.Vpt"));
    MakeFile(QStringLiteral("backup.vpt.bak"));
    MakeFile(QStringLiteral("other.vpx"));
    MakeFile(QStringLiteral("vpt"));
    QDir().mkpath(Path(QStringLiteral("folder.vpt")));
    EXPECT_EQ(Scan(), 2);
    EXPECT_EQ(FieldOf(QStringLiteral("DisplayName"), Path(QStringLiteral("upper.VPT"))),
              QStringLiteral("upper"));
}

TEST_F(FolderScanTest, RecycleBinFoldersAreNoException) {
    const QString path = MakeFile(QStringLiteral("RECYCLER/S-1-5/Dc1.vpt"));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(FieldOf(QStringLiteral("DisplayName"), path), QStringLiteral("Dc1"));
}

TEST_F(FolderScanTest, FoldersAreListedBreadthFirst) {
    for (const auto* name : {"a/aa/aaa", "b/bb", "c"})
        QDir().mkpath(Path(QString::fromLatin1(name)));
    Scan();
    ASSERT_EQ(observer.listed.size(), 7);
    EXPECT_EQ(observer.listed.first(), tables.path());
    const auto depth = [](const QString& path) {
        return path.count(u'/') - (path.endsWith(u'/') ? 1 : 0);
    };
    EXPECT_TRUE(
        std::is_sorted(observer.listed.begin(), observer.listed.end(),
                       [&](const QString& x, const QString& y) { return depth(x) < depth(y); }));
    EXPECT_TRUE(observer.queue.isEmpty());
}

TEST_F(FolderScanTest, SubfoldersAreQueuedWithTheirFullPathAndASeparator) {
    QDir().mkpath(Path(QStringLiteral("sub")));
    Scan();
    EXPECT_EQ(observer.listed, (QStringList{tables.path(), Path(QStringLiteral("sub")) +
                                                               platform::NativeSeparator()}));
}

TEST_F(FolderScanTest, EventsAreProcessedBeforeEachEntryButTheFirst) {
    for (const auto* name : {"a.txt", "b.txt", "c.txt"})
        MakeFile(QString::fromLatin1(name));
    Scan();
    EXPECT_EQ(events.rounds, 2);
}

TEST_F(FolderScanTest, EachAddedTableIsTold) {
    MakeFile(QStringLiteral("Game.final.vpt"));
    Scan();
    EXPECT_EQ(observer.added, QStringList{QStringLiteral("Game.final CBF43926")});
}

TEST_F(FolderScanTest, AnEmptyFileIsAddedWithTheChecksumTextZero) {
    const QString path = MakeFile(QStringLiteral("empty.vpt"), {});
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(FieldOf(QStringLiteral("CRC"), path), QStringLiteral("0"));
}

TEST_F(FolderScanTest, ApostrophesBlanksAndAccentsInNamesAreStoredAsTheyStand) {
    const QString path = MakeFile(QStringLiteral(u"Bob's folder/It's a t\u00E4ble & 2.vpt"));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(FieldOf(QStringLiteral("DisplayName"), path),
              QStringLiteral(u"It's a t\u00E4ble & 2"));
    EXPECT_EQ(Scan(), 0);
}

TEST_F(FolderScanTest, AFileThatTheDatabaseTakesForTheSameNameIsKnown) {
    const QString path = MakeFile(QStringLiteral("Attack.vpt"));
    Execute(QStringLiteral("Insert into Tables (FileName) Values ('%1')").arg(path.toUpper()));
    EXPECT_EQ(Scan(), 0);
}

TEST_F(FolderScanTest, AMovedFileIsANewOne) {
    const QString path = MakeFile(QStringLiteral("Attack.vpt"));
    EXPECT_EQ(Scan(), 1);
    QDir().mkpath(Path(QStringLiteral("new")));
    ASSERT_TRUE(QFile::rename(path, Path(QStringLiteral("new/Attack.vpt"))));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Count(), QStringLiteral("2"));
}

// The database.

TEST_F(FolderScanTest, ADatabaseThatCannotBeAskedEndsTheScanWithItsError) {
    MakeFile(QStringLiteral("a.vpt"));
    ASSERT_TRUE(connection->Close().ok());
    FolderScan scan(catalogue, events, observer);
    EXPECT_FALSE(scan.Run(tables.path()).ok());
    EXPECT_EQ(scan.found_count(), 0);
}

TEST_F(FolderScanTest, ADatabaseThatCannotBeChangedEndsTheScanWithItsError) {
    for (int i = 0; i < 3; ++i)
        MakeFile(QStringLiteral("%1.vpt").arg(i));
    ASSERT_TRUE(connection->Close().ok());
    const std::u16string source =
        (QStringLiteral("Mode=Read;Data Source=") + DatabasePath()).toStdU16String();
    ASSERT_TRUE(connection->Open(source).ok());
    FolderScan scan(catalogue, events, observer);
    const base::Status done = scan.Run(tables.path());
    EXPECT_EQ(done.code(), base::StatusCode::kPermissionDenied) << done.message();
    EXPECT_EQ(scan.found_count(), 0);
    EXPECT_TRUE(observer.added.isEmpty());
}

class FolderScanCentury : public FolderScanTest, public testing::WithParamInterface<int> {};

TEST_P(FolderScanCentury, ATableIsAddedToday) {
    MakeFile(QStringLiteral("a.vpt"));
    clock.now = QDateTime(QDate(GetParam(), 1, 2), QTime(3, 4));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Scalar(QStringLiteral("Select DateAdded from Tables")),
              QStringLiteral("1/2/%1").arg(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(FolderScanTest, FolderScanCentury, testing::Values(2029, 2030, 2099));

TEST_F(FolderScanTest, AFolderThatCannotBeListedIsPassedOver) {
    MakeFile(QStringLiteral("locked/hidden.vpt"));
    MakeFile(QStringLiteral("open/seen.vpt"));
    {
        const test_support::Unreadable locked({Path(QStringLiteral("locked")).toStdU16String()});
        EXPECT_EQ(Scan(), 1);
    }
    EXPECT_EQ(Scan(Path(QStringLiteral("missing"))), 0);
    EXPECT_EQ(Scan(Path(QStringLiteral("open/seen.vpt"))), 0);
}

TEST_F(FolderScanTest, AFolderThatVanishesDuringTheWalkIsPassedOver) {
    for (const auto* name : {"a/x.vpt", "b/x.vpt"})
        MakeFile(QString::fromLatin1(name));
    events.on_round = [this] { QDir(Path(QStringLiteral("b"))).removeRecursively(); };
    EXPECT_EQ(Scan(), 1);
}

TEST_F(FolderScanTest, AFileThatCannotBeReadIsPassedOverAndFoundByTheNextScan) {
    const QString path = MakeFile(QStringLiteral("locked.vpt"));
    MakeFile(QStringLiteral("open.vpt"));
    {
        const test_support::Unreadable locked({path.toStdU16String()});
        EXPECT_EQ(Scan(), 1);
    }
    EXPECT_EQ(Scan(), 1);
}

TEST_F(FolderScanTest, APathThatTheCatalogueCannotHoldIsPassedOver) {
    const QString deep =
        QStringLiteral("a").repeated(200) + u'/' + QStringLiteral("b").repeated(200);
    MakeFile(deep + QStringLiteral("/long.vpt"));
    MakeFile(QStringLiteral("short.vpt"));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Count(), QStringLiteral("1"));
}

// One file.

class AddFileTest : public FolderScanTest {
protected:
    base::Status AddFile(const QString& path) {
        FolderScan scan(catalogue, events, observer);
        const base::Status done = scan.AddFile(path);
        EXPECT_EQ(scan.found_count(), static_cast<std::int64_t>(scan.added_ids().size()));
        ids = scan.added_ids();
        return done;
    }
    std::vector<std::int64_t> ids;
};

TEST_F(AddFileTest, TheIdsOfTheAddedRowsAreKnown) {
    Execute(QStringLiteral("Insert into Tables (ID, FileName) Values (40, '/t/one.vpt')"));
    ASSERT_TRUE(AddFile(MakeFile(QStringLiteral("a.vpt"))).ok());
    ASSERT_EQ(ids.size(), 1u);
    EXPECT_EQ(FieldOf(QStringLiteral("ID"), Path(QStringLiteral("a.vpt"))),
              QString::number(ids[0]));
    ASSERT_TRUE(AddFile(Path(QStringLiteral("a.vpt"))).ok());
    EXPECT_TRUE(ids.empty());
}

TEST_F(AddFileTest, AFileThatCannotBeReadIsAFailure) {
    const QString path = MakeFile(QStringLiteral("locked.vpt"));
    {
        const test_support::Unreadable locked({path.toStdU16String()});
        const base::Status done = AddFile(path);
        EXPECT_EQ(done.message(), "locked.vpt: cannot be read");
    }
    EXPECT_FALSE(AddFile(Path(QStringLiteral("missing.vpt"))).ok());
    EXPECT_EQ(Count(), QStringLiteral("0"));
}

TEST_F(AddFileTest, APathThatTheCatalogueCannotHoldIsAFailure) {
    const QString deep =
        QStringLiteral("a").repeated(200) + u'/' + QStringLiteral("b").repeated(200);
    const base::Status done = AddFile(MakeFile(deep + QStringLiteral("/long.vpt")));
    EXPECT_TRUE(catalogue::IsValueTrouble(done)) << done.message();
    EXPECT_EQ(Count(), QStringLiteral("0"));
}

TEST_F(FolderScanTest, AnotherProgramReadsTheAddedRow) {
    const QString path = MakeFile(QStringLiteral("Bob's Table.vpt"));
    EXPECT_EQ(Scan(), 1);
    ASSERT_TRUE(connection->Close().ok());
    const auto exported =
        test_support::OutputOf({"mdb-export", "-H", DatabasePath().toStdString(), "Tables"});
    ASSERT_TRUE(exported) << "mdb-export of mdbtools failed";
    const QString row = QString::fromStdString(*exported);
    EXPECT_EQ(row.count(u'\n'), 1) << row.toStdString();
    EXPECT_TRUE(row.startsWith(QStringLiteral("1,\"Bob's Table\",\"%1\",").arg(path)))
        << row.toStdString();
    EXPECT_TRUE(row.contains(QStringLiteral("\"CBF43926\""))) << row.toStdString();
}

class ScanIntoOldCatalogueTest : public FolderScanTest,
                                 public testing::WithParamInterface<std::filesystem::path> {};

TEST_P(ScanIntoOldCatalogueTest, GainsTheNewTablesAndKeepsItsRows) {
    MakeFile(QStringLiteral("a.vpt"));
    MakeFile(QStringLiteral("b.vpt"));
    ASSERT_TRUE(connection->Close().ok());
    ASSERT_TRUE(QFile::remove(DatabasePath()));
    ASSERT_TRUE(QFile::copy(QString::fromStdString(GetParam().string()), DatabasePath()));
    ASSERT_TRUE(QFile::setPermissions(DatabasePath(), QFile::ReadOwner | QFile::WriteOwner));
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    const int before = Count().toInt();
    EXPECT_GE(before, 40);
    EXPECT_EQ(Scan(), 2);
    EXPECT_EQ(Scan(), 0);
    EXPECT_EQ(Count().toInt(), before + 2);
}

INSTANTIATE_TEST_SUITE_P(Files, ScanIntoOldCatalogueTest,
                         testing::ValuesIn(test_support::OldCatalogues()),
                         test_support::NameOfFile);

TEST_F(FolderScanTest, SpacesAroundTheChosenFolderAreTrimmed) {
    MakeFile(QStringLiteral("a.vpt"));
    EXPECT_EQ(Scan(QStringLiteral("  ") + tables.path() + QStringLiteral("/ ")), 1);
}

TEST(ListedFolderTest, AnEmptyChoiceIsTheRootOfTheCurrentDrive) {
    EXPECT_EQ(ListedFolder(QString()), QString(platform::NativeSeparator()));
    EXPECT_EQ(ListedFolder(QStringLiteral("  ")), QString(platform::NativeSeparator()));
}

TEST(ListedFolderTest, AByteOrderMarkIsALetterOfTheName) {
    const QString name = QString(QChar(0xFEFF)) + QStringLiteral("Tables");
    EXPECT_EQ(ListedFolder(name + QStringLiteral("  ")), name + platform::NativeSeparator());
}

TEST(ListedFolderTest, EndsInASeparatorOfItsOwnKind) {
    EXPECT_EQ(ListedFolder(QStringLiteral("/home/tables")), QStringLiteral("/home/tables/"));
    EXPECT_EQ(ListedFolder(QStringLiteral("/home/tables/")), QStringLiteral("/home/tables/"));
    EXPECT_EQ(ListedFolder(QStringLiteral("C:\\Tables")), QStringLiteral("C:\\Tables\\"));
    EXPECT_EQ(ListedFolder(QStringLiteral("C:\\")), QStringLiteral("C:\\"));
}

TEST(BaseNameTest, LosesTheFolderAndTheLastExtension) {
    EXPECT_EQ(BaseName(QStringLiteral("C:\\Tables\\Attack From Space.vpt")),
              QStringLiteral("Attack From Space"));
    EXPECT_EQ(BaseName(QStringLiteral("Game.final.vpt")), QStringLiteral("Game.final"));
    EXPECT_EQ(BaseName(QStringLiteral("/a.b/plain")), QStringLiteral("plain"));
    EXPECT_EQ(BaseName(QStringLiteral("/a/.vpt")), QString());
}

TEST(IsTableFileNameTest, LooksAtTheLastFourCharacters) {
    EXPECT_TRUE(IsTableFileName(QStringLiteral("a.vPt")));
    EXPECT_TRUE(IsTableFileName(QStringLiteral("/x/.vpt")));
    EXPECT_FALSE(IsTableFileName(QStringLiteral("vpt")));
    EXPECT_FALSE(IsTableFileName(QStringLiteral("a.vpt ")));
    EXPECT_FALSE(IsTableFileName(QString()));
}

// A catalogue that came from another system.

TEST_F(FolderScanTest, ATableThatThePathMapFindsIsNotAddedAndItsPathStays) {
    MakeFile(QStringLiteral("Old/Attack.vpt"));
    const QString stored = QStringLiteral("C:\\VP\\old\\ATTACK.VPT");
    Execute(QStringLiteral("Insert into Tables (FileName) Values ('%1')").arg(stored));
    values.paths.Use(catalogue::PathMap({{QStringLiteral("C:\\VP"), tables.path()}}));
    EXPECT_EQ(Scan(), 0);
    FolderScan scan(catalogue, events, observer);
    ASSERT_TRUE(scan.AddFile(Path(QStringLiteral("Old/Attack.vpt"))).ok());
    EXPECT_EQ(scan.found_count(), 0);
    EXPECT_EQ(Count(), QStringLiteral("1"));
    EXPECT_EQ(Scalar(QStringLiteral("Select FileName from Tables")), stored);
}

TEST_F(FolderScanTest, ANewTableBelowAFolderOfThePathMapIsStoredForAllSystems) {
    const QString modified_path = MakeFile(QStringLiteral("new/Taxi.vpt"));
    values.paths.Use(catalogue::PathMap({{QStringLiteral("C:\\VP"), tables.path()}}));
    EXPECT_EQ(Scan(), 1);
    const QString stored = QStringLiteral("C:\\VP\\new\\Taxi.vpt");
    EXPECT_EQ(Scalar(QStringLiteral("Select FileName from Tables")), stored);
    EXPECT_EQ(FieldOf(QStringLiteral("DisplayName"), stored), QStringLiteral("Taxi"));
    EXPECT_EQ(FieldOf(QStringLiteral("CRC"), stored), QStringLiteral("CBF43926"));
    EXPECT_EQ(FieldOf(QStringLiteral("FileDate"), stored),
              catalogue::GeneralDate(platform::LastModified(modified_path)));
    EXPECT_EQ(Scan(), 0);
}

TEST_F(FolderScanTest, ANewTableElsewhereIsStoredAsItIsCalledHere) {
    const QString path = MakeFile(QStringLiteral("Taxi.vpt"));
    values.paths.Use(catalogue::PathMap({{QStringLiteral("C:\\VP"), Path(QStringLiteral("vp"))}}));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Scalar(QStringLiteral("Select FileName from Tables")), path);
}

}  // namespace
}  // namespace discovery
