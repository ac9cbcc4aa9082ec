// Links, pipes, names that are no text and folders of the system's own making.
#include "catalogue/field_text.h"
#include "discovery/folder_scan_fixture.h"
#include "platform/files.h"

#include <filesystem>
#include <fstream>

#include <sys/stat.h>

namespace discovery {
namespace {

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
    test_support::TemporaryDir elsewhere;
    ASSERT_TRUE(QFile::link(tables.path(), elsewhere.filePath(QStringLiteral("link"))));
    ASSERT_TRUE(QFile::link(real, elsewhere.filePath(QStringLiteral("other.vpt"))));
    EXPECT_EQ(Scan(elsewhere.path()), 0);
    EXPECT_EQ(Scan(elsewhere.filePath(QStringLiteral("link"))), 0) << "the chosen folder is one";
}

TEST_F(FolderScanTest, SeveralLinksToAFileOutsideAreOneTable) {
    test_support::TemporaryDir outside;
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

TEST_F(FolderScanTest, ALinkToAFolderOutsideIsFollowed) {
    test_support::TemporaryDir outside;
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

TEST_F(FolderScanTest, AnAddedLinkToATableOfTheCatalogueIsThatTable) {
    const QString real = MakeFile(QStringLiteral("real.vpt"));
    const QString link = Path(QStringLiteral("link.vpt"));
    ASSERT_TRUE(QFile::link(real, link));
    for (const QString& path : {real, link}) {
        FolderScan scan(catalogue, events, observer);
        ASSERT_TRUE(scan.AddFile(path).ok());
        EXPECT_EQ(scan.added_ids().size(), path == real ? 1U : 0U);
    }
    EXPECT_EQ(Count(), QStringLiteral("1"));
}

}  // namespace
}  // namespace discovery
