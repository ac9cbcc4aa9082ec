// RawFile: the bytes of a well-formed compound file with 512-byte sectors, and where to hit them.
#pragma once

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "cfb/layout.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace cfb_test {

class RawFile {
public:
    explicit RawFile(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        const auto* begin = reinterpret_cast<const std::byte*>(text.data());
        bytes.assign(begin, begin + text.size());
    }

    template <typename T>
    T Get(std::size_t offset) const {
        return base::LoadLittle<T>(bytes.data() + offset);
    }
    template <typename T>
    void Set(std::size_t offset, T value) {
        base::StoreLittle(bytes.data() + offset, value);
    }

    static std::size_t SectorOffset(cfb::SectorNumber sector) {
        return (std::size_t{sector} + 1) * 512;
    }
    std::size_t FatEntryOffset(cfb::SectorNumber sector) const {
        const auto fat_sector = Get<cfb::SectorNumber>(cfb::header::kDifat + sector / 128 * 4);
        return SectorOffset(fat_sector) + sector % 128 * 4;
    }
    cfb::SectorNumber Next(cfb::SectorNumber sector) const {
        return Get<cfb::SectorNumber>(FatEntryOffset(sector));
    }
    std::size_t EntryOffset(cfb::EntryId id) const {
        auto sector = Get<cfb::SectorNumber>(cfb::header::kDirectoryStart);
        for (cfb::EntryId skipped = id / 4; skipped > 0; --skipped)
            sector = Next(sector);
        return SectorOffset(sector) + id % 4 * cfb::entry::kSize;
    }

    std::vector<std::byte> bytes;
};

}  // namespace cfb_test
