// Repair: a fresh, sound file with all that can still be read in a damaged one. Structures that
// lead to rows are not needed: every page is looked at, data pages are found by the owner that
// they name, definitions by their pages. How: docs/jet.md, "Repairing".
#pragma once

#include "jet/pages/page_store.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace jet {

// What could not be brought over, or not as it was.
struct RepairLoss {
    std::string table;  // UTF-8; empty: none in particular
    PageNumber page = 0;
    int row = -1;       // slot of that page; -1: the page, or the table, as a whole
    std::string field;  // UTF-8; empty: the row as a whole
    std::string reason;
};

struct RepairReport {
    std::vector<RepairLoss> losses;  // at most kMaxLosses
    std::uint64_t loss_count = 0;
    std::uint64_t tables = 0;  // brought over, system tables among them
    std::uint64_t rows = 0;

    static constexpr std::size_t kMaxLosses = 10'000;
    void Add(RepairLoss loss);
};

// "page 17, row 3, table Games, field Notes: ..."
std::string Describe(const RepairLoss& loss);

// Makes the file `to` out of `from`, which is only read. `report` tells what is missing in it; it
// is filled as far as the repair came when that fails. Takes any bytes: never a crash or a loop,
// and no more memory than a small multiple of the file's size. 3204: there is a file `to`. 3343:
// nothing in `from` looks like a database.
base::Status Repair(FileSystem& files, const std::filesystem::path& from,
                    const std::filesystem::path& to, RepairReport& report);

// The report alone; nothing is written.
base::Status TryRepair(FileSystem& files, const std::filesystem::path& from, RepairReport& report);

}  // namespace jet
