#include "checksum/crc_16.h"

#include <array>

namespace checksum {
namespace {

constexpr std::uint16_t TableEntry(std::uint32_t index) {
    std::uint32_t crc = index << 8;
    for (int bit = 0; bit < 8; ++bit)
        crc = (crc & 0x8000) != 0 ? (crc << 1) ^ 0x1021 : crc << 1;
    return static_cast<std::uint16_t>(crc & 0xFFFF);
}

constexpr std::array<std::uint16_t, 256> MakeTable() {
    std::array<std::uint16_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i)
        table[i] = TableEntry(i);
    return table;
}

constexpr auto kTable = MakeTable();

}  // namespace

std::uint32_t UpdateCrc16(std::uint32_t crc, std::span<const std::byte> bytes) {
    for (const std::byte byte : bytes)
        crc = kTable[((crc >> 8) ^ static_cast<std::uint32_t>(byte)) & 0xFF] ^ ((crc & 0xFF) << 8);
    return crc & 0xFFFF;
}

}  // namespace checksum
