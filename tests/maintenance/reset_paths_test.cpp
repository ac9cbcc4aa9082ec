#include "maintenance/reset_paths.h"

#include "support/catalogue_fixture.h"
#include "support/told_runner.h"

#include <utility>
#include <vector>

namespace maintenance {
namespace {

class ResetPathsTest : public test_support::CatalogueFixture {
protected:
    void Add(const QString& column, const QString& path) {
        Execute(QStringLiteral("insert into Tables (DisplayName, %1) values ('t', '%2')")
                    .arg(column, path));
    }
    QString Path(const QString& column, int id = 1) {
        return Scalar(QStringLiteral("select %1 from Tables where ID = %2").arg(column).arg(id));
    }
    void Change(const QString& kind, const QString& existing, const QString& next) {
        const auto done = ResetPaths(catalogue, prompts, kind, existing, next);
        EXPECT_TRUE(done.ok()) << done.message();
    }
    // What FileName `stored` becomes.
    QString Moved(const QString& stored, const QString& existing, const QString& next) {
        Add(QStringLiteral("FileName"), stored);
        Change(QStringLiteral("Table"), existing, next);
        return Path(QStringLiteral("FileName"));
    }
};

TEST_F(ResetPathsTest, ProgressCountsEveryRowAndEnds) {
    for (int i = 0; i < 4; ++i)
        Add(QStringLiteral("FileName"), QStringLiteral("C:\\Tables\\%1.vpt").arg(i));
    test_support::ToldRunner runner;
    catalogue.runner = &runner;
    runner.stops_at = 0;  // it is not stopped
    const auto done = ResetPaths(catalogue, prompts, QStringLiteral("Table"),
                                 QStringLiteral("C:\\Tables"), QStringLiteral("D:\\VP"));
    ASSERT_TRUE(done.ok()) << done.message();
    EXPECT_EQ(runner.progress,
              (std::vector<std::pair<std::int64_t, std::int64_t>>{{1, 4}, {2, 4}, {3, 4}, {4, 4}}));
    EXPECT_EQ(Scalar(QStringLiteral("Select Count(*) from Tables where FileName like 'D:\\VP\\%'")),
              QStringLiteral("4"));
}

TEST_F(ResetPathsTest, TheFolderMatchesWithoutRegardToLetterCase) {
    EXPECT_EQ(Moved(QStringLiteral("c:\\tables\\Foo.vpt"), QStringLiteral("C:\\Tables"),
                    QStringLiteral("D:\\VP\\")),
              QStringLiteral("D:\\VP\\Foo.vpt"));
}

TEST_F(ResetPathsTest, ASubfolderStaysAsItIs) {
    EXPECT_EQ(Moved(QStringLiteral("C:\\Tables\\Old\\Bar.vpt"), QStringLiteral("C:\\Tables"),
                    QStringLiteral("D:\\VP\\")),
              QStringLiteral("C:\\Tables\\Old\\Bar.vpt"));
}

TEST_F(ResetPathsTest, AFolderThatOnlyBeginsAlikeStaysAsItIs) {
    EXPECT_EQ(Moved(QStringLiteral("C:\\Tables2\\Bar.vpt"), QStringLiteral("C:\\Tables"),
                    QStringLiteral("D:\\VP\\")),
              QStringLiteral("C:\\Tables2\\Bar.vpt"));
}

TEST_F(ResetPathsTest, AWindowsFolderBecomesALinuxFolder) {
    EXPECT_EQ(Moved(QStringLiteral("C:\\Tables\\Foo.vpt"), QStringLiteral("C:\\Tables\\"),
                    QStringLiteral("/home/user/tables/")),
              QStringLiteral("/home/user/tables/Foo.vpt"));
}

TEST_F(ResetPathsTest, ALinuxFolderGetsItsOwnSeparator) {
    EXPECT_EQ(
        Moved(QStringLiteral("/mnt/a/Foo.vpt"), QStringLiteral("/mnt/a"), QStringLiteral("/mnt/b")),
        QStringLiteral("/mnt/b/Foo.vpt"));
}

TEST_F(ResetPathsTest, BlanksAroundAFolderAreNotTrimmed) {
    EXPECT_EQ(Moved(QStringLiteral("C:\\Tables\\Foo.vpt"), QStringLiteral(" C:\\Tables"),
                    QStringLiteral("D:\\VP")),
              QStringLiteral("C:\\Tables\\Foo.vpt"));
}

TEST_F(ResetPathsTest, ApostrophesAndUmlautsAreMoved) {
    EXPECT_EQ(Moved(QStringLiteral("C:\\Bob''s\\Grüße.vpt"), QStringLiteral("c:\\BOB's"),
                    QStringLiteral("/home/ä's")),
              QStringLiteral("/home/ä's/Grüße.vpt"));
}

TEST_F(ResetPathsTest, TheEndIsSaid) {
    Moved(QStringLiteral("C:\\Tables\\Foo.vpt"), QStringLiteral("C:\\Tables"),
          QStringLiteral("D:\\VP"));
    EXPECT_EQ(prompts.messages,
              std::vector{(platform::Message{
                  QStringLiteral("Paths Changed"), QStringLiteral("Reset Paths"),
                  platform::MessageIcon::kInformation, platform::MessageButtons::kOk})});
}

TEST_F(ResetPathsTest, AnEmptyCatalogueIsQuiet) {
    Change(QStringLiteral("Table"), QStringLiteral("C:\\Tables"), QStringLiteral("D:\\VP"));
    EXPECT_TRUE(prompts.messages.empty());
}

struct Kind {
    QString kind;
    QString column;
};

class PathKindTest : public ResetPathsTest, public testing::WithParamInterface<Kind> {};

TEST_P(PathKindTest, RewritesItsColumnOnly) {
    Execute(QStringLiteral("insert into Tables (DisplayName, FileName, ImageFile, FlyerFile, "
                           "RulesFile) values ('t', 'C:\\a\\t.vpt', 'C:\\a\\i.jpg', "
                           "'C:\\a\\f.jpg', 'C:\\a\\r.jpg')"));
    Change(GetParam().kind, QStringLiteral("C:\\a"), QStringLiteral("D:\\b"));
    for (const char* column : {"FileName", "ImageFile", "FlyerFile", "RulesFile"}) {
        const QString name = QString::fromLatin1(column);
        EXPECT_EQ(Path(name).startsWith(u"D:\\b\\"), name == GetParam().column) << column;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PathKindTest,
    testing::Values(Kind{QStringLiteral("Table"), QStringLiteral("FileName")},
                    Kind{QStringLiteral("Picture"), QStringLiteral("ImageFile")},
                    Kind{QStringLiteral("Flyer"), QStringLiteral("FlyerFile")},
                    Kind{QStringLiteral("Rules"), QStringLiteral("RulesFile")}),
    [](const auto& tested) { return tested.param.kind.toStdString(); });

TEST_F(ResetPathsTest, ANullPathIsSkipped) {
    Execute(QStringLiteral("insert into Tables (DisplayName) values ('t')"));
    Add(QStringLiteral("ImageFile"), QStringLiteral("C:\\a\\i.jpg"));
    Change(QStringLiteral("Picture"), QStringLiteral("C:\\a"), QStringLiteral("D:\\b"));
    EXPECT_EQ(Scalar(QStringLiteral("select count(*) from Tables where isnull(ImageFile)")),
              QStringLiteral("1"));
    EXPECT_EQ(Path(QStringLiteral("ImageFile"), 2), QStringLiteral("D:\\b\\i.jpg"));
}

TEST_F(ResetPathsTest, AnUnknownKindIsAnError) {
    const auto done = ResetPaths(catalogue, prompts, QStringLiteral("table"), QStringLiteral("a"),
                                 QStringLiteral("b"));
    EXPECT_EQ(done.code(), base::StatusCode::kInvalidArgument);
}

TEST_F(ResetPathsTest, APathThatDoesNotFitKeepsTheRowsChangedBefore) {
    Add(QStringLiteral("FileName"), QStringLiteral("C:\\a\\short.vpt"));
    Add(QStringLiteral("FileName"), QStringLiteral("C:\\a\\") + QString(200, u'x'));
    const auto done =
        ResetPaths(catalogue, prompts, QStringLiteral("Table"), QStringLiteral("C:\\a"),
                   QStringLiteral("D:\\") + QString(100, u'y'));
    EXPECT_FALSE(done.ok());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_TRUE(Path(QStringLiteral("FileName"), 1).startsWith(u"D:\\y"));
    EXPECT_TRUE(Path(QStringLiteral("FileName"), 2).startsWith(u"C:\\a\\x"));
}

}  // namespace
}  // namespace maintenance
