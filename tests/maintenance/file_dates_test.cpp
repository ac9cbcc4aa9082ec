#include "maintenance/file_dates.h"

#include "jet/tables/database.h"
#include "maintenance/command_fixture.h"
#include "platform/files.h"

#include <algorithm>

namespace maintenance {
namespace {

class FileDatesTest : public test_support::CommandFixture {
protected:
    QString MakeDatedFile(const QString& name, const QDateTime& time) {
        const QString path = MakeFile(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        EXPECT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
        return path;
    }
    QString FileDate(int id) {
        return Scalar(QStringLiteral("select FileDate from Tables where ID = %1").arg(id));
    }

    const QDateTime modified{QDate(2003, 4, 5), QTime(18, 7, 9)};
};

TEST_F(FileDatesTest, TheQuestionIsAskedInItsOwnWords) {
    prompts.answers = {platform::MessageAnswer::kNo};
    UpdateFileDates(Context());
    EXPECT_EQ(prompts.messages,
              std::vector{(platform::Message{
                  QStringLiteral("Update all file dates?"), QStringLiteral("Update Dates"),
                  platform::MessageIcon::kNone, platform::MessageButtons::kYesNo})});
    EXPECT_EQ(refreshes, 0);
}

TEST_F(FileDatesTest, EveryFilesDateIsStoredToTheSecond) {
    AddTable(MakeDatedFile(QStringLiteral("a.vpt"), modified));
    UpdateFileDates(Context());
    EXPECT_EQ(FileDate(1), QStringLiteral("4/5/2003 6:07:09 PM"));
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(prompts.messages.size(), 1U);
}

TEST_F(FileDatesTest, AMissingFileKeepsItsDate) {
    AddTable(QStringLiteral("/gone.vpt"));
    AddTable(folder.path());
    Execute(QStringLiteral("update Tables set FileDate = #1/2/1999 3:04:05 AM#"));
    UpdateFileDates(Context());
    EXPECT_EQ(FileDate(1), QStringLiteral("1/2/1999 3:04:05 AM"));
    EXPECT_EQ(FileDate(2), QStringLiteral("1/2/1999 3:04:05 AM")) << "a folder is no file";
}

TEST_F(FileDatesTest, OtherColumnsStayAsTheyAre) {
    AddTable(MakeDatedFile(QStringLiteral("a.vpt"), modified));
    Execute(QStringLiteral("update Tables set Notes = 'note', TimesPlayed = 7, Favorite = true"));
    UpdateFileDates(Context());
    EXPECT_EQ(Scalar(QStringLiteral("select Notes & TimesPlayed & Favorite from Tables")),
              Scalar(QStringLiteral("select 'note' & 7 & true from Tables")));
}

TEST_F(FileDatesTest, ProgressEndsWithTheTotal) {
    AddTable(MakeDatedFile(QStringLiteral("a.vpt"), modified));
    UpdateFileDates(Context());
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back(), std::make_pair(std::int64_t{1}, std::int64_t{1}));
}

TEST_F(FileDatesTest, AFileNameThatCannotBeReadIsAnErrorThatIsShown) {
    MakeFileNameMemo();
    AddTable(MakeDatedFile(QStringLiteral("a.vpt"), modified));
    AddTable(QStringLiteral("/") + QString(3000, u'q'));
    DamagePageWith(QString(500, u'q'));
    UpdateFileDates(Context());
    EXPECT_EQ(FileDate(1), QStringLiteral("4/5/2003 6:07:09 PM")) << "rows done before stay done";
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_EQ(prompts.messages[1].icon, platform::MessageIcon::kExclamation);
    EXPECT_EQ(refreshes, 1);
}

// Catalogues of early versions.
TEST_F(FileDatesTest, AColumnOfAnotherTypeBecomesADate) {
    Execute(QStringLiteral("alter table Tables drop column FileDate"));
    Execute(QStringLiteral("alter table Tables add FileDate varchar(50)"));
    AddTable(MakeDatedFile(QStringLiteral("a.vpt"), modified));
    UpdateFileDates(Context());
    EXPECT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(FileDate(1), QStringLiteral("4/5/2003 6:07:09 PM"));
    const auto table = connection->database()->FindTable(u"Tables");
    ASSERT_TRUE(table.ok());
    const auto& columns = (*table)->design().columns;
    const auto column = std::find_if(columns.begin(), columns.end(), [](const auto& candidate) {
        return candidate.name == u"FileDate" || candidate.name == u"filedate";
    });
    ASSERT_NE(column, columns.end());
    EXPECT_EQ(column->type, jet::ColumnType::kDate);
    EXPECT_FALSE(column->required);
}

TEST_F(FileDatesTest, AFileThatThePathMapFindsHasItsDate) {
    MakeDatedFile(QStringLiteral("a.vpt"), modified);
    AddTable(QStringLiteral("C:\\Tables\\A.vpt"));
    MapTablesHere();
    UpdateFileDates(Context());
    EXPECT_EQ(FileDate(1), QStringLiteral("4/5/2003 6:07:09 PM"));
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral("C:\\Tables\\A.vpt"));
}

}  // namespace
}  // namespace maintenance
