#include "jet/sql/plans/key_sorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

using jet::sql::KeySorter;
using Order = std::vector<std::uint32_t>;

Order OrderOf(const std::vector<std::string>& keys) {
    KeySorter sorter;
    for (const std::string& key : keys)
        sorter.Add(key);
    return sorter.Order();
}

// What a stable sort of the library makes of them.
Order ExpectedOrder(const std::vector<std::string>& keys) {
    Order order(keys.size());
    std::iota(order.begin(), order.end(), 0U);
    std::ranges::stable_sort(order, [&](auto a, auto b) { return keys[a] < keys[b]; });
    return order;
}

TEST(KeySorterTest, NoKeysHaveAnEmptyOrder) {
    EXPECT_TRUE(OrderOf({}).empty());
}

TEST(KeySorterTest, KeysThatDifferBehindACommonBeginningAreOrdered) {
    const std::string common(21, 'x');
    EXPECT_EQ(OrderOf({common + "b", common + "a", common, common + "ab"}), (Order{2, 1, 3, 0}));
}

TEST(KeySorterTest, EqualKeysKeepTheOrderInWhichTheyCame) {
    const std::string key = "the same key for many rows";
    EXPECT_EQ(OrderOf({key, "a", key, key, "z", key}), (Order{1, 0, 2, 3, 5, 4}));
    Order as_they_came(1000);
    std::iota(as_they_came.begin(), as_they_came.end(), 0U);
    EXPECT_EQ(OrderOf(std::vector(1000, key)), as_they_came);
}

TEST(KeySorterTest, AKeyThatEndsComesBeforeOneThatGoesOnWithZeros) {
    using namespace std::string_literals;
    EXPECT_EQ(
        OrderOf({"abc\0\0"s, "abc"s, "abc\0"s, "abc\0\0\0\0\0\0"s, "abcdefgh\0"s, "abcdefgh"s}),
        (Order{1, 2, 0, 3, 5, 4}));
}

TEST(KeySorterTest, BytesAbove127ComeLast) {
    EXPECT_EQ(OrderOf({"\xFF", "\x7F", "\x80"}), (Order{1, 2, 0}));
}

TEST(KeySorterTest, ManyKeysAreInTheOrderOfAStableSort) {
    std::mt19937 random(3);
    std::vector<std::string> keys;
    for (int i = 0; i < 20000; ++i) {
        std::string key = random() % 4 == 0 ? "Company " : "Company and more ";
        key += std::to_string(random() % 40);
        key.append(random() % 3, '\0');
        if (random() % 2 == 0) key += "Table number " + std::to_string(random() % 5000);
        for (std::size_t n = random() % 4; n > 0; --n)
            key += static_cast<char>(random());
        keys.push_back(std::move(key));
    }
    EXPECT_EQ(OrderOf(keys), ExpectedOrder(keys));
}

}  // namespace
