#include "cfb/stream_reader.h"

#include "base/byte_reader.h"

#include <algorithm>

namespace cfb {
namespace {

base::Status Damaged(const char* what) {
    return {base::StatusCode::kCorruption, what};
}

}  // namespace

StreamReader::StreamReader(SectorReader& sectors, AllocationTable& table, const Header& header,
                           const DirectoryEntry& root)
    : sectors_(sectors), table_(table), mini_fat_(table, header.mini_fat_start),
      mini_stream_(table, root.start), mini_stream_bytes_(root.element.size_bytes) {}

base::Result<std::vector<std::byte>> StreamReader::Read(const DirectoryEntry& stream) {
    const std::uint64_t size = stream.element.size_bytes;
    if (size == 0) return std::vector<std::byte>();
    if (size > sectors_.size_bytes()) return Damaged("a stream is larger than its file");
    if (size > kMaxStreamBytes)
        return base::Status(base::StatusCode::kUnsupported,
                            "a stream is too large to be read whole");
    return size < kMiniStreamCutoffBytes ? ReadFromMiniStream(stream) : ReadFromSectors(stream);
}

// Walks the chain to its end before it takes memory for the size that the entry claims.
base::Result<std::vector<std::byte>> StreamReader::ReadFromSectors(const DirectoryEntry& stream) {
    ASSIGN_OR_RETURN(const std::vector<Run> runs, RunsOf(stream));
    std::vector<std::byte> bytes(static_cast<std::size_t>(stream.element.size_bytes));
    std::span<std::byte> rest(bytes);
    for (const Run& run : runs) {
        const std::uint64_t in_run = run.sectors * sectors_.sector_size();
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(in_run, rest.size()));
        RETURN_IF_ERROR(sectors_.ReadRun(run.first, rest.first(size)));
        rest = rest.subspan(size);
    }
    return bytes;
}

base::Result<std::vector<StreamReader::Run>> StreamReader::RunsOf(const DirectoryEntry& stream) {
    std::vector<Run> runs;
    LoopDetector loop;
    SectorNumber sector = stream.start;
    const std::uint64_t size = sectors_.sector_size();
    for (std::uint64_t left = (stream.element.size_bytes + size - 1) / size;; --left) {
        if (sector == kEndOfChain) return Damaged("a stream's chain is shorter than its size");
        if (loop.Meets(sector)) return Damaged("a stream's chain is a loop");
        if (!runs.empty() && runs.back().first + runs.back().sectors == sector)
            ++runs.back().sectors;
        else
            runs.push_back({sector, 1});
        if (left == 1) return runs;  // the link of the last sector does not count
        ASSIGN_OR_RETURN(sector, table_.Next(sector));
    }
}

// At most 64 mini sectors, so a loop needs no other bound.
base::Result<std::vector<std::byte>>
StreamReader::ReadFromMiniStream(const DirectoryEntry& stream) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(stream.element.size_bytes));
    std::span<std::byte> rest(bytes);
    for (std::uint32_t mini_sector = stream.start; !rest.empty();) {
        const std::size_t size = std::min(kMiniSectorSize, rest.size());
        RETURN_IF_ERROR(CopyMiniSector(mini_sector, rest.first(size)));
        rest = rest.subspan(size);
        if (rest.empty()) break;
        ASSIGN_OR_RETURN(mini_sector, NextMiniSector(mini_sector));
    }
    return bytes;
}

base::Status StreamReader::CopyMiniSector(std::uint32_t mini_sector, std::span<std::byte> bytes) {
    const std::uint64_t offset = std::uint64_t{mini_sector} * kMiniSectorSize;
    if (offset >= mini_stream_bytes_) return Damaged("a short stream leaves the mini stream");
    ASSIGN_OR_RETURN(const SectorNumber sector, mini_stream_.At(offset / sectors_.sector_size()));
    ASSIGN_OR_RETURN(const auto from, sectors_.Sector(sector));
    const auto within = static_cast<std::ptrdiff_t>(offset % sectors_.sector_size());
    std::copy_n(from.begin() + within, bytes.size(), bytes.begin());
    return base::Status::Ok();
}

base::Result<std::uint32_t> StreamReader::NextMiniSector(std::uint32_t mini_sector) {
    const std::uint64_t offset = std::uint64_t{mini_sector} * sizeof(std::uint32_t);
    ASSIGN_OR_RETURN(const SectorNumber sector, mini_fat_.At(offset / sectors_.sector_size()));
    ASSIGN_OR_RETURN(const auto bytes, sectors_.Sector(sector));
    return base::LoadLittle<std::uint32_t>(bytes.data() + offset % sectors_.sector_size());
}

}  // namespace cfb
