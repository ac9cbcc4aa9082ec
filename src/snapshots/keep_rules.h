// Which snapshots are kept: the newest of each of the last 24 hours, 7 days, 4 weeks and 12 months
// that have one, and the last 24 that were made before a command or by hand, so that what was there
// before a command is there even when the clock made one in the same hour.
#pragma once

#include "snapshots/snapshot_format.h"

#include <set>

namespace snapshots {

struct KeepCandidate {
    SnapshotNumber number = 0;  // the larger, the newer, whatever the clock said
    LocalSeconds time = 0;
    Occasion occasion = Occasion::kClock;
};

inline constexpr std::size_t kKeptHours = 24;
inline constexpr std::size_t kKeptDays = 7;
inline constexpr std::size_t kKeptWeeks = 4;
inline constexpr std::size_t kKeptMonths = 12;
inline constexpr std::size_t kKeptBeforeCommands = 24;

std::set<SnapshotNumber> WhichToKeep(std::vector<KeepCandidate> candidates);

}  // namespace snapshots
