// RunSteps: how work that may take long tells how far it is, and is told to stop.
#pragma once

#include "base/status.h"

#include <cstdint>
#include <functional>
#include <stop_token>

namespace base {

struct RunSteps {
    // Steps done and all steps; may be empty. Called in the thread of the work.
    std::function<void(std::int64_t done, std::int64_t total)> progress = {};
    std::stop_token stop = {};  // requested: nobody wants the work any more
};

// No engine and no system has this number.
inline constexpr std::int32_t kStoppedNumber = -1000;
// What work returns that was stopped.
inline Status StoppedStatus() {
    return {StatusCode::kBusy, "It was stopped.", kStoppedNumber};
}
// That, when a stop was requested.
inline Status StatusOf(const std::stop_token& stop) {
    return stop.stop_requested() ? StoppedStatus() : Status();
}
inline bool IsStopped(const Status& status) {
    return status.number() == kStoppedNumber;
}

// Counts steps, reports them now and then, and looks whether to go on.
class StepCount {
public:
    // `steps` is borrowed.
    StepCount(const RunSteps& steps, std::int64_t total) : steps_(steps), total_(total) {}

    Status Next() {
        constexpr std::int64_t kApart = 64;
        if (++done_ % kApart != 0) return {};
        if (steps_.progress) steps_.progress(done_, total_);
        return StatusOf(steps_.stop);
    }

private:
    const RunSteps& steps_;
    std::int64_t total_;
    std::int64_t done_ = 0;
};

}  // namespace base
