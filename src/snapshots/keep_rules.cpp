#include "snapshots/keep_rules.h"

#include <algorithm>
#include <chrono>

namespace snapshots {
namespace {

using Days = std::chrono::sys_days;

Days DayOf(LocalSeconds time) {
    return std::chrono::floor<std::chrono::days>(
        std::chrono::sys_seconds(std::chrono::seconds(time)));
}

std::int64_t HourNumber(LocalSeconds time) {
    return std::chrono::floor<std::chrono::hours>(std::chrono::seconds(time)).count();
}
std::int64_t DayNumber(LocalSeconds time) {
    return DayOf(time).time_since_epoch().count();
}
// Weeks begin on Monday; 1970-01-01 was a Thursday.
std::int64_t WeekNumber(LocalSeconds time) {
    return std::chrono::floor<std::chrono::weeks>(DayOf(time).time_since_epoch() +
                                                  std::chrono::days(3))
        .count();
}
std::int64_t MonthNumber(LocalSeconds time) {
    const std::chrono::year_month_day date(DayOf(time));
    return std::int64_t{static_cast<int>(date.year())} * 12 + static_cast<unsigned>(date.month());
}

// A clock that is far off must not stop the count.
LocalSeconds Within(LocalSeconds time) {
    constexpr LocalSeconds kMost = 900'000'000'000;  // 28,500 years
    return std::clamp(time, -kMost, kMost);
}

}  // namespace

std::set<SnapshotNumber> WhichToKeep(std::vector<KeepCandidate> candidates) {
    std::ranges::sort(candidates, std::greater(), &KeepCandidate::number);
    std::set<SnapshotNumber> kept;
    const auto keep_newest_of = [&](std::int64_t (*period_of)(LocalSeconds), std::size_t most) {
        std::set<std::int64_t> periods;
        for (const KeepCandidate& candidate : candidates) {
            if (periods.size() == most) break;
            if (periods.insert(period_of(Within(candidate.time))).second)
                kept.insert(candidate.number);
        }
    };
    keep_newest_of(HourNumber, kKeptHours);
    keep_newest_of(DayNumber, kKeptDays);
    keep_newest_of(WeekNumber, kKeptWeeks);
    keep_newest_of(MonthNumber, kKeptMonths);
    std::size_t before_commands = 0;
    for (const KeepCandidate& candidate : candidates)
        if (candidate.occasion != Occasion::kClock && before_commands++ < kKeptBeforeCommands)
            kept.insert(candidate.number);
    return kept;
}

}  // namespace snapshots
