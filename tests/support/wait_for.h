// WaitFor: until a condition holds, in place of a sleep. Looks every millisecond and gives up after
// a time that only a broken program takes.
#pragma once

#include <chrono>
#include <thread>

namespace test_support {

// True as soon as `condition()` is; false after `limit`.
template <typename Condition>
bool WaitFor(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace test_support
