// PageMove: a block of bytes that moved within a page, as the entries of an index page behind a new
// one do. Recording the move takes fewer bytes than repeating the block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace jet {

struct PageMove {
    std::uint16_t from = 0;
    std::uint16_t to = 0;
    std::uint16_t size = 0;  // the two places may overlap
    bool operator==(const PageMove&) const = default;
};

// The block before the last byte that differs, if it was moved a little way up or down. nullopt:
// no such block. Requires: pages of one size, at most 32 KiB.
std::optional<PageMove> FindMove(std::span<const std::byte> before,
                                 std::span<const std::byte> after);

// Requires: both places lie on the page.
void ApplyMove(const PageMove& move, std::span<std::byte> page);

}  // namespace jet
