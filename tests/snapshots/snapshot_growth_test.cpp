// The room that snapshots take in the long run.
#include "snapshots/snapshot_fixture.h"

namespace {

using snapshots::Occasion;

class SnapshotGrowthTest : public test_support::SnapshotFixture {};

TEST_F(SnapshotGrowthTest, AYearOfAHundredEditsADayTakesNotThreeTimesTheFile) {
    constexpr int kRows = 3000;
    constexpr snapshots::LocalSeconds kDay = 24 * kHour;
    std::mt19937 random(2);
    const auto word = [&] {
        std::u16string text;
        for (std::size_t i = 0; i < 8; ++i)
            text += static_cast<char16_t>(u'a' + random() % 26);
        return text;
    };
    Open();
    Execute(u"Delete from Tables");
    Execute(u"Create Index ByName on Tables (Name)");
    for (int i = 0; i < kRows; ++i) {
        std::u16string notes;
        for (int j = 0; j < 25; ++j)
            notes += word() + u' ';
        Execute(u"Insert into Tables (Name, Notes, Played) values ('" + word() + u"', '" + notes +
                u"', 0)");
    }
    std::uint64_t most = 0;
    for (int day = 0; day < 365; ++day) {
        for (int edit = 0; edit < 100; ++edit) {
            const std::u16string row =
                Number(41 + static_cast<int>(random() % static_cast<unsigned>(kRows)));
            const std::u16string change = edit % 10 == 0  ? u"Name = '" + word() + u"'"
                                          : edit % 3 == 0 ? u"Notes = '" + word() + word() + u"'"
                                                          : u"Played = Played + 1";
            Execute(u"Update Tables set " + change + u" where ID = " + row);
        }
        ASSERT_TRUE(connection_->Flush().ok());
        const auto time = day * kDay + kHour * static_cast<int>(random() % 24);
        const bool by_clock = day % 5 != 0;
        Take(time, "Purge", by_clock ? Occasion::kClock : Occasion::kBeforeCommand);
        ASSERT_TRUE(store_->Keep().ok());
        most = std::max(most, BytesOfSnapshots());
    }
    RecordProperty("percent_of_the_file", static_cast<int>(100 * most / Database().size()));
    std::printf("at most %llu bytes for a file of %llu\n", static_cast<unsigned long long>(most),
                static_cast<unsigned long long>(Database().size()));
    EXPECT_LT(most, 3 * Database().size());
    EXPECT_GE(List().size(), 40U);
    Close();
}

}  // namespace
