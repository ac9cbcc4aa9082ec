// Blocks that stand elsewhere on a page than before, and what the journal makes of them.
#include "jet/pages/page_move.h"

#include "jet/pages/journal_format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using jet::FindMove;
using jet::PageBytes;
using jet::PageMove;

constexpr std::size_t kPageBytes = 4096;

PageBytes RandomPage(std::uint32_t seed) {
    std::mt19937 random(seed);
    PageBytes page(kPageBytes);
    for (std::size_t i = 0; i < 3000; ++i)
        page[i] = static_cast<std::byte>(random());
    page[2999] = std::byte{1};
    return page;
}

// A page with `size` new bytes at `at`; what stood there goes up.
PageBytes WithInserted(PageBytes page, std::size_t at, std::size_t size) {
    const auto from = page.begin() + static_cast<std::ptrdiff_t>(at);
    page.insert(from, size, std::byte{0x77});
    page.resize(kPageBytes);
    return page;
}

PageBytes WithRemoved(PageBytes page, std::size_t at, std::size_t size) {
    const auto from = page.begin() + static_cast<std::ptrdiff_t>(at);
    page.erase(from, from + static_cast<std::ptrdiff_t>(size));
    page.resize(kPageBytes);
    return page;
}

// The page that the journal's change of `before` leads to.
PageBytes Replayed(const PageBytes& before, const PageBytes& after, std::size_t& bytes) {
    std::vector<std::byte> payload;
    jet::AppendPageChange(payload, 5, before, after);
    bytes = payload.size();
    const jet::JournalPages known{{5, std::make_shared<PageBytes>(before)}};
    const auto pages = jet::ParseTransaction(payload, kPageBytes, 9, known);
    return pages && pages->contains(5) ? *pages->at(5) : PageBytes();
}

TEST(PageMoveTest, BytesBehindAnInsertionMovedUp) {
    const PageBytes before = RandomPage(1);
    const auto move = FindMove(before, WithInserted(before, 700, 23));
    ASSERT_TRUE(move.has_value());
    EXPECT_EQ(*move, (PageMove{700, 723, 2300}));
}

TEST(PageMoveTest, BytesBehindARemovalMovedDown) {
    const PageBytes before = RandomPage(2);
    const auto move = FindMove(before, WithRemoved(before, 700, 23));
    ASSERT_TRUE(move.has_value());
    EXPECT_EQ(*move, (PageMove{723, 700, 2277}));
}

TEST(PageMoveTest, OtherBytesDidNotMove) {
    EXPECT_FALSE(FindMove(RandomPage(3), RandomPage(4)).has_value());
    EXPECT_FALSE(FindMove(RandomPage(3), RandomPage(3)).has_value());
    EXPECT_FALSE(FindMove(PageBytes(kPageBytes), RandomPage(3)).has_value());
}

TEST(PageMoveTest, TheJournalTellsAMoveInFewBytes) {
    const PageBytes before = RandomPage(5);
    for (const std::size_t size : {1, 8, 23, 300}) {
        std::size_t bytes = 0;
        const PageBytes inserted = WithInserted(before, 900, size);
        EXPECT_EQ(Replayed(before, inserted, bytes), inserted);
        EXPECT_LT(bytes, size + 40) << size;
        const PageBytes removed = WithRemoved(before, 900, size);
        EXPECT_EQ(Replayed(before, removed, bytes), removed);
        EXPECT_LT(bytes, size + 40) << size;
    }
}

TEST(PageMoveTest, WhateverChangedIsReplayed) {
    std::mt19937 random(6);
    for (std::uint32_t i = 0; i < 500; ++i) {
        const PageBytes before = RandomPage(i);
        PageBytes after = before;
        for (std::size_t step = random() % 4; step > 0; --step) {
            const std::size_t at = random() % kPageBytes;
            const std::size_t size = 1 + random() % std::min<std::size_t>(600, kPageBytes - at);
            if (random() % 2 == 0)
                after = WithInserted(after, at, size);
            else
                after = WithRemoved(after, at, size);
            after[random() % kPageBytes] = static_cast<std::byte>(random());
        }
        std::size_t bytes = 0;
        ASSERT_EQ(Replayed(before, after, bytes), after) << i;
    }
}

TEST(PageMoveTest, AMoveOutOfThePageIsRefused) {
    const PageBytes before = RandomPage(7);
    std::vector<std::byte> payload;
    jet::AppendPageChange(payload, 5, before, WithInserted(before, 100, 30));
    const jet::JournalPages known{{5, std::make_shared<PageBytes>(before)}};
    ASSERT_TRUE(jet::ParseTransaction(payload, kPageBytes, 9, known).has_value());
    constexpr std::size_t kMoveAt = 8;  // behind page, base and number of ranges
    for (const std::size_t part : {0, 2, 4}) {
        std::vector<std::byte> damaged = payload;
        damaged[kMoveAt + part + 1] = std::byte{0xFF};
        EXPECT_FALSE(jet::ParseTransaction(damaged, kPageBytes, 9, known).has_value()) << part;
    }
    for (std::size_t size = 1; size < payload.size(); ++size)
        EXPECT_FALSE(
            jet::ParseTransaction(std::span(payload).first(size), kPageBytes, 9, known).has_value())
            << size;
}

}  // namespace
