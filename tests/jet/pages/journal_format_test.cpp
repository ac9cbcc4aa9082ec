// Records of a journal that somebody else has written, with right checksums and wrong content.
#include "jet/pages/journal_format.h"

#include "base/byte_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using jet::JournalPages;

constexpr std::uint32_t kPageSize = 4096;
constexpr jet::PageNumber kPages = 5;

struct Range {
    std::uint16_t offset;
    std::uint16_t size;
};

std::vector<std::byte> Change(std::uint32_t page, std::uint16_t base,
                              const std::vector<std::uint16_t>& move,
                              const std::vector<Range>& ranges) {
    std::vector<std::byte> payload;
    base::AppendLittle(payload, page);
    base::AppendLittle(payload, base);
    base::AppendLittle(payload, static_cast<std::uint16_t>(ranges.size()));
    for (const std::uint16_t number : move)
        base::AppendLittle(payload, number);
    for (const Range& range : ranges) {
        base::AppendLittle(payload, range.offset);
        base::AppendLittle(payload, range.size);
        payload.resize(payload.size() + range.size, std::byte{7});
    }
    return payload;
}

bool IsTaken(const std::vector<std::byte>& payload) {
    JournalPages known;
    known[2] = std::make_shared<jet::PageBytes>(kPageSize);
    return jet::ParseTransaction(payload, kPageSize, kPages, known).has_value();
}

TEST(JournalFormatTest, APagePastTheEndIsRefused) {
    EXPECT_TRUE(IsTaken(Change(4, 0, {}, {{0, 8}})));
    EXPECT_FALSE(IsTaken(Change(5, 0, {}, {{0, 8}})));
}

TEST(JournalFormatTest, ARangePastTheEndOfThePageIsRefused) {
    EXPECT_TRUE(IsTaken(Change(1, 0, {}, {{4088, 8}})));
    EXPECT_FALSE(IsTaken(Change(1, 0, {}, {{4089, 8}})));
    EXPECT_FALSE(IsTaken(Change(1, 0, {}, {{4097, 0}})));
    EXPECT_FALSE(IsTaken(Change(1, 0, {}, {{0, 8}, {4000, 200}})));
}

TEST(JournalFormatTest, AChangeOfAPageThatIsNotKnownIsRefused) {
    EXPECT_TRUE(IsTaken(Change(2, 1, {}, {{0, 8}})));
    EXPECT_FALSE(IsTaken(Change(1, 1, {}, {{0, 8}})));
    EXPECT_FALSE(IsTaken(Change(2, 3, {}, {{0, 8}})));
}

TEST(JournalFormatTest, AChangeInTheFileBuildsOnWhatTheFileHas) {
    const auto payload = Change(3, 3, {}, {{16, 8}});
    auto page = std::make_shared<jet::PageBytes>(kPageSize, std::byte{5});
    const JournalPages of_file{{3, page}};
    const auto changed = jet::ParseTransaction(payload, kPageSize, kPages, {}, of_file);
    ASSERT_TRUE(changed.has_value());
    jet::PageBytes expected = *page;
    std::fill_n(expected.begin() + 16, 8, std::byte{7});
    EXPECT_EQ(*changed->at(3), expected);
    // Once in a journal: from then on the journal has the page.
    EXPECT_FALSE(jet::ParseTransaction(payload, kPageSize, kPages, of_file, of_file).has_value());
    EXPECT_FALSE(jet::ParseTransaction(payload, kPageSize, kPages, {}, {}).has_value());
}

TEST(JournalFormatTest, ThePagesOfTheFileAreNamedBeforeTheyAreNeeded) {
    std::vector<std::byte> payload = Change(3, 3, {}, {{16, 8}, {40, 100}});
    for (const auto& more : {Change(2, 2, {100, 200, 50}, {{10, 8}}), Change(4, 3, {}, {}),
                             Change(1, 0, {}, {{0, 9}}), Change(2, 3, {}, {{10, 8}})})
        payload.insert(payload.end(), more.begin(), more.end());
    EXPECT_EQ(jet::PagesOfFileIn(payload), (std::vector<jet::PageNumber>{3, 4, 2}));
    for (std::size_t size = 0; size < payload.size(); ++size)
        EXPECT_LE(jet::PagesOfFileIn(std::span(payload).first(size)).size(), 2U) << size;
}

