// Two programs doing the same in turn, timed: what a line of a benchmark's table is made of.
#pragma once

#include "measure.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

namespace bench {

template <typename T>
T Required(base::Result<T> result) {
    Require(result.status());
    return std::move(result).value();
}

// Of the fastest of five runs of each.
struct Duel {
    double ours = 1e9;    // seconds
    double theirs = 1e9;  // seconds
};

// The two alternate, so that what else the machine does meets both.
Duel Alternate(const std::function<void()>& ours, const std::function<void()>& theirs);

// What a side is given to write with: `work` is timed; `prepare` and `finish` are not.
struct Writer {
    std::function<void()> prepare;
    std::function<void()> work;
    std::function<void()> finish;
};

struct WritingDuel {
    Duel time;
    std::uint64_t our_bytes = 0;  // handed to the system by write calls during work and finish
    std::uint64_t their_bytes = 0;
};

WritingDuel Alternate(const Writer& ours, const Writer& theirs);

}  // namespace bench
