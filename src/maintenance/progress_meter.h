// ProgressMeter: reports each whole percent of a long run, and its end in any case.
#pragma once

#include "maintenance/command_context.h"

#include <cstdint>

namespace maintenance {

class ProgressMeter {
public:
    // `progress` (may be empty) is borrowed and outlives the meter. `total`: steps of the whole
    // run.
    ProgressMeter(const Progress& progress, std::int64_t total)
        : progress_(progress), total_(total) {}
    ~ProgressMeter() { Tell(total_); }
    ProgressMeter(const ProgressMeter&) = delete;
    ProgressMeter& operator=(const ProgressMeter&) = delete;

    void Step() {
        ++done_;
        const std::int64_t percent = total_ > 0 ? done_ * 100 / total_ : 0;
        if (percent != percent_ && done_ < total_) Tell(done_);
        percent_ = percent;
    }

private:
    void Tell(std::int64_t done) const {
        if (progress_) progress_(done, total_);
    }

    const Progress& progress_;
    std::int64_t total_;
    std::int64_t done_ = 0;
    std::int64_t percent_ = -1;
};

}  // namespace maintenance
