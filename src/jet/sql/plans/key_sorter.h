// KeySorter: sort keys of rows, stored consecutively in memory, and the order they make. Keys are
// compared byte by byte, eight bytes at a time; equal ones keep the order in which they came.
#pragma once

#include "jet/sql/plans/byte_arena.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace jet::sql {

class KeySorter {
public:
    // Takes the next row's key.
    void Add(std::string_view key) {
        keys_.push_back({arena_.Add(key.data(), key.size()), key.size()});
    }

    std::size_t size() const { return keys_.size(); }
    // Requires: row < size().
    std::span<const std::byte> Key(std::size_t row) const { return keys_[row]; }
    bool AreEqual(std::size_t row, std::size_t other) const {
        return std::ranges::equal(keys_[row], keys_[other]);
    }

    // The numbers of the rows, counted from 0 as they came, in ascending order of their keys.
    std::vector<std::uint32_t> Order() const;

private:
    class Run;

    ByteArena arena_;
    std::vector<std::span<const std::byte>> keys_;
};

}  // namespace jet::sql
