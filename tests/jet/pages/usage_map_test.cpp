// A set of pages in a map row: where the row begins and ends, how it grows, what it gives back.
#include "jet/pages/data_page.h"
#include "jet/pages/usage_map.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

constexpr PageNumber kPages = 5100;
constexpr PageNumber kMapPage = 2;

// A file in memory; page 1 has the map of free pages, page 2 the maps of a test.
class UsageMapTest : public testing::TestWithParam<int> {
protected:
    void Make(PageNumber pages, const std::vector<std::vector<std::byte>>& maps) {
        std::vector<std::byte> bytes(std::size_t{pages} * format_.page_size);
        const auto page = [&](std::size_t number) {
            return std::span(bytes).subspan(number * format_.page_size, format_.page_size);
        };
        DataPageEditor global = DataPageEditor::Create(page(1), format_, 1);
        global.Append(Inline(0, kPages / 32 + 2, {}), 0);
        DataPageEditor own = DataPageEditor::Create(page(kMapPage), format_, 1);
        for (const auto& map : maps)
            own.Append(map, 0);
        store_ = MakeMemoryPageStore(format_.page_size, std::move(bytes));
        allocator_.emplace(*store_, format_);
        ASSERT_TRUE(store_->Begin().ok());
    }
    static std::vector<std::byte> Inline(PageNumber first, std::size_t words,
                                         const std::vector<PageNumber>& members) {
        std::vector<std::byte> row(5 + 4 * words);
        base::StoreLittle(row.data() + 1, first);
        for (const PageNumber page : members)
            row[5 + (page - first) / 8] |= static_cast<std::byte>(1U << (page - first) % 8);
        return row;
    }
    UsageMap Map(std::uint8_t row) { return UsageMap(*store_, format_, RowPointer{kMapPage, row}); }
    std::vector<std::byte> MapRow(std::uint8_t row) {
        const PageView page = store_->Read(kMapPage).value();
        const auto bytes = DataPage::Parse(page.bytes(), format_)->Bytes(row).value();
        return {bytes.begin(), bytes.end()};
    }
    void Add(PageNumber page) {
        const base::Status added = Map(0).Add(page, *allocator_);
        ASSERT_TRUE(added.ok()) << added.message();
    }
    std::vector<PageNumber> Members() { return Map(0).Members().value(); }

    const Format& format_ = FormatOf(GetParam());
    std::unique_ptr<PageStore> store_;
    std::optional<PageAllocator> allocator_;
};

using Pages = std::vector<PageNumber>;

TEST_P(UsageMapTest, PagesPastTheEndOfTheFileAreNoMembers) {
    Make(40, {Inline(0, 16, {38, 39, 40, 511})});
    EXPECT_EQ(Members(), (Pages{38, 39}));
}

// Behind a row stands the row before it, which begins with a set bit here.
TEST_P(UsageMapTest, ARowAnswersForItsOwnBitsOnly) {
    Make(1000, {{std::byte{1}, std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0}},
                Inline(8, 16, {8, 519})});
    EXPECT_TRUE(Map(1).Contains(8).value());
    EXPECT_TRUE(Map(1).Contains(519).value());
    EXPECT_FALSE(Map(1).Contains(7).value());
    EXPECT_FALSE(Map(1).Contains(520).value());
}

TEST_P(UsageMapTest, RemovingWhatIsNoMemberDoesNothing) {
    Make(1000, {Inline(8, 16, {100})});
    const auto before = MapRow(0);
    for (const PageNumber page : {7U, 99U, 520U, 900U})
        EXPECT_TRUE(Map(0).Remove(page).ok()) << page;
    EXPECT_EQ(MapRow(0), before);
    ASSERT_TRUE(Map(0).Remove(100).ok());
    EXPECT_EQ(Members(), Pages{});
}

TEST_P(UsageMapTest, TheFirstBitStandsForAPageThatEightDivides) {
    Make(kPages, {Inline(0, 16, {})});
    Add(1003);
    EXPECT_EQ(MapRow(0), Inline(1000, 16, {1003}));
    EXPECT_EQ(Members(), Pages{1003});
}

TEST_P(UsageMapTest, ARowGrowsBeforeItNeedsPagesOfItsOwn) {
    Make(kPages, {Inline(8, 16, {8})});
    Add(1008);
    EXPECT_EQ(MapRow(0), Inline(8, 32, {8, 1008}));
    EXPECT_EQ(store_->page_count(), kPages);
    Add(kPages - 1);
    EXPECT_EQ(MapRow(0)[0], std::byte{1});
    EXPECT_EQ(Members(), (Pages{8, 1008, kPages - 1}));
}

TEST_P(UsageMapTest, ReleaseGivesThePagesOfTheBitsBack) {
    Make(kPages, {Inline(0, 16, {8})});
    Add(kPages - 1);
    EXPECT_EQ(store_->page_count(), kPages + 1);
    EXPECT_FALSE(allocator_->IsFree(kPages).value());
    ASSERT_TRUE(Map(0).Release(*allocator_).ok());
    EXPECT_TRUE(allocator_->IsFree(kPages).value());
    EXPECT_EQ(Members(), Pages{});
}

INSTANTIATE_TEST_SUITE_P(Versions, UsageMapTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

}  // namespace
}  // namespace jet
