#include "cfb/header.h"

#include "base/byte_reader.h"

#include <algorithm>

namespace cfb {
namespace {

constexpr std::uint16_t kLittleEndianMark = 0xFFFE;

template <typename T>
T Field(std::span<const std::byte, header::kSize> bytes, std::size_t offset) {
    return base::LoadLittle<T>(bytes.data() + offset);
}

bool HasSignature(std::span<const std::byte, header::kSize> bytes) {
    return std::equal(
        header::kSignature.begin(), header::kSignature.end(), bytes.begin(),
        [](std::uint8_t wanted, std::byte found) { return std::byte{wanted} == found; });
}

base::Status CheckConstants(std::span<const std::byte, header::kSize> bytes) {
    const auto version = Field<std::uint16_t>(bytes, header::kMajorVersion);
    if (version != 3 && version != 4)
        return {base::StatusCode::kUnsupported, "compound file of an unknown version"};
    const bool agrees =
        Field<std::uint16_t>(bytes, header::kByteOrder) == kLittleEndianMark &&
        Field<std::uint16_t>(bytes, header::kSectorShift) == (version == 3 ? 9 : 12) &&
        Field<std::uint16_t>(bytes, header::kMiniSectorShift) == 6 &&
        Field<std::uint32_t>(bytes, header::kMiniStreamCutoff) == kMiniStreamCutoffBytes;
    if (!agrees)
        return {base::StatusCode::kCorruption, "compound file header: impossible sector sizes"};
    return base::Status::Ok();
}

}  // namespace

base::Result<Header> ParseHeader(std::span<const std::byte, header::kSize> bytes) {
    if (!HasSignature(bytes))
        return base::Status(base::StatusCode::kUnsupported, "not a compound file");
    RETURN_IF_ERROR(CheckConstants(bytes));
    Header result;
    result.major_version = Field<std::uint16_t>(bytes, header::kMajorVersion);
    result.sector_shift = Field<std::uint16_t>(bytes, header::kSectorShift);
    result.directory_start = Field<SectorNumber>(bytes, header::kDirectoryStart);
    result.mini_fat_start = Field<SectorNumber>(bytes, header::kMiniFatStart);
    result.difat_start = Field<SectorNumber>(bytes, header::kDifatStart);
    for (std::size_t i = 0; i < result.difat.size(); ++i)
        result.difat[i] = Field<SectorNumber>(bytes, header::kDifat + i * sizeof(SectorNumber));
    return result;
}

}  // namespace cfb
