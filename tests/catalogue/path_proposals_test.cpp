#include "catalogue/path_proposals.h"

#include "catalogue/stored_paths.h"
#include "platform/files.h"
#include "support/catalogue_fixture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace catalogue {
namespace {

class PathProposalsTest : public test_support::CatalogueFixture {
protected:
    void Make(const QString& name) {
        const QString path = disk.filePath(name);
        ASSERT_TRUE(QDir().mkpath(path.left(path.lastIndexOf(u'/'))));
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
    }
    void MakeTables(const QString& where, const QStringList& names) {
        for (const QString& name : names)
            Make(where + u'/' + name + QStringLiteral(".vpt"));
    }
    static QStringList Stored(const QString& where, const QStringList& names) {
        QStringList stored;
        for (const QString& name : names)
            stored.append(where + u'\\' + name + QStringLiteral(".vpt"));
        return stored;
    }
    std::vector<ProposedPair> Propose(const QStringList& stored, const base::RunSteps& steps = {}) {
        return ProposePairs(stored, {disk.path()}, *values.paths.map(), steps);
    }
    QString Here(const QString& name) const {
        return QDir::toNativeSeparators(disk.filePath(name) + u'/');
    }

    const QStringList some{QStringLiteral("Attack"), QStringLiteral("Fathom"),
                           QStringLiteral("Taxi")};
    QTemporaryDir disk;
};

TEST_F(PathProposalsTest, TheFolderOfFilesThatAreThereIsProposed) {
    MakeTables(QStringLiteral("games/vp"), {QStringLiteral("attack"), QStringLiteral("TAXI")});
    const auto proposed = Propose(Stored(QStringLiteral("C:\\Pinball"), some));
    ASSERT_EQ(proposed.size(), 1U);
    EXPECT_EQ(proposed[0].pair,
              (PathPair{QStringLiteral("C:\\Pinball\\"), Here(QStringLiteral("games/vp"))}));
    EXPECT_EQ(proposed[0].stored, 3);
    EXPECT_EQ(proposed[0].found, 2);
}

TEST_F(PathProposalsTest, FoldersOfTheSameNamesShowWhereTheDifferenceBegins) {
    MakeTables(QStringLiteral("vp/tables/old"), some);
    MakeTables(QStringLiteral("vp/tables/new"), some);
    const auto proposed = Propose(Stored(QStringLiteral("C:\\Games\\Tables\\Old"), some) +
                                  Stored(QStringLiteral("C:\\Games\\Tables\\New"), some));
    ASSERT_EQ(proposed.size(), 1U);
    EXPECT_EQ(proposed[0].found, 6);
    const PathMap map({proposed[0].pair});
    EXPECT_TRUE(
        platform::FileExists(map.Local(QStringLiteral("C:\\Games\\Tables\\New\\Taxi.vpt"))));
    EXPECT_EQ(proposed[0].pair.stored, QStringLiteral("C:\\Games\\Tables\\"));
}

TEST_F(PathProposalsTest, EachFolderThatHasMovedElsewhereGetsItsOwnPairTheLargestFirst) {
    MakeTables(QStringLiteral("a"), some);
    MakeTables(QStringLiteral("b"), {QStringLiteral("Loch"), QStringLiteral("Ness")});
    const auto proposed = Propose(
        Stored(QStringLiteral("D:\\Two"), {QStringLiteral("Loch"), QStringLiteral("Ness")}) +
        Stored(QStringLiteral("C:\\One"), some));
    ASSERT_EQ(proposed.size(), 2U);
    EXPECT_EQ(proposed[0].pair, (PathPair{QStringLiteral("C:\\One\\"), Here(QStringLiteral("a"))}));
    EXPECT_EQ(proposed[1].pair, (PathPair{QStringLiteral("D:\\Two\\"), Here(QStringLiteral("b"))}));
}

TEST_F(PathProposalsTest, ThereMustBeMoreThanAChance) {
    MakeTables(QStringLiteral("a"), {QStringLiteral("Taxi")});
    EXPECT_TRUE(Propose(Stored(QStringLiteral("C:\\One"), some)).empty());
    EXPECT_EQ(Propose({QStringLiteral("C:\\One\\Taxi.vpt")}).size(), 1U);
    EXPECT_TRUE(Propose({QStringLiteral("Taxi.vpt"), QStringLiteral("C:Taxi.vpt"), QString(),
                         QStringLiteral("\\Taxi.vpt")})
                    .empty());
}

TEST_F(PathProposalsTest, WhatIsFoundAlreadyIsNoReason) {
    MakeTables(QStringLiteral("a"), some);
    const QStringList stored = Stored(QStringLiteral("C:\\One"), some);
    values.paths.Use(PathMap({{QStringLiteral("C:\\One"), disk.filePath(QStringLiteral("a"))}}));
    EXPECT_TRUE(Propose(stored).empty());
    // Nor is a pair proposed that there is already, with another folder.
    values.paths.Use(PathMap({{QStringLiteral("c:/one"), QStringLiteral("/nowhere")}}));
    EXPECT_TRUE(Propose(stored).empty());
}

TEST_F(PathProposalsTest, PathsOfAnotherDiskOfThisSystemAreFoundToo) {
    MakeTables(QStringLiteral("new/tables"), some);
    QStringList stored;
    for (const QString& name : some)
        stored.append(QStringLiteral("/mnt/gone/tables/%1.vpt").arg(name));
    const auto proposed = Propose(stored);
    ASSERT_EQ(proposed.size(), 1U);
    EXPECT_EQ(proposed[0].found, 3);
}

TEST_F(PathProposalsTest, AStopGivesWhatIsKnownUntilThen) {
    MakeTables(QStringLiteral("a"), some);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(Propose(Stored(QStringLiteral("C:\\One"), some), {{}, stop.get_token()}).empty());
}

TEST_F(PathProposalsTest, HostilePathsEnd) {
    MakeTables(QStringLiteral("a/a/a/a"), {QStringLiteral("a")});
    QString deep = QStringLiteral("C:");
    for (int i = 0; i < 20'000; ++i)
        deep += QStringLiteral("\\a");
    EXPECT_TRUE(Propose({deep + QStringLiteral("\\a.vpt"), QString(100'000, u'\\'),
                         QStringLiteral("C:\\..\\..\\x.vpt"), QString(100'000, u'/') + u'a'})
                    .empty());
}

// The paths in the catalogue.

TEST_F(PathProposalsTest, TheStoredPathsAreThoseOfFilesAndPicturesEachOnce) {
    Execute(QStringLiteral("Insert into Tables (FileName, ImageFile, FlyerFile, RulesFile, Notes) "
                           "Values ('a', 'b', 'c', 'd', 'e')"));
    Execute(QStringLiteral("Insert into Tables (FileName, ImageFile) Values ('b', '')"));
    const auto paths = StoredPaths(*connection);
    ASSERT_TRUE(paths.ok()) << paths.status().message();
    EXPECT_EQ(*paths, (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                                   QStringLiteral("d")}));
    Execute(QStringLiteral("Alter table Tables drop column RulesFile"));
    EXPECT_EQ(StoredPaths(*connection).value_or({}).size(), 3);
}

TEST_F(PathProposalsTest, EachPairCountsItsPathsAndThoseThatAreFound) {
    MakeTables(QStringLiteral("a"), some);
    const PathMap map({{QStringLiteral("Q:\\One"), disk.filePath(QStringLiteral("a"))},
                       {QStringLiteral("Q:\\"), QStringLiteral("/nowhere")}});
    const PathCounts counts = CountPaths(
        Stored(QStringLiteral("q:\\one"), some + QStringList{QStringLiteral("gone")}) +
            QStringList{QStringLiteral("Q:\\x"), disk.filePath(QStringLiteral("a/Taxi.vpt")),
                        QStringLiteral("/gone")},
        map);
    EXPECT_EQ(counts.pairs, (std::vector<PathCount>{{4, 3}, {1, 0}}));
    EXPECT_EQ(counts.others, (PathCount{2, 1}));
}

}  // namespace
}  // namespace catalogue
