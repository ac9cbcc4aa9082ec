#include "catalogue/local_paths.h"

#include "platform/files.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace catalogue {
namespace {

class LocalPathsTest : public testing::Test {
protected:
    QString Make(const QString& name) {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(path.left(path.lastIndexOf(u'/'))));
        QFile file(path);
        EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write("x") == 1);
        return QDir::toNativeSeparators(path);
    }
    QString In(const char* name) const {
        return QDir::toNativeSeparators(folder.filePath(QLatin1String(name)));
    }
    void Use(const QString& stored, const QString& here) { paths.Use(PathMap({{stored, here}})); }
    void Keep(const QString& text) { settings.values[QStringLiteral("TAVOLO/PATHS/MAP")] = text; }

    QTemporaryDir folder;
    LocalPaths paths;
    test_support::FakeSettings settings;
};

TEST_F(LocalPathsTest, CopiesFollowTheMap) {
    const LocalPaths copy = paths;
    EXPECT_EQ(copy.Of(QStringLiteral("C:\\t\\x")), QStringLiteral("C:\\t\\x"));
    Use(QStringLiteral("C:\\t"), folder.path());
    EXPECT_EQ(copy.Of(QStringLiteral("C:\\t\\x")), In("x"));
    EXPECT_EQ(copy.Stored(In("x")), QStringLiteral("C:\\t\\x"));
}

TEST_F(LocalPathsTest, WhatIsThereAsStoredAndNotWhereTheMapSaysIsTakenAsStored) {
    const QString stored = Make(QStringLiteral("old/x.vpt"));
    Use(In("old"), In("new"));
    EXPECT_EQ(paths.Of(stored), stored);
    const QString here = Make(QStringLiteral("new/x.vpt"));
    EXPECT_EQ(paths.Of(stored), here);
    ASSERT_TRUE(QFile::remove(stored) && QFile::remove(here));
    EXPECT_EQ(paths.Of(stored), here);
}

TEST_F(LocalPathsTest, FoldersAndFilesOfAnotherLetterCaseAreFoundBelowTheFolder) {
    Make(QStringLiteral("Here/Old/Table.VPT"));
    Use(QStringLiteral("C:\\Tables"), folder.filePath(QStringLiteral("Here")));
    const QString stored = QStringLiteral("c:\\TABLES\\old\\table.vpt");
    EXPECT_TRUE(platform::FileExists(paths.Of(stored)));
    const QString exact = Make(QStringLiteral("Here/old/table.vpt"));
    EXPECT_EQ(platform::RealPath(platform::ExistingName(paths.Of(stored))),
              platform::RealPath(exact));
}

TEST_F(LocalPathsTest, ThePairsAreKeptInTheSettings) {
    EXPECT_TRUE(ReadPathPairs(settings).ok());
    const std::vector<PathPair> pairs = {{QStringLiteral("C:\\\"Tables\", \u00e9"),
                                          folder.path() + QStringLiteral("/;#=%20/\U0001F3B1\n/")},
                                         {QStringLiteral("\\\\s\\d"), In("net")},
                                         // A name that is no Unicode text, as Linux has them.
                                         {QStringLiteral("/b"), In("a") + QChar(0xDCE9)}};
    ASSERT_TRUE(WritePathPairs(settings, pairs).ok());
    const auto read = ReadPathPairs(settings);
    ASSERT_TRUE(read.ok()) << read.status().message();
    EXPECT_EQ(*read, pairs);
    EXPECT_TRUE(settings.written.empty());  // nothing among the documented settings
    ASSERT_TRUE(WritePathPairs(settings, {}).ok());
    EXPECT_TRUE(ReadPathPairs(settings).value_or(pairs).empty());
}

TEST_F(LocalPathsTest, WhatCannotBeKeptIsSaid) {
    EXPECT_FALSE(WritePathPairs(settings, {{QString(), QStringLiteral("/a")}}).ok());
    EXPECT_TRUE(settings.values.isEmpty());
    settings.failure = {base::StatusCode::kIoError, "no room"};
    EXPECT_EQ(WritePathPairs(settings, {{QStringLiteral("/b"), In("a")}}).message(), "no room");
}

TEST_F(LocalPathsTest, HostileSettingsAreSaidAndNotUsed) {
    QString many = QStringLiteral("[");
    for (int i = 0; i < 200; ++i)
        many += QStringLiteral("{\"stored\":\"/%1\",\"here\":\"/a\"},").arg(i);
    many.back() = u']';
    for (const QString& text :
         {QStringLiteral("x"), QStringLiteral("{}"), QStringLiteral("[1]"), QStringLiteral("[[]]"),
          QStringLiteral("[{}]"), QStringLiteral("[{\"stored\":1,\"here\":\"/a\"}]"),
          QStringLiteral("[{\"stored\":\"/a\"}]"),
          QStringLiteral("[{\"stored\":\"a\",\"here\":\"/\"}]"),
          QStringLiteral(
              "[{\"stored\":\"/a\",\"here\":\"/b\"},{\"stored\":\"/A/\",\"here\":\"/c\"}]"),
          many, QString(10'000'000, u'['), QString(3000, u'[') + QString(3000, u']')}) {
        Keep(text);
        EXPECT_EQ(ReadPathPairs(settings).status().code(), base::StatusCode::kCorruption)
            << text.left(60).toStdString();
    }
    Keep(QStringLiteral("[]"));
    EXPECT_TRUE(ReadPathPairs(settings).ok());
}

}  // namespace
}  // namespace catalogue
