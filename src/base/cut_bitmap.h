// IsCutBitmap: whether a Windows bitmap file (BMP) ends before its last row. Some decoders return
// uninitialised memory for missing rows, so the rows are counted before decoding. Layout
// (little endian): offset of the pixels at 10, header size at 14; 12-byte header: width u16 at 18,
// height u16 at 20, bits at 24; others: width i32 at 18, height i32 at 22 (negative: top-down),
// bits u16 at 28, compression u32 at 30 (0 and 3: rows of a fixed size, padded to 4 bytes).
#pragma once

#include "base/byte_reader.h"

#include <cstdint>
#include <cstdlib>
#include <span>

namespace base {

inline constexpr std::size_t kBitmapHeaderBytes = 34;

// `header`: the first kBitmapHeaderBytes of the file, or all of a shorter one. False for run-length
// coded pictures and for files that are not bitmaps.
inline bool IsCutBitmap(std::span<const std::byte> header, std::int64_t file_bytes) {
    if (header.size() < 30 || header[0] != std::byte{'B'} || header[1] != std::byte{'M'})
        return false;
    const std::byte* at = header.data();
    const bool is_core = LoadLittle<std::uint32_t>(at + 14) == 12;
    const auto coding = is_core ? 0U : LittleAt<std::uint32_t>(header, 30).value_or(0);
    if (coding != 0 && coding != 3) return false;
    const std::int64_t width =
        is_core ? LoadLittle<std::uint16_t>(at + 18) : LoadLittle<std::int32_t>(at + 18);
    const std::int64_t height = is_core ? LoadLittle<std::uint16_t>(at + 20)
                                        : std::abs(std::int64_t{LoadLittle<std::int32_t>(at + 22)});
    const std::int64_t bits = LoadLittle<std::uint16_t>(at + (is_core ? 24 : 28));
    const std::int64_t row_bytes = (width * bits + 31) / 32 * 4;
    if (width <= 0 || height == 0 || row_bytes <= 0) return true;
    const std::int64_t present = file_bytes - std::int64_t{LoadLittle<std::uint32_t>(at + 10)};
    return present < 0 || present / row_bytes < height;
}

}  // namespace base
