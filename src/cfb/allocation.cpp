#include "cfb/allocation.h"

#include "base/byte_reader.h"

#include <string>

namespace cfb {
namespace {

base::Status Damaged(const std::string& what) {
    return {base::StatusCode::kCorruption, what};
}

}  // namespace

bool LoopDetector::Meets(SectorNumber link) {
    if (steps_ > 0 && link == mark_) return true;
    if (++steps_ == next_mark_) {
        mark_ = link;
        next_mark_ *= 2;
    }
    return false;
}

AllocationTable::AllocationTable(SectorReader& sectors, const Header& header)
    : sectors_(sectors), next_difat_(header.difat_start) {
    for (const SectorNumber sector : header.difat) {
        if (sector > kLastSectorNumber) break;
        fat_sectors_.push_back(sector);
    }
}

base::Result<SectorNumber> AllocationTable::Next(SectorNumber sector) {
    const std::size_t per_sector = sectors_.sector_size() / sizeof(SectorNumber);
    if (sector >= sectors_.sector_count())
        return Damaged("sector " + std::to_string(sector) + " is outside the file");
    ASSIGN_OR_RETURN(const SectorNumber fat_sector, FatSector(sector / per_sector));
    ASSIGN_OR_RETURN(const auto bytes, sectors_.Sector(fat_sector));
    const auto next =
        base::LoadLittle<SectorNumber>(bytes.data() + (sector % per_sector) * sizeof(SectorNumber));
    if (next != kEndOfChain && next >= sectors_.sector_count())
        return Damaged("sector " + std::to_string(sector) +
                       " is followed by no sector of the file");
    return next;
}

base::Result<SectorNumber> AllocationTable::FatSector(std::size_t index) {
    while (index >= fat_sectors_.size())
        RETURN_IF_ERROR(ReadNextDifatSector());
    return fat_sectors_[index];
}

base::Status AllocationTable::ReadNextDifatSector() {
    if (next_difat_ > kLastSectorNumber)
        return Damaged("the allocation table is too short for the file");
    if (difat_loop_.Meets(next_difat_)) return Damaged("the chain of the DIFAT is a loop");
    ASSIGN_OR_RETURN(const auto bytes, sectors_.Sector(next_difat_));
    const std::size_t entries = bytes.size() / sizeof(SectorNumber) - 1;
    for (std::size_t i = 0; i < entries; ++i)
        fat_sectors_.push_back(
            base::LoadLittle<SectorNumber>(bytes.data() + i * sizeof(SectorNumber)));
    next_difat_ = base::LoadLittle<SectorNumber>(bytes.data() + entries * sizeof(SectorNumber));
    return base::Status::Ok();
}

SectorChain::SectorChain(AllocationTable& table, SectorNumber start)
    : table_(table), start_(start) {}

base::Result<SectorNumber> SectorChain::At(std::uint64_t position) {
    while (position >= known_.size()) {
        SectorNumber next = start_;
        if (!known_.empty()) {
            ASSIGN_OR_RETURN(next, table_.Next(known_.back()));
        }
        if (next == kEndOfChain) return Damaged("a sector chain ends too early");
        if (loop_.Meets(next)) return Damaged("a sector chain is a loop");
        known_.push_back(next);
    }
    return known_[static_cast<std::size_t>(position)];
}

}  // namespace cfb
