// ByteArena: many small runs of bytes, kept until all of them go. Memory is taken in pieces that
// never move, so that growing costs no copies.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

namespace jet::sql {

class ByteArena {
public:
    // A copy of `size` bytes that stays where it is as long as the arena lives.
    const std::byte* Add(const void* bytes, std::size_t size) {
        if (size > room_) Grow(size);
        std::byte* const copy = next_;
        if (size > 0) std::memcpy(copy, bytes, size);
        next_ += size;
        room_ -= size;
        return copy;
    }
    // Bytes of memory taken.
    std::size_t size() const { return size_; }

private:
    static constexpr std::size_t kPiece = 64U << 10;

    void Grow(std::size_t size) {
        room_ = std::max(size, kPiece);
        pieces_.push_back(std::make_unique_for_overwrite<std::byte[]>(room_));
        next_ = pieces_.back().get();
        size_ += room_;
    }

    std::vector<std::unique_ptr<std::byte[]>> pieces_;
    std::byte* next_ = nullptr;
    std::size_t room_ = 0;
    std::size_t size_ = 0;
};

}  // namespace jet::sql
