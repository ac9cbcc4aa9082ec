// FieldBytes: stored fields of a row, one behind the other: for each a u16, its size or "none"
// (Null, or false), and its bytes. Keeps its memory from row to row.
#pragma once

#include "base/byte_writer.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace jet {

class FieldBytes {
public:
    static constexpr std::size_t kHead = 2;
    static constexpr std::uint16_t kNone = 0xFFFF;  // no field of a page is that long

    void Clear() { size_ = 0; }
    void AddNone() { Add(kNone, {}); }
    // Requires: field.size() < kNone.
    void Add(std::span<const std::byte> field) {
        Add(static_cast<std::uint16_t>(field.size()), field);
    }
    // Of all fields; valid until the next call.
    std::span<const std::byte> bytes() const { return std::span(memory_).first(size_); }

private:
    void Add(std::uint16_t head, std::span<const std::byte> field) {
        const std::size_t size = size_ + kHead + field.size();
        if (size > memory_.size()) memory_.resize(2 * size);
        std::byte* const to = memory_.data() + size_;
        base::StoreLittle(to, head);
        if (!field.empty()) std::memcpy(to + kHead, field.data(), field.size());
        size_ = size;
    }

    std::vector<std::byte> memory_;
    std::size_t size_ = 0;  // of it
};

}  // namespace jet
