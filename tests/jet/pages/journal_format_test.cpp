// Records of a journal that somebody else has written, with right checksums and wrong content.
#include "jet/pages/journal_format.h"

#include "base/byte_writer.h"

#include <gtest/gtest.h>

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
