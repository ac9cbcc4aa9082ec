// Where things lie in a map row and on a bitmap page; reader, writer and checker share it. Tables
// of offsets: docs/formats/jet.md, "Map rows".
#pragma once

#include "base/byte_reader.h"
#include "base/byte_writer.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace jet {

// The first byte: what follows.
inline constexpr std::byte kMapInline{0};
inline constexpr std::byte kMapReference{1};

// Inline: u32 page of the first bit, then the bits.
inline constexpr std::size_t kMapFirstPage = 1;
inline constexpr std::size_t kInlineHead = 5;

// Reference: a u32 for each bitmap page.
inline constexpr std::size_t kMapPointers = 1;
inline constexpr std::size_t kMapPointerBytes = 4;
inline constexpr std::size_t kBitmapHead = 4;  // of a bitmap page; bits up to its end

// Of a row in the form kMapReference.
constexpr std::size_t MapPointerCount(std::span<const std::byte> row) {
    return (row.size() - kMapPointers) / kMapPointerBytes;
}
// Requires: i < MapPointerCount(row).
constexpr std::uint32_t LoadMapPointer(std::span<const std::byte> row, std::size_t i) {
    return base::LoadLittle<std::uint32_t>(row.data() + kMapPointers + kMapPointerBytes * i);
}
constexpr void StoreMapPointer(std::span<std::byte> row, std::size_t i, std::uint32_t page) {
    base::StoreLittle(row.data() + kMapPointers + kMapPointerBytes * i, page);
}

}  // namespace jet