// A power cut leaves each sector of a page that was being written as it was, or as it was to be.
TEST(JournalFormatTest, ChangesInTheFileMakeATornPageWhole) {
    constexpr std::size_t kSector = 512;
    std::mt19937 random(9);
    for (int round = 0; round < 200; ++round) {
        std::vector<jet::PageBytes> states(1, jet::PageBytes(kPageSize));
        for (std::byte& byte : states[0])
            byte = static_cast<std::byte>(random());
        std::vector<std::vector<std::byte>> payloads;
        for (int change = 0; change < 4; ++change) {
            jet::PageBytes after = states.back();
            for (std::size_t edits = 1 + random() % 5; edits > 0; --edits) {
                const std::size_t at = random() % kPageSize;
                const std::size_t end = std::min<std::size_t>(kPageSize, at + 1 + random() % 90);
                for (std::size_t i = at; i < end; ++i)
                    after[i] = static_cast<std::byte>(random() % 4);
            }
            ASSERT_TRUE(jet::AppendChangeInFile(payloads.emplace_back(), 1, change > 0,
                                                states.back(), after, 9999));
            states.push_back(std::move(after));
        }
        auto torn = std::make_shared<jet::PageBytes>(kPageSize);
        for (std::size_t at = 0; at < kPageSize; at += kSector) {
            const jet::PageBytes& state = states[random() % states.size()];
            std::copy_n(state.begin() + static_cast<std::ptrdiff_t>(at), kSector,
                        torn->begin() + static_cast<std::ptrdiff_t>(at));
        }
        const JournalPages of_file{{1, torn}};
        JournalPages known;
        for (const auto& payload : payloads) {
            auto changed = jet::ParseTransaction(payload, kPageSize, kPages, known, of_file);
            ASSERT_TRUE(changed.has_value());
            known = std::move(*changed);
        }
        ASSERT_TRUE(*known.at(1) == states.back()) << round;
    }
}

TEST(JournalFormatTest, AChangeThatTakesTooMuchIsNotBegun) {
    const jet::PageBytes before(kPageSize);
    const jet::PageBytes after(kPageSize, std::byte{1});
    std::vector<std::byte> bytes(3);
    EXPECT_FALSE(jet::AppendChangeInFile(bytes, 1, false, before, after, kPageSize));
    EXPECT_EQ(bytes.size(), 3U);
    EXPECT_TRUE(jet::AppendChangeInFile(bytes, 1, false, before, after, kPageSize + 12));
    EXPECT_EQ(bytes.size(), 3U + kPageSize + 12);
}

TEST(JournalFormatTest, JournalsOfEarlierVersionsAreRead) {
    constexpr std::size_t kVersionAt = 16;
    constexpr std::size_t kChecksumAt = 40;
    std::vector<std::byte> bytes;
    jet::AppendJournalHeader(bytes, {kPageSize, 5, kPages, jet::PageBytes(kPageSize)});
    for (const std::uint32_t version : {0, 1, 2, 3, 4, 5}) {
        base::StoreLittle(bytes.data() + kVersionAt, version);
        const std::span header = std::span(bytes).first(kChecksumAt);
        const auto page = std::span(bytes).subspan(jet::kJournalHeaderSize);
        base::StoreLittle(bytes.data() + kChecksumAt,
                          jet::JournalChecksum(jet::JournalChecksum(0, header), page));
        EXPECT_EQ(jet::ParseJournalHeader(bytes).has_value(), version >= 1 && version <= 4)
            << version;
    }
}

TEST(JournalFormatTest, AMoveOutOfThePageIsRefused) {
    EXPECT_TRUE(IsTaken(Change(2, 2, {100, 3996, 100}, {})));
    EXPECT_FALSE(IsTaken(Change(2, 2, {100, 3997, 100}, {})));
    EXPECT_FALSE(IsTaken(Change(2, 2, {3997, 100, 100}, {})));
    EXPECT_FALSE(IsTaken(Change(1, 2, {100, 200, 100}, {})));
}

TEST(JournalFormatTest, ACutChangeIsRefused) {
    const auto whole = Change(2, 2, {100, 200, 50}, {{10, 8}});
    ASSERT_TRUE(IsTaken(whole));
    for (std::size_t size = 1; size < whole.size(); ++size)
        EXPECT_FALSE(IsTaken({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}))
            << size;
}

}  // namespace
