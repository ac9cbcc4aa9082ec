// The two kinds of files in a folder of snapshots (docs/formats/snapshots.md): a snapshot names for
// each page of the database a record of a pack; a pack holds pages, compressed. All integers little
// endian. Every byte is under a checksum, and whatever contradicts the format is refused: the
// parsers take any bytes.
#pragma once

#include "base/status.h"
#include "jet/ids.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace snapshots {

// Seconds between 1970-01-01 0:00 and what the local clock showed, zones and changes of the clock
// left out of account.
using LocalSeconds = std::int64_t;

// Numbers of packs and snapshots count upwards and are never used again.
using SnapshotNumber = std::uint32_t;
using PackNumber = std::uint32_t;

enum class Occasion : std::uint32_t {
    kClock = 1,
    kBeforeCommand = 2,  // the label names it
    kByHand = 3,
};

// What a snapshot is of.
struct SnapshotHead {
    std::uint32_t page_size = 0;  // bytes
    jet::PageNumber page_count = 0;
    Occasion occasion = Occasion::kClock;
    LocalSeconds time = 0;
    std::uint64_t checksum = 0;  // FileChecksum of all pages
    std::string label;           // UTF-8, at most kMaxLabelBytes
    bool operator==(const SnapshotHead&) const = default;

    std::uint64_t size_bytes() const { return std::uint64_t{page_size} * page_count; }
};
inline constexpr std::size_t kMaxLabelBytes = 200;

// Where a page is stored.
struct RecordPlace {
    PackNumber pack = 0;
    std::uint32_t record = 0;
    bool operator==(const RecordPlace&) const = default;
};

// The page after the one of the run before, and those that follow it, are these records.
struct PageRun {
    RecordPlace first;
    std::uint32_t count = 0;
    bool operator==(const PageRun&) const = default;
};

struct Snapshot {
    SnapshotHead head;
    std::vector<PageRun> runs;  // of all pages, from page 0 on
    bool operator==(const Snapshot&) const = default;
};

std::vector<std::byte> StoreSnapshot(const Snapshot& snapshot);
// kCorruption: not a snapshot, or damaged. A result's runs cover its pages exactly.
base::Result<Snapshot> ParseSnapshot(std::span<const std::byte> bytes);
// The most that a snapshot can have.
inline constexpr std::uint64_t kMaxSnapshotBytes = 32U << 20;

std::vector<PageRun> MakeRuns(std::span<const RecordPlace> places);
std::vector<RecordPlace> PlacesOf(const Snapshot& snapshot);

// A record of a pack: one page.
struct PackRecord {
    jet::PageNumber page = 0;
    std::uint32_t stored_bytes = 0;   // the page's own size: not compressed; 0: dropped
    std::optional<RecordPlace> base;  // the page was compressed as a change of this whole one
    std::uint64_t page_checksum = 0;  // PageChecksum of the page
    std::uint64_t stored_checksum = 0;
    bool operator==(const PackRecord&) const = default;
};

struct PackDirectory {
    std::uint32_t page_size = 0;
    std::vector<PackRecord> records;
    bool operator==(const PackDirectory&) const = default;
};

// The directory as it stands at the beginning of a pack; the stored pages follow in its order.
std::vector<std::byte> StoreDirectory(const PackDirectory& directory);
// kPackHeadBytes bytes tell how many the directory has; kCorruption: not a pack.
inline constexpr std::size_t kPackHeadBytes = 32;
base::Result<std::uint64_t> DirectoryBytes(std::span<const std::byte> head);
// `bytes`: DirectoryBytes of them. kCorruption: damaged.
base::Result<PackDirectory> ParseDirectory(std::span<const std::byte> bytes);

// Of a page's bytes as the database file has them; a page is not taken for another one.
std::uint64_t PageChecksum(jet::PageNumber page, std::span<const std::byte> bytes);
std::uint64_t StoredChecksum(std::span<const std::byte> bytes);
// Continues `checksum`, 0 at first, by the checksum of the next page.
std::uint64_t FileChecksum(std::uint64_t checksum, std::uint64_t page_checksum);

}  // namespace snapshots
