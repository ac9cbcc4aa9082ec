// CRC-16/XMODEM: polynomial 0x1021, most significant bit first, initial register 0, no final xor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace checksum {

// The register after `bytes`, 16 significant bits; only the low 16 bits of `crc` matter.
std::uint32_t UpdateCrc16(std::uint32_t crc, std::span<const std::byte> bytes);

}  // namespace checksum
