// Bits of a byte string, the least significant bit of byte 0 first, as the file's bitmaps count
// them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace jet {

// Requires: bit < 8 * bytes.size().
inline bool TestBit(std::span<const std::byte> bytes, std::size_t bit) {
    return (std::to_integer<unsigned>(bytes[bit >> 3]) >> (bit & 7) & 1U) != 0;
}

inline void AssignBit(std::span<std::byte> bytes, std::size_t bit, bool value) {
    const std::byte mask{static_cast<std::uint8_t>(1U << (bit & 7))};
    if (value)
        bytes[bit >> 3] |= mask;
    else
        bytes[bit >> 3] &= ~mask;
}

// The first set bit at or after `from`; the number of bits when there is none.
inline std::size_t FindSetBit(std::span<const std::byte> bytes, std::size_t from) {
    const std::size_t bits = bytes.size() * 8;
    while (from < bits) {
        const auto rest = std::to_integer<unsigned>(bytes[from >> 3]) >> (from & 7);
        if (rest != 0) return from + static_cast<std::size_t>(std::countr_zero(rest));
        from = (from | 7) + 1;
    }
    return bits;
}

}  // namespace jet
