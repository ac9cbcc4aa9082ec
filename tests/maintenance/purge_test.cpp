#include "maintenance/purge.h"

#include "maintenance/command_fixture.h"

#include <QtCore/QDir>

namespace maintenance {
namespace {

using PurgeTest = test_support::CommandFixture;

TEST_F(PurgeTest, TheQuestionIsAskedInItsOwnWords) {
    prompts.answers = {platform::MessageAnswer::kNo};
    PurgeMissingTables(Context());
    EXPECT_EQ(prompts.messages,
              std::vector{(platform::Message{
                  QStringLiteral(
                      "This function will remove all tables that cannot befound from the database\r"
                      "Use the RESET PATHS function If you have simply moved your files to a new "
                      "location\rAre you sure you want to continue?"),
                  QStringLiteral("Warning"), platform::MessageIcon::kExclamation,
                  platform::MessageButtons::kYesNo, true})});
}

TEST_F(PurgeTest, NoChangesNothing) {
    AddTable(QStringLiteral("/gone.vpt"));
    prompts.answers = {platform::MessageAnswer::kNo};
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
    EXPECT_EQ(refreshes, 0);
}

TEST_F(PurgeTest, MissingTablesGoAndTheOthersStay) {
    const QString kept = MakeFile(QStringLiteral("kept.vpt"));
    AddTable(QStringLiteral("/gone.vpt"));
    AddTable(kept);
    AddTable(QStringLiteral("C:\\Tables\\Foo.vpt"));
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")), kept);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(prompts.messages.size(), 1U) << "one confirmation covers all";
}

TEST_F(PurgeTest, ATableKeepsItsRowWhenItsPicturesAreGone) {
    AddTable(MakeFile(QStringLiteral("kept.vpt")));
    Execute(QStringLiteral("update Tables set ImageFile = '/gone.jpg', FlyerFile = '/gone.jpg'"));
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
}

TEST_F(PurgeTest, AFolderAnEmptyTextAndNullNameNoFile) {
    QDir(folder.path()).mkdir(QStringLiteral("folder.vpt"));
    AddTable(folder.filePath(QStringLiteral("folder.vpt")));
    AddTable(QString());
    Execute(QStringLiteral("insert into Tables (DisplayName) values ('null')"));
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("0"));
}

TEST_F(PurgeTest, AnEmptyTableFileIsAFile) {
    AddTable(MakeFile(QStringLiteral("empty.vpt"), {}));
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
}

TEST_F(PurgeTest, AnEmptyCatalogueIsRebuiltAllTheSame) {
    PurgeMissingTables(Context());
    EXPECT_EQ(refreshes, 1);
}

TEST_F(PurgeTest, ProgressCountsEveryRowAndEnds) {
    for (int i = 0; i < 3000; ++i)
        AddTable(QStringLiteral("/gone%1.vpt").arg(i));
    PurgeMissingTables(Context());
    EXPECT_GT(events.rounds, 0);
    ASSERT_FALSE(progress.empty());
    EXPECT_LE(progress.size(), 101U);
    EXPECT_EQ(progress.back(), std::make_pair(std::int64_t{3000}, std::int64_t{3000}));
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(RowCount(), QStringLiteral("0"));
}

TEST_F(PurgeTest, ADatabaseErrorIsShown) {
    ASSERT_TRUE(connection->Close().ok());
    PurgeMissingTables(Context());
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_FALSE(prompts.messages[1].text.isEmpty());
}

// A name that cannot be read is no missing file.
TEST_F(PurgeTest, ARowWhoseFileNameCannotBeReadStaysAndTheErrorIsShown) {
    MakeFileNameMemo();
    AddTable(QStringLiteral("/gone.vpt"));
    AddTable(QStringLiteral("/") + QString(3000, u'q'));
    AddTable(QStringLiteral("/gone too.vpt"));
    DamagePageWith(QString(500, u'q'));
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("2")) << "rows already deleted stay deleted";
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_FALSE(prompts.messages[1].text.isEmpty());
    EXPECT_EQ(prompts.messages[1].icon, platform::MessageIcon::kExclamation);
    EXPECT_EQ(refreshes, 1);
}

TEST_F(PurgeTest, AFileInOtherLetterCaseIsThere) {
    MakeFile(QStringLiteral("kept.vpt"));
    AddTable(folder.filePath(QStringLiteral("KEPT.VPT")));
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
}

TEST_F(PurgeTest, WhatThePathMapFindsStays) {
    MakeFile(QStringLiteral("Kept.vpt"));
    AddTable(QStringLiteral("c:\\tables\\KEPT.vpt"));
    AddTable(QStringLiteral("C:\\Tables\\gone.vpt"));
    MapTablesHere();
    PurgeMissingTables(Context());
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral("c:\\tables\\KEPT.vpt"));
}

}  // namespace
}  // namespace maintenance
