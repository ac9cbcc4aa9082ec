// Numbers written as bytes at any alignment: Store... overwrites bytes, Append... adds to the end
// of a vector. StoreDouble is little endian.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace base {

// Requires: room for sizeof(T) bytes at `to`.
template <std::integral T>
constexpr void StoreLittle(std::byte* to, T value) {
    auto bits = static_cast<std::make_unsigned_t<T>>(value);
    for (std::size_t i = 0; i < sizeof(T); ++i)
        to[i] = static_cast<std::byte>((bits >> (8 * i)) & 0xFF);
}

template <std::integral T>
constexpr void StoreBig(std::byte* to, T value) {
    auto bits = static_cast<std::make_unsigned_t<T>>(value);
    for (std::size_t i = 0; i < sizeof(T); ++i)
        to[i] = static_cast<std::byte>((bits >> (8 * (sizeof(T) - 1 - i))) & 0xFF);
}

template <std::integral T>
void AppendLittle(std::vector<std::byte>& out, T value) {
    out.resize(out.size() + sizeof(T));
    StoreLittle(out.data() + out.size() - sizeof(T), value);
}

template <std::integral T>
void AppendBig(std::vector<std::byte>& out, T value) {
    out.resize(out.size() + sizeof(T));
    StoreBig(out.data() + out.size() - sizeof(T), value);
}

inline void StoreDouble(std::byte* to, double value) {
    StoreLittle(to, std::bit_cast<std::uint64_t>(value));
}

}  // namespace base
