#include "discovery/folder_scan.h"

#include "catalogue/date_texts.h"
#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "catalogue/quoting.h"
#include "platform/files.h"
#include "support/as_nobody.h"
#include "support/catalogue_fixture.h"
#include "support/fakes.h"
#include "support/test_data.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

namespace discovery {
namespace {

class RecordingObserver final : public ScanObserver {
public:
    QStringList listed;
    QStringList added;  // "name checksum"
    QStringList queue;
    void FolderQueued(const QString& folder) override { queue.append(folder); }
    void ListingFolder(const QString& folder) override {
        EXPECT_EQ(folder, queue.first());
        listed.append(folder);
    }
    void FolderListed() override { queue.removeFirst(); }
    void TableAdded(const QString& display_name, const QString& checksum_text) override {
        added.append(display_name + u' ' + checksum_text);
    }
};

class FolderScanTest : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        ASSERT_TRUE(tables.isValid());
    }
    QString Path(const QString& name) const { return tables.filePath(name); }
    QString MakeFile(const QString& name, const QByteArray& bytes = "123456789") const {
        QDir().mkpath(QFileInfo(Path(name)).path());
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QFile::WriteOnly)) << name.toStdString();
        file.write(bytes);
        return file.fileName();
    }
    std::int64_t Scan() { return Scan(tables.path()); }
    std::int64_t Scan(const QString& from) {
        observer = {};
        FolderScan scan(catalogue, events, observer);
        const base::Status done = scan.Run(from);
        EXPECT_TRUE(done.ok()) << done.message();
        return scan.found_count();
    }
    QString Count() { return Scalar(QStringLiteral("Select count(*) from Tables")); }
    QString FieldOf(const QString& column, const QString& path) {
        return Scalar(QStringLiteral("Select %1 from Tables where FileName = '%2'")
                          .arg(column, catalogue::QuoteSql(path)));
    }

    QTemporaryDir tables;
    test_support::FakeEvents events;
    RecordingObserver observer;
};

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
    EXPECT_EQ(observer.listed,
              (QStringList{tables.path(), tables.path() + QStringLiteral("/sub/")}));
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
    const QString path = MakeFile(QStringLiteral(u"Bob's folder/It's a t\u00E4ble | 2.vpt"));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(FieldOf(QStringLiteral("DisplayName"), path),
              QStringLiteral(u"It's a t\u00E4ble | 2"));
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

TEST_F(FolderScanTest, LinksThatFormACycleDoNotTrapTheWalk) {
    MakeFile(QStringLiteral("one/a.vpt"));
    ASSERT_TRUE(QFile::link(tables.path(), Path(QStringLiteral("one/up"))));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("one")), Path(QStringLiteral("one/self"))));
    // A walk that is trapped all the same comes to an end, too: the links go away.
    constexpr qsizetype kMaxFolders = 4;
    bool trapped = false;
    events.on_round = [&] {
        if (observer.listed.size() <= kMaxFolders) return;
        trapped = true;
        QFile::remove(Path(QStringLiteral("one/up")));
        QFile::remove(Path(QStringLiteral("one/self")));
    };
    EXPECT_EQ(Scan(), 1);
    EXPECT_FALSE(trapped);
    EXPECT_LE(observer.listed.size(), kMaxFolders);
}

TEST_F(FolderScanTest, AFileIsKnownByItsRealPathWhateverLinksLeadToIt) {
    const QString real = MakeFile(QStringLiteral("z/real.vpt"));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("z")), Path(QStringLiteral("a link to z"))));
    ASSERT_TRUE(QFile::link(real, Path(QStringLiteral("a link.vpt"))));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Scalar(QStringLiteral("Select FileName from Tables")), real);
    EXPECT_EQ(Scan(), 0);
}

TEST_F(FolderScanTest, ACataloguedTableDoesNotComeInAgainThroughALinkFromElsewhere) {
    const QString real = MakeFile(QStringLiteral("real.vpt"));
    EXPECT_EQ(Scan(), 1);
    QTemporaryDir elsewhere;
    ASSERT_TRUE(QFile::link(tables.path(), elsewhere.filePath(QStringLiteral("link"))));
    ASSERT_TRUE(QFile::link(real, elsewhere.filePath(QStringLiteral("other.vpt"))));
    EXPECT_EQ(Scan(elsewhere.path()), 0);
    EXPECT_EQ(Scan(elsewhere.filePath(QStringLiteral("link"))), 0) << "the chosen folder is one";
}

TEST_F(FolderScanTest, SeveralLinksToAFileOutsideAreOneTable) {
    QTemporaryDir outside;
    QFile file(outside.filePath(QStringLiteral("far.vpt")));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.close();
    ASSERT_TRUE(QFile::link(file.fileName(), Path(QStringLiteral("one.vpt"))));
    ASSERT_TRUE(QFile::link(file.fileName(), Path(QStringLiteral("two.vpt"))));
    ASSERT_TRUE(QFile::link(outside.path(), Path(QStringLiteral("folder"))));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Scan(), 0);
}

