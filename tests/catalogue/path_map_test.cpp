#include "catalogue/path_map.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>

namespace catalogue {
namespace {

PathPair MapPair(const char* stored, const char* here) {
    return {QString::fromUtf8(stored), QString::fromUtf8(here)};
}

// Their folders are those of Linux on every system.
PathMap MapOf(const std::vector<PathPair>& pairs) {
    return PathMap(pairs);
}

std::string Local(const PathMap& map, const char* stored) {
    return map.Local(QString::fromUtf8(stored)).toStdString();
}

std::string Stored(const PathMap& map, const char* local) {
    return map.Stored(QString::fromUtf8(local)).toStdString();
}

TEST(PathMapTest, WithoutPairsEveryPathIsAsItIs) {
    const PathMap map;
    for (const char* const path :
         {"", "C:\\Tables\\x.vpt", "/t/x.vpt", "x.vpt", "\\\\s\\d\\x", "C:x", " "}) {
        EXPECT_EQ(Local(map, path), path);
        EXPECT_EQ(Stored(map, path), path);
    }
}

TEST(PathMapTest, WhatIsBelowTheFolderIsBelowTheOtherOne) {
    const PathMap map = MapOf({MapPair("C:\\Tables\\", "/data/tables/")});
    EXPECT_EQ(Local(map, "C:\\Tables\\x.vpt"), "/data/tables/x.vpt");
    EXPECT_EQ(Local(map, "C:\\Tables\\old\\1990\\x.vpt"), "/data/tables/old/1990/x.vpt");
    EXPECT_EQ(Local(map, "C:\\Tables"), "/data/tables/");
    EXPECT_EQ(Local(map, "C:\\Tables\\"), "/data/tables/");
}

TEST(PathMapTest, AFolderIsComparedWhole) {
    const PathMap map = MapOf({MapPair("C:\\Tab", "/data/tab")});
    for (const char* const path :
         {"C:\\Tables\\x.vpt", "C:\\Ta\\b.vpt", "D:\\Tab\\x.vpt", "C:Tab\\x.vpt", "\\Tab\\x.vpt",
          "Tab\\x.vpt", "/Tab/x.vpt", "C:\\", "", "X:\\C:\\Tab\\x.vpt"}) {
        EXPECT_EQ(Local(map, path), path);
        EXPECT_FALSE(map.PairOf(QString::fromUtf8(path))) << path;
    }
    EXPECT_EQ(Local(map, "C:\\Tab\\x.vpt"), "/data/tab/x.vpt");
}

TEST(PathMapTest, TheLongestFolderCountsWhateverTheOrder) {
    const PathPair drive = MapPair("C:\\", "/disk");
    const PathPair tables = MapPair("C:\\Tables", "/data/tables");
    const PathPair old = MapPair("C:\\Tables\\Old", "/attic");
    for (const auto& pairs : {std::vector{drive, tables, old}, std::vector{old, tables, drive},
                              std::vector{tables, drive, old}}) {
        const PathMap map = MapOf(pairs);
        EXPECT_EQ(Local(map, "C:\\x.vpt"), "/disk/x.vpt");
        EXPECT_EQ(Local(map, "C:\\Tables\\x.vpt"), "/data/tables/x.vpt");
        EXPECT_EQ(Local(map, "C:\\Tables\\Old\\x.vpt"), "/attic/x.vpt");
        EXPECT_EQ(Local(map, "C:\\Tables\\Older\\x.vpt"), "/data/tables/Older/x.vpt");
        EXPECT_EQ(map.pairs()[*map.PairOf(QStringLiteral("C:\\Tables\\Old\\x.vpt"))], old);
    }
}

TEST(PathMapTest, LetterCaseOfTheStoredFolderIsNothing) {
    const PathMap map = MapOf({MapPair("c:\\TABLES\\\xC3\x84pfel", "/data/Apples")});
    EXPECT_EQ(Local(map, "C:\\Tables\\\xC3\xA4pfel\\X.VPT"), "/data/Apples/X.VPT");
    // A letter that takes two units of a text.
    const PathMap deseret = MapOf({MapPair("C:\\\xF0\x90\x90\x80", "/d")});
    EXPECT_EQ(Local(deseret, "C:\\\xF0\x90\x90\xA8\\x.vpt"), "/d/x.vpt");
    const PathMap unix_kind = MapOf({MapPair("/Data/Tables", "/mnt")});
    EXPECT_EQ(Local(unix_kind, "/data/tables/x.vpt"), "/mnt/x.vpt");
}

TEST(PathMapTest, BothSeparatorsOfWindowsAreTheSame) {
    const PathMap map = MapOf({MapPair("C:/Tables", "/data/tables")});
    EXPECT_EQ(Local(map, "C:\\Tables/old\\x.vpt"), "/data/tables/old/x.vpt");
    EXPECT_EQ(Local(map, "C:\\\\Tables\\\\x.vpt"), "/data/tables/x.vpt");
}

TEST(PathMapTest, ABackslashIsALetterBelowASlash) {
    const PathMap map = MapOf({MapPair("/old disk", "/new disk")});
    EXPECT_EQ(Local(map, "/old disk/a\\b.vpt"), "/new disk/a\\b.vpt");
    EXPECT_EQ(Local(map, "/old disk\\b.vpt"), "/old disk\\b.vpt");
}

TEST(PathMapTest, RootsAreFoldersToo) {
    const PathMap drive = MapOf({MapPair("C:\\", "/disk")});
    EXPECT_EQ(Local(drive, "c:/x.vpt"), "/disk/x.vpt");
    EXPECT_EQ(Local(drive, "C:x.vpt"), "C:x.vpt");
    const PathMap bare = MapOf({MapPair("D:", "/")});
    EXPECT_EQ(Local(bare, "D:\\t\\x.vpt"), "/t/x.vpt");
    const PathMap root = MapOf({MapPair("/", "/mnt/old")});
    EXPECT_EQ(Local(root, "/t/x.vpt"), "/mnt/old/t/x.vpt");
    EXPECT_EQ(Local(root, "//server/share/x.vpt"), "//server/share/x.vpt");
    EXPECT_EQ(Local(root, "\\\\server\\share\\x.vpt"), "\\\\server\\share\\x.vpt");
    EXPECT_EQ(Local(root, "C:\\x.vpt"), "C:\\x.vpt");
    EXPECT_EQ(Local(root, "x.vpt"), "x.vpt");
}

TEST(PathMapTest, SharesAreRoots) {
    const PathMap map = MapOf({MapPair("\\\\Server\\Tables\\", "/net/tables")});
    EXPECT_EQ(Local(map, "\\\\server\\tables\\old\\x.vpt"), "/net/tables/old/x.vpt");
    EXPECT_EQ(Local(map, "//SERVER/TABLES/x.vpt"), "/net/tables/x.vpt");
    EXPECT_EQ(Local(map, "/server/tables/x.vpt"), "/server/tables/x.vpt");
    EXPECT_EQ(Local(map, "\\\\server\\tables2\\x.vpt"), "\\\\server\\tables2\\x.vpt");
}

TEST(PathMapTest, PairsAreAppliedOnce) {
    const PathMap chain = MapOf({MapPair("/a", "/b"), MapPair("/b", "/c")});
    EXPECT_EQ(Local(chain, "/a/x.vpt"), "/b/x.vpt");
    EXPECT_EQ(Local(chain, "/b/x.vpt"), "/c/x.vpt");
    const PathMap inside = MapOf({MapPair("/a", "/a/a")});
    EXPECT_EQ(Local(inside, "/a/x.vpt"), "/a/a/x.vpt");
    const PathMap self = MapOf({MapPair("/a", "/z"), MapPair("/a/b", "/a/b")});
    EXPECT_EQ(Local(self, "/a/b/x.vpt"), "/a/b/x.vpt");
    EXPECT_EQ(Local(self, "/a/x.vpt"), "/z/x.vpt");
}

TEST(PathMapTest, ANewPathIsStoredAsTheOthersOfItsFolder) {
    const PathMap map = MapOf({MapPair("C:\\", "/disk"), MapPair("C:\\Tables", "/disk/vp/tables")});
    EXPECT_EQ(Stored(map, "/disk/vp/tables/old/x.vpt"), "C:\\Tables\\old\\x.vpt");
    EXPECT_EQ(Stored(map, "/disk/vp/x.vpt"), "C:\\vp\\x.vpt");
    EXPECT_EQ(Stored(map, "/home/x.vpt"), "/home/x.vpt");
    EXPECT_EQ(Stored(map, "/diskette/x.vpt"), "/diskette/x.vpt");
    // Only what is found again.
    EXPECT_EQ(Stored(map, "/disk/a\\b.vpt"), "/disk/a\\b.vpt");
    EXPECT_EQ(Stored(map, "/DISK/x.vpt"), "/DISK/x.vpt");
    EXPECT_EQ(Stored(map, "/disk/tables/x.vpt"), "/disk/tables/x.vpt");
}

TEST(PathMapTest, APathOfWindowsHasItsOwnSeparatorsOnly) {
    const PathMap map = MapOf({MapPair("/data", "D:/My/Tables"), MapPair("C:/T", "/t")});
    EXPECT_EQ(Local(map, "/data/a/x.vpt"), "D:\\My\\Tables\\a\\x.vpt");
    EXPECT_EQ(Local(map, "/data"), "D:\\My\\Tables");
    EXPECT_EQ(Stored(map, "d:\\my\\tables\\a\\x.vpt"), "/data/a/x.vpt");
    EXPECT_EQ(Stored(map, "/t/x.vpt"), "C:\\T\\x.vpt");
}

TEST(PathMapTest, OfTwoNamesOfAFolderTheFirstIsStored) {
    const PathMap map = MapOf({MapPair("D:\\T", "/t"), MapPair("C:\\T", "/t")});
    EXPECT_EQ(Stored(map, "/t/x.vpt"), "D:\\T\\x.vpt");
}

TEST(PathMapTest, EveryStoredPathIsFoundAgain) {
    const PathMap map = MapOf({MapPair("/", "/mnt/old"), MapPair("C:\\T", "/t"),
                               MapPair("\\\\s\\d", "/net"), MapPair("/t", "/mnt/t")});
    for (const char* const local :
         {"/mnt/old/x", "/t/x.vpt", "/net/a/b", "/mnt/t/x", "/mnt/old/t/x"}) {
        const QString stored = map.Stored(QString::fromUtf8(local));
        if (stored != QString::fromUtf8(local)) {
            EXPECT_EQ(map.Local(stored).toStdString(), local);
        }
    }
    EXPECT_EQ(Stored(map, "/t/x.vpt"), "C:\\T\\x.vpt");
    EXPECT_EQ(Stored(map, "/mnt/t/x"), "/t/x");
}

TEST(PathMapTest, WhatIsNoPairIsRefused) {
    const QByteArray temporary = QDir::tempPath().toUtf8();
    const QString long_name = u'/' + QString(kMaxFolderLength, u'a');
    const char* const here = temporary.constData();
    const QString nul = QStringLiteral("/a") + QChar(0);
    for (const PathPair& pair :
         {MapPair("", here), MapPair("/a", ""), MapPair("a", here), MapPair("/a", "a"),
          MapPair("\\a", here), MapPair("\\\\", here), MapPair("C:a", here), MapPair("1:\\", here),
          PathPair{long_name, QDir::tempPath()}, PathPair{QStringLiteral("/a"), long_name},
          PathPair{nul, QDir::tempPath()}, PathPair{QStringLiteral("/a"), nul}})
        EXPECT_EQ(CheckPairs({pair}).code(), base::StatusCode::kInvalidArgument)
            << pair.stored.left(20).toStdString() << " " << pair.here.left(20).toStdString();
    EXPECT_TRUE(CheckPairs({MapPair("C:\\A", here)}).ok());
    EXPECT_FALSE(CheckPairs({MapPair("C:\\A", here), MapPair("c:/a/", here)}).ok());
    std::vector<PathPair> many;
    for (qsizetype i = 0; i <= kMaxPathPairs; ++i)
        many.push_back({QStringLiteral("/%1").arg(i), QDir::tempPath()});
    EXPECT_FALSE(CheckPairs(many).ok());
    many.pop_back();
    EXPECT_TRUE(CheckPairs(many).ok());
}

}  // namespace
}  // namespace catalogue
