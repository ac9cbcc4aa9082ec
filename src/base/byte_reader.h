// Numbers read from bytes at any alignment. LoadLittle, LoadBig, LoadDouble and LoadFloat trust the
// caller that the bytes are there. LittleAt and BytesAt check the bounds and return nullopt outside
// of them: for spans from a file whose size has not been checked.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

namespace base {

// Requires: sizeof(T) bytes at `from`.
template <std::integral T>
constexpr T LoadLittle(const std::byte* from) {
    if (!std::is_constant_evaluated() && std::endian::native == std::endian::little) {
        T copy;
        std::memcpy(&copy, from, sizeof(T));  // gcc does not make one load of a loop of eight
        return copy;
    }
    using U = std::make_unsigned_t<T>;
    U value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        value = static_cast<U>(value | static_cast<U>(static_cast<U>(from[i]) << (8 * i)));
    return static_cast<T>(value);
}

template <std::integral T>
constexpr T LoadBig(const std::byte* from) {
    using U = std::make_unsigned_t<T>;
    U value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        value = static_cast<U>(static_cast<U>(value << (sizeof(T) > 1 ? 8 : 0)) |
                               static_cast<U>(from[i]));
    return static_cast<T>(value);
}

// nullopt: the integer does not lie inside `bytes` as a whole.
template <std::integral T>
constexpr std::optional<T> LittleAt(std::span<const std::byte> bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(T)) return std::nullopt;
    return LoadLittle<T>(bytes.data() + offset);
}

// The `size` bytes at `offset`; nullopt: they do not lie inside `bytes` as a whole.
constexpr std::optional<std::span<const std::byte>> BytesAt(std::span<const std::byte> bytes,
                                                            std::size_t offset, std::size_t size) {
    if (offset > bytes.size() || bytes.size() - offset < size) return std::nullopt;
    return bytes.subspan(offset, size);
}

inline double LoadDouble(const std::byte* from) {
    return std::bit_cast<double>(LoadLittle<std::uint64_t>(from));
}

inline float LoadFloat(const std::byte* from) {
    return std::bit_cast<float>(LoadLittle<std::uint32_t>(from));
}

}  // namespace base
