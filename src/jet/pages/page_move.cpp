#include "jet/pages/page_move.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t kWord = 8;
constexpr std::size_t kSample = 2 * kWord;  // bytes by which a block is recognised
constexpr std::size_t kFarthest = 512;      // an index entry is shorter
constexpr std::size_t kShortest = 64;

// Eight bytes, for tests of equality only.
std::uint64_t WordAt(std::span<const std::byte> page, std::size_t at) {
    std::uint64_t word = 0;
    std::memcpy(&word, page.data() + at, sizeof word);
    return word;
}

// One past the last byte that differs; 0: the pages are equal.
std::size_t EndOfDifference(std::span<const std::byte> a, std::span<const std::byte> b) {
    std::size_t end = a.size();
    while (end >= 8 && std::memcmp(a.data() + end - 8, b.data() + end - 8, 8) == 0)
        end -= 8;
    while (end > 0 && a[end - 1] == b[end - 1])
        --end;
    return end;
}

struct Shift {
    std::size_t distance = 0;
    std::size_t size = 0;
};

// How far before `end` the bytes that end there in `later` stand in `earlier`, and how many of
// them do.
std::optional<Shift> FindShift(std::span<const std::byte> earlier, std::span<const std::byte> later,
                               std::size_t end) {
    if (end < kSample) return std::nullopt;
    std::size_t at = end - kSample;
    const std::uint64_t sample = WordAt(later, at);
    std::size_t distance = 1;
    const auto is_there = [&] {
        return WordAt(earlier, at - distance) == sample &&
               WordAt(earlier, at + kWord - distance) == WordAt(later, at + kWord);
    };
    const std::size_t farthest = std::min(at, kFarthest);
    while (distance <= farthest && !is_there())
        ++distance;
    if (distance > farthest) return std::nullopt;
    while (at > distance && earlier[at - 1 - distance] == later[at - 1])
        --at;
    if (end - at < kShortest) return std::nullopt;
    return Shift{distance, end - at};
}

}  // namespace

std::optional<PageMove> FindMove(std::span<const std::byte> before,
                                 std::span<const std::byte> after) {
    assert(before.size() == after.size() && after.size() <= 0x8000);
    const std::size_t end = EndOfDifference(before, after);
    const auto move = [&](const Shift& shift, bool upwards) {
        const std::size_t high = end - shift.size;
        const std::size_t low = high - shift.distance;
        return PageMove{static_cast<std::uint16_t>(upwards ? low : high),
                        static_cast<std::uint16_t>(upwards ? high : low),
                        static_cast<std::uint16_t>(shift.size)};
    };
    if (const auto shift = FindShift(before, after, end)) return move(*shift, true);
    if (const auto shift = FindShift(after, before, end)) return move(*shift, false);
    return std::nullopt;
}

void ApplyMove(const PageMove& move, std::span<std::byte> page) {
    assert(move.from + std::size_t{move.size} <= page.size());
    assert(move.to + std::size_t{move.size} <= page.size());
    std::memmove(page.data() + move.to, page.data() + move.from, move.size);
}

}  // namespace jet
