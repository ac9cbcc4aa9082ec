#include "cfb/sector_reader.h"

#include <algorithm>
#include <string>
#include <utility>

namespace cfb {

SectorReader::SectorReader(std::unique_ptr<ByteSource> source) : source_(std::move(source)) {}

base::Result<std::span<const std::byte, header::kSize>> SectorReader::HeaderBytes() {
    if (size_bytes() < header::kSize)
        return base::Status(base::StatusCode::kUnsupported, "not a compound file: too short");
    ASSIGN_OR_RETURN(const Block* block, BlockAt(0));
    return std::span(*block).first<header::kSize>();
}

void SectorReader::SetSectorShift(std::uint32_t shift) {
    shift_ = shift;
    const std::uint64_t in_sectors = (size_bytes() + sector_size() - 1) >> shift_;
    const std::uint64_t after_header = in_sectors == 0 ? 0 : in_sectors - 1;
    sector_count_ =
        static_cast<SectorNumber>(std::min<std::uint64_t>(after_header, kLastSectorNumber));
}

base::Result<std::span<const std::byte>> SectorReader::Sector(SectorNumber sector) {
    if (sector >= sector_count_)
        return base::Status(base::StatusCode::kCorruption,
                            "sector " + std::to_string(sector) + " is outside the file");
    const std::uint64_t offset = OffsetOf(sector);
    ASSIGN_OR_RETURN(const Block* block, BlockAt(offset / kBlockSize));
    return std::span<const std::byte>(*block).subspan(offset % kBlockSize, sector_size());
}

base::Status SectorReader::ReadRun(SectorNumber first, std::span<std::byte> bytes) {
    const std::uint64_t sectors = (bytes.size() + sector_size() - 1) >> shift_;
    if (first >= sector_count_ || sectors > sector_count_ - first)
        return {base::StatusCode::kCorruption,
                "sectors from " + std::to_string(first) + " reach outside the file"};
    const std::uint64_t offset = OffsetOf(first);
    const std::uint64_t there = std::min<std::uint64_t>(bytes.size(), size_bytes() - offset);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(there), bytes.end(), std::byte{0});
    return source_->ReadAt(offset, bytes.first(there));
}

base::Result<const SectorReader::Block*> SectorReader::BlockAt(std::uint64_t index) {
    if (const auto found = blocks_.find(index); found != blocks_.end()) return found->second.get();
    auto block = std::make_unique<Block>();
    const std::uint64_t offset = index * kBlockSize;
    const std::uint64_t there = std::min<std::uint64_t>(kBlockSize, size_bytes() - offset);
    RETURN_IF_ERROR(source_->ReadAt(offset, std::span(*block).first(there)));
    return blocks_.emplace(index, std::move(block)).first->second.get();
}

}  // namespace cfb
