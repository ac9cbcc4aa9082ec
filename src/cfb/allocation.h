// AllocationTable: which sector follows which (the FAT), its own sectors found through the header
// and the DIFAT chain. SectorChain: the sectors of one chain by position; links are followed only
// as far as needed. A link outside the file and a loop are kCorruption. A loop is found after a
// small multiple of its length, in constant memory (Brent's method).
#pragma once

#include "base/status.h"
#include "cfb/header.h"
#include "cfb/layout.h"
#include "cfb/sector_reader.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cfb {

// Detects a loop in a walk along links: keeps one earlier link and replaces it after 1, 2, 4, 8...
// steps.
class LoopDetector {
public:
    // Takes the next link of the walk. True: it is a loop.
    bool Meets(SectorNumber link);

private:
    SectorNumber mark_ = kEndOfChain;
    std::uint64_t steps_ = 0;
    std::uint64_t next_mark_ = 1;
};

class AllocationTable {
public:
    // Requires: `sectors` outlives the table.
    AllocationTable(SectorReader& sectors, const Header& header);
    // The sector after `sector`, or kEndOfChain. kCorruption: it is neither.
    base::Result<SectorNumber> Next(SectorNumber sector);

private:
    base::Result<SectorNumber> FatSector(std::size_t index);
    base::Status ReadNextDifatSector();

    SectorReader& sectors_;
    std::vector<SectorNumber> fat_sectors_;  // as far as the DIFAT has been read
    SectorNumber next_difat_;
    LoopDetector difat_loop_;
};

class SectorChain {
public:
    // Requires: `table` outlives the chain.
    SectorChain(AllocationTable& table, SectorNumber start);
    // The sector at this position of the chain; later links are not read. kCorruption: the chain is
    // shorter.
    base::Result<SectorNumber> At(std::uint64_t position);

private:
    AllocationTable& table_;
    SectorNumber start_;
    std::vector<SectorNumber> known_;
    LoopDetector loop_;
};

}  // namespace cfb