// /proc/self/cwd and the like lead everywhere.
TEST_F(FolderScanTest, FoldersOfTheSystemsOwnMakingAreLeftOut) {
    MakeFile(QStringLiteral("a.vpt"));
    ASSERT_TRUE(QFile::link(QStringLiteral("/proc"), Path(QStringLiteral("proc"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("/proc/self/fd"), Path(QStringLiteral("fd"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("/sys"), Path(QStringLiteral("sys"))));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(observer.listed.size(), 4) << "met, but not listed";
    EXPECT_EQ(Scan(QStringLiteral("/proc")), 0);
    EXPECT_EQ(observer.listed.size(), 1);
}

// Names that are no UTF-8, told apart by bytes that no text has.
TEST_F(FolderScanTest, NamesThatAreNotUtf8AreStoredAndReadBack) {
    const std::string raw = tables.path().toStdString() + "/Caf\xE9";
    std::filesystem::create_directory(raw);
    for (const char* name : {"/T\xFC.vpt", "/T\xF6.vpt"})
        std::ofstream(raw + name) << "123456789";
    EXPECT_EQ(Scan(), 2);
    EXPECT_EQ(Scan(), 0);
    auto rows = connection->Execute(u"Select FileName from Tables");
    ASSERT_TRUE(rows.ok());
    while (!rows->Eof()) {
        const QString stored = catalogue::FieldText(*rows, u"FileName").value();
        EXPECT_TRUE(platform::FileExists(stored));
        EXPECT_EQ(Scalar(QStringLiteral("Select count(*) from Tables where FileName = '%1'")
                             .arg(catalogue::QuoteSql(stored))),
                  QStringLiteral("1"));
        ASSERT_TRUE(rows->MoveNext().ok());
    }
    std::filesystem::remove_all(raw);
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

TEST_F(FolderScanTest, ALinkToAFolderOutsideIsFollowed) {
    QTemporaryDir outside;
    QFile file(outside.filePath(QStringLiteral("far.vpt")));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.close();
    ASSERT_TRUE(QFile::link(outside.path(), Path(QStringLiteral("link"))));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(FieldOf(QStringLiteral("DisplayName"), Path(QStringLiteral("link/far.vpt"))),
              QStringLiteral("far"));
}

TEST_F(FolderScanTest, ADanglingLinkAndAPipeArePassedOver) {
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nowhere")), Path(QStringLiteral("link.vpt"))));
    ASSERT_EQ(mkfifo(QFile::encodeName(Path(QStringLiteral("pipe.vpt"))).constData(), 0600), 0);
    MakeFile(QStringLiteral("real.vpt"));
    EXPECT_EQ(Scan(), 1);
}

TEST_F(FolderScanTest, AFolderThatCannotBeListedIsPassedOver) {
    MakeFile(QStringLiteral("locked/hidden.vpt"));
    MakeFile(QStringLiteral("open/seen.vpt"));
    const QByteArray locked = QFile::encodeName(Path(QStringLiteral("locked")));
    ASSERT_EQ(chmod(locked.constData(), 0), 0);
    const std::int64_t found = Scan();
    ASSERT_EQ(chmod(locked.constData(), 0700), 0);
    EXPECT_EQ(found, geteuid() == 0 ? 2 : 1);  // nothing is locked for root
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
    ASSERT_EQ(chmod(QFile::encodeName(path).constData(), 0), 0);
    const bool is_root = geteuid() == 0;  // nothing is unreadable for root
    EXPECT_EQ(Scan(), is_root ? 2 : 1);
    ASSERT_EQ(chmod(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_EQ(Scan(), is_root ? 0 : 1);
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
    ASSERT_EQ(chmod(QFile::encodeName(tables.path()).constData(), 0755), 0);
    ASSERT_EQ(chmod(QFile::encodeName(path).constData(), 0), 0);
    {
        const test_support::AsNobody nobody;
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

TEST_F(AddFileTest, ALinkToATableOfTheCatalogueIsThatTable) {
    const QString real = MakeFile(QStringLiteral("real.vpt"));
    const QString link = Path(QStringLiteral("link.vpt"));
    ASSERT_TRUE(QFile::link(real, link));
    ASSERT_TRUE(AddFile(real).ok());
    ASSERT_TRUE(AddFile(link).ok());
    EXPECT_TRUE(ids.empty());
    EXPECT_EQ(Count(), QStringLiteral("1"));
}

TEST_F(FolderScanTest, AnotherProgramReadsTheAddedRow) {
    const QString program = QStandardPaths::findExecutable(QStringLiteral("mdb-export"));
    ASSERT_FALSE(program.isEmpty()) << "mdb-export of mdbtools is not installed";
    const QString path = MakeFile(QStringLiteral("Bob's Table.vpt"));
    EXPECT_EQ(Scan(), 1);
    ASSERT_TRUE(connection->Close().ok());
    QProcess exporter;
    exporter.start(program, {QStringLiteral("-H"), DatabasePath(), QStringLiteral("Tables")});
    ASSERT_TRUE(exporter.waitForFinished());
    const QString row = QString::fromUtf8(exporter.readAllStandardOutput());
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
