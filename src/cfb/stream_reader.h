// StreamReader: the bytes of a stream, from the sectors of the file or, for short ones, from the
// mini stream. Errors: kCorruption (the chain is shorter than the size says, loops, or leaves the
// file; the size is larger than the file), kUnsupported (larger than kMaxStreamBytes), kIoError.
#pragma once

#include "base/status.h"
#include "cfb/allocation.h"
#include "cfb/directory.h"
#include "cfb/header.h"
#include "cfb/sector_reader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace cfb {

// The largest stream that is taken into memory: 256 MB, far above any text or picture in a table
// file.
inline constexpr std::uint64_t kMaxStreamBytes = std::uint64_t{256} << 20;

class StreamReader {
public:
    // Requires: `sectors` and `table` outlive the reader. `root`: its chain holds the mini stream.
    StreamReader(SectorReader& sectors, AllocationTable& table, const Header& header,
                 const DirectoryEntry& root);
    base::Result<std::vector<std::byte>> Read(const DirectoryEntry& stream);

private:
    struct Run {
        SectorNumber first = 0;
        std::uint64_t sectors = 0;
    };

    base::Result<std::vector<std::byte>> ReadFromSectors(const DirectoryEntry& stream);
    base::Result<std::vector<Run>> RunsOf(const DirectoryEntry& stream);
    base::Result<std::vector<std::byte>> ReadFromMiniStream(const DirectoryEntry& stream);
    base::Status CopyMiniSector(std::uint32_t mini_sector, std::span<std::byte> bytes);
    base::Result<std::uint32_t> NextMiniSector(std::uint32_t mini_sector);

    SectorReader& sectors_;
    AllocationTable& table_;
    SectorChain mini_fat_;
    SectorChain mini_stream_;
    std::uint64_t mini_stream_bytes_;
};

}  // namespace cfb
