#include "browser/node_number.h"

#include <gtest/gtest.h>

namespace browser {
namespace {

TEST(NodeNumberTest, TheRootIsOne) {
    EXPECT_EQ(NumberOf(Node{}), 1);
    EXPECT_EQ(NodeAt(1, 0), Node{});
}

TEST(NodeNumberTest, TablesAreSevenApartFromTwo) {
    EXPECT_EQ(NumberOf(Node{0, {}}), 2);
    EXPECT_EQ(NumberOf(Node{1, {}}), 9);
    EXPECT_EQ(NumberOf(Node{99'999, {}}), 2 + 7 * 99'999);
}

TEST(NodeNumberTest, DetailsFollowTheirTable) {
    EXPECT_EQ(NumberOf(Node{0, 0}), 3);
    EXPECT_EQ(NumberOf(Node{0, 5}), 8);
    EXPECT_EQ(NodeAt(8, 1), (Node{0, 5}));
}

TEST(NodeNumberTest, EveryNumberLeadsToTheNodeThatHasIt) {
    constexpr std::size_t kTables = 3;
    for (std::int64_t number = 1; number <= 1 + 7 * 3; ++number) {
        const auto node = NodeAt(number, kTables);
        ASSERT_TRUE(node) << number;
        EXPECT_EQ(NumberOf(*node), number);
    }
}

TEST(NodeNumberTest, StaleNumbersLeadNowhere) {
    EXPECT_EQ(NodeAt(0, 5), std::nullopt);
    EXPECT_EQ(NodeAt(-7, 5), std::nullopt);
    EXPECT_EQ(NodeAt(2, 0), std::nullopt);
    EXPECT_EQ(NodeAt(2 + 7 * 5, 5), std::nullopt);
    EXPECT_EQ(NodeAt(INT64_MAX, 5), std::nullopt);
    EXPECT_EQ(NodeAt(INT64_MIN, 5), std::nullopt);
}

TEST(NodeNumberTest, NumbersPassSixteenAndThirtyTwoBits) {
    constexpr std::size_t kTables = 1'000'000'000;
    const std::int64_t number = NumberOf(Node{kTables - 1, 5});
    EXPECT_EQ(number, 7'000'000'001);
    EXPECT_EQ(NodeAt(number, kTables), (Node{kTables - 1, 5}));
}

}  // namespace
}  // namespace browser
