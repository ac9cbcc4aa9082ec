#include "snapshots/keep_rules.h"

#include <gtest/gtest.h>

namespace {

using namespace snapshots;

constexpr LocalSeconds kHour = 3600;
constexpr LocalSeconds kDay = 24 * kHour;
constexpr LocalSeconds kStart = 1'767'225'600;  // 2026-01-01 0:00, a Thursday

// Makes a snapshot every hour for so long, with the rules applied after each; the times kept.
std::vector<LocalSeconds> HourlyFor(LocalSeconds seconds) {
    std::vector<KeepCandidate> kept;
    SnapshotNumber number = 0;
    for (LocalSeconds time = 0; time < seconds; time += kHour) {
        kept.push_back({++number, kStart + time, Occasion::kClock});
        const auto numbers = WhichToKeep(kept);
        std::erase_if(kept, [&](const KeepCandidate& candidate) {
            return !numbers.contains(candidate.number);
        });
    }
    std::vector<LocalSeconds> times;
    for (const KeepCandidate& candidate : kept)
        times.push_back(candidate.time - kStart);
    return times;
}

TEST(KeepRulesTest, OfADayEveryHourIsThere) {
    EXPECT_EQ(HourlyFor(kDay).size(), 24U);
}

TEST(KeepRulesTest, AfterAYearThereAreHoursDaysWeeksAndMonths) {
    const auto times = HourlyFor(365 * kDay);
    // 24 hours, which hold the newest of the last day, week and month; 6 days more; 3 weeks more,
    // one of whose ends may be a day that is kept; 11 months more.
    EXPECT_GE(times.size(), 24U + 6U + 2U + 10U);
    EXPECT_LE(times.size(), 24U + 6U + 3U + 11U);
    for (LocalSeconds hour = 1; hour <= 24; ++hour)
        EXPECT_EQ(std::count(times.begin(), times.end(), 365 * kDay - hour * kHour), 1);
    for (LocalSeconds day = 1; day <= 7; ++day)
        EXPECT_EQ(std::count(times.begin(), times.end(), (366 - day) * kDay - kHour), 1);
    // The last hour of January 2026.
    EXPECT_EQ(std::count(times.begin(), times.end(), 31 * kDay - kHour), 1);
    // The last hour of the Sunday three weeks before the last one, 2026-12-13.
    EXPECT_EQ(std::count(times.begin(), times.end(), 347 * kDay - kHour), 1);
}

TEST(KeepRulesTest, WhatWasMadeBeforeACommandIsNotReplacedByTheClock) {
    const auto kept = WhichToKeep({{1, kStart, Occasion::kBeforeCommand},
                                   {2, kStart + 60, Occasion::kClock},
                                   {3, kStart + 120, Occasion::kClock}});
    EXPECT_EQ(kept, (std::set<SnapshotNumber>{1, 3}));
}

TEST(KeepRulesTest, OfThoseBeforeCommandsTheLast24AreKept) {
    std::vector<KeepCandidate> candidates;
    for (SnapshotNumber number = 1; number <= 40; ++number)
        candidates.push_back({number, kStart + number, Occasion::kBeforeCommand});
    const auto kept = WhichToKeep(candidates);
    EXPECT_EQ(kept.size(), 24U);
    EXPECT_EQ(*kept.begin(), 17U);
}

TEST(KeepRulesTest, TheNewestIsTheOneWithTheLargestNumber) {
    // The clock was set back by two years.
    const auto kept = WhichToKeep({{1, kStart, Occasion::kClock},
                                   {2, kStart - 730 * kDay, Occasion::kClock},
                                   {3, kStart - 730 * kDay + 1, Occasion::kClock}});
    EXPECT_EQ(kept, (std::set<SnapshotNumber>{1, 3}));
}

TEST(KeepRulesTest, AnyTimeIsTaken) {
    const auto kept = WhichToKeep(
        {{1, INT64_MAX, Occasion::kClock}, {2, INT64_MIN, Occasion::kClock}, {3, 0, {}}});
    EXPECT_EQ(kept.size(), 3U);
}

}  // namespace
