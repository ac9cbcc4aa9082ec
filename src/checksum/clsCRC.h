// clsCRC: cyclic redundancy checks over bytes, texts and whole files.
// CRC-32 is that of ISO-HDLC, zlib and ZIP (reflected polynomial 0xEDB88320, initial register and
// final complement all ones); CRC-16 is XMODEM's (polynomial 0x1021, initial register 0, nothing
// reflected). A table file is identified by its CRC-32. Values are signed 32-bit integers: a CRC-32
// with its top bit set reads as a negative number. Errors: only CalculateFile can fail. Nothing
// here throws. Threads: one object belongs to one thread.
#pragma once

#include "base/status.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace checksum {

inline constexpr std::int32_t Crc16 = 0;
inline constexpr std::int32_t Crc32 = 1;

class clsCRC {
public:
    // Selects CRC-32.
    clsCRC() { Clear(); }

    // Continues from the current register; the result is Value(). An empty span changes nothing.
    std::int32_t AddBytes(std::span<const std::byte> bytes);
    // The bytes are those of the ANSI code page, one per character; see ansi_text.h.
    std::int32_t AddString(std::u16string_view text);

    // Any number but 0 selects CRC-32. Clears both registers.
    void Algorithm(std::int32_t selector);
    // -1 for CRC-32, 0 for CRC-16: a flag, not the selector that was given.
    std::int16_t Algorithm() const { return is_crc32_ ? -1 : 0; }

    // The functions Calculate... clear the registers first.
    std::int32_t CalculateBytes(std::span<const std::byte> bytes);
    // nullopt: the file is empty. Then, and after a failure, the registers are as they were before.
    // kNotFound, number platform::kFileNotFound: no such file; kUnsupported: not a file; kIoError:
    // it cannot be read, or it becomes shorter while it is read.
    base::Result<std::optional<std::int32_t>> CalculateFile(const std::filesystem::path& path);
    // The same over the next `length_bytes` bytes of `stream`. Requires: length_bytes > 0.
    base::Result<std::optional<std::int32_t>> CalculateStream(std::istream& stream,
                                                              std::uint64_t length_bytes);
    std::int32_t CalculateString(std::u16string_view text);

    // CRC-32: the complement of the register. CRC-16: the register.
    std::int32_t Value() const;
    // Stores the number as it stands, without the complement: under CRC-32 it reads back
    // complemented.
    void Value(std::int32_t value);
    void Clear();

private:
    std::uint32_t& Register() { return is_crc32_ ? crc32_ : crc16_; }

    bool is_crc32_ = true;
    std::uint32_t crc16_ = 0;
    std::uint32_t crc32_ = 0;        // not inverted
    std::vector<std::byte> buffer_;  // of CalculateFile, kept from file to file
};

}  // namespace checksum
