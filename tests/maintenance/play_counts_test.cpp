#include "maintenance/play_counts.h"

#include "maintenance/command_fixture.h"

namespace maintenance {
namespace {

class PlayCountsTest : public test_support::CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        for (int i = 0; i < 3; ++i)
            AddTable(QStringLiteral("/t.vpt"));
        Execute(QStringLiteral("update Tables set TimesPlayed = 4, LastPlayed = #1/2/2003#"));
        Execute(QStringLiteral("update Tables set TimesPlayed = NULL where ID = 3"));
    }
    QString CountWhere(const QString& condition) {
        return Scalar(QStringLiteral("select count(*) from Tables where ") + condition);
    }
};

TEST_F(PlayCountsTest, TheQuestionIsAskedInItsOwnWordsAndNoChangesNothing) {
    prompts.answers = {platform::MessageAnswer::kNo};
    ResetTimesPlayed(Context());
    EXPECT_EQ(prompts.messages,
              std::vector{(platform::Message{
                  QStringLiteral("This function sets the number of times played for all tables "
                                 "back to 0\rAre you sure you want to continue?"),
                  QStringLiteral("Warning"), platform::MessageIcon::kExclamation,
                  platform::MessageButtons::kYesNo, true})});
    EXPECT_EQ(CountWhere(QStringLiteral("TimesPlayed = 4")), QStringLiteral("2"));
    EXPECT_EQ(refreshes, 0);
}

TEST_F(PlayCountsTest, EveryRowIsNeverPlayed) {
    ResetTimesPlayed(Context());
    EXPECT_EQ(CountWhere(QStringLiteral("TimesPlayed = 0")), QStringLiteral("3"));
    EXPECT_EQ(CountWhere(QStringLiteral("isnull(LastPlayed)")), QStringLiteral("3"));
    EXPECT_EQ(refreshes, 1);
}

TEST_F(PlayCountsTest, ItTellsHowManyRowsAreDoneAndIsNotStopped) {
    runner.stops_at = 0;
    ResetTimesPlayed(Context());
    ASSERT_EQ(runner.runs.size(), 1U);
    EXPECT_EQ(runner.runs.front().what, QStringLiteral("Reset Times Played"));
    ASSERT_FALSE(runner.progress.empty());
    EXPECT_EQ(runner.progress.front(), (std::pair<std::int64_t, std::int64_t>(0, 3)));
    EXPECT_EQ(CountWhere(QStringLiteral("TimesPlayed = 0")), QStringLiteral("3"));
    // Nobody watches the statements after it.
    Execute(QStringLiteral("update Tables set TimesPlayed = 4"));
    EXPECT_EQ(runner.progress.back().second, 3);
}

}  // namespace
}  // namespace maintenance
