// Compact: a fresh database file with what another one holds and nothing else: no free pages, no
// deleted rows, no half-empty index pages. What is carried over and what is not: docs/jet.md,
// "Compacting".
#pragma once

#include "base/status.h"
#include "jet/pages/file_system.h"
#include "jet/pages/page_store.h"

#include <cstdint>
#include <filesystem>
#include <functional>

namespace jet {

// Rows that are copied, and rows that there are; called once for each table, now and then for its
// rows, and before the old file is replaced. A failure ends the run and leaves everything as it
// was.
using CompactProgress = std::function<base::Status(std::uint64_t done, std::uint64_t total)>;

struct CompactReport {
    std::uint32_t page_size = 0;  // bytes
    PageNumber pages_before = 0;
    PageNumber pages_after = 0;
    std::uint64_t tables = 0;  // system tables among them
    std::uint64_t rows = 0;
    // Rows of system tables about objects that are no longer there.
    std::uint64_t rows_left_out = 0;
    // File marks, for who keeps something beside the file that is bound to it by its mark.
    std::uint64_t mark_before = 0;
    std::uint64_t mark_after = 0;

    std::uint64_t bytes_before() const { return std::uint64_t{pages_before} * page_size; }
    std::uint64_t bytes_after() const { return std::uint64_t{pages_after} * page_size; }
};

// Makes the file `to` out of `from`, which is only read. The new file is written under another
// name, synced and checked before it gets its own; after a failure there is none. 3204: there is a
// file `to`. kCorruption: `from` has faults; see Repair.
base::Result<CompactReport> Compact(FileSystem& files, const std::filesystem::path& from,
                                    const std::filesystem::path& to,
                                    const CompactProgress& progress = {});

// What compacting an open file would come to, found out in memory; nothing is written.
base::Result<CompactReport> MeasureCompact(PageStore& source, const CompactProgress& progress = {});

// Called when the new file is on the disk and sound, before it takes the place of the old one. A
// failure leaves the old one. What is kept beside the file can follow it so.
using BeforeReplacing = std::function<base::Status(const CompactReport&)>;

// The same in the place of the old file, which is replaced in one step when the new one is on the
// disk and sound. Holds the lock of a writer all the while (3045, 3356: somebody has the file
// open). Whatever stops it, there is the old file or the new one. A failure leaves the old one,
// except that of the very last sync, of the folder: then the new one is in place.
base::Result<CompactReport> CompactInPlace(FileSystem& files, const std::filesystem::path& path,
                                           const CompactProgress& progress = {},
                                           const BeforeReplacing& before_replacing = {});

}  // namespace jet
