// SectorReader: sectors of a compound file. Small reads (FAT, directory, mini
// stream) go through a cache of 4 KB blocks, each read once; long runs of a stream are read
// directly into the caller's memory. A file that ends inside its last sector is read as if zeros
// followed. Errors: kCorruption (a sector outside the file), kIoError.
#pragma once

#include "base/status.h"
#include "cfb/byte_source.h"
#include "cfb/layout.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>

namespace cfb {

class SectorReader {
public:
    explicit SectorReader(std::unique_ptr<ByteSource> source);

    // The first bytes of the file; kUnsupported when it is shorter than a header.
    base::Result<std::span<const std::byte, header::kSize>> HeaderBytes();
    // Requires: called once, before any sector is read.
    void SetSectorShift(std::uint32_t shift);

    std::uint64_t size_bytes() const { return source_->size_bytes(); }
    std::uint32_t sector_size() const { return std::uint32_t{1} << shift_; }
    // Sectors in the file; the last one may be cut short.
    SectorNumber sector_count() const { return sector_count_; }

    // The sector's bytes; valid as long as the reader.
    base::Result<std::span<const std::byte>> Sector(SectorNumber sector);
    // Fills `bytes` from the start of sector `first` on, without the cache.
    base::Status ReadRun(SectorNumber first, std::span<std::byte> bytes);

private:
    static constexpr std::size_t kBlockSize = 4096;
    using Block = std::array<std::byte, kBlockSize>;

    base::Result<const Block*> BlockAt(std::uint64_t index);
    std::uint64_t OffsetOf(SectorNumber sector) const {
        return (std::uint64_t{sector} + 1) << shift_;
    }

    std::unique_ptr<ByteSource> source_;
    std::uint32_t shift_ = 9;
    SectorNumber sector_count_ = 0;
    std::unordered_map<std::uint64_t, std::unique_ptr<Block>> blocks_;
};

}  // namespace cfb
