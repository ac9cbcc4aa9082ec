// ProgressMeter: reports each whole percent of a long run, and the end of the run in any case.
#pragma once

#include <cstdint>
#include <functional>

namespace catalogue {

// How many steps of a long run are done, and how many there are; called at most once per percent.
// `done` equals `total` when the run is over, whichever way it ended; both are 0 when there was
// nothing to do.
using Progress = std::function<void(std::int64_t done, std::int64_t total)>;

class ProgressMeter {
public:
    // `progress` (may be empty) is borrowed and outlives the meter. `total`: steps of the whole
    // run.
    ProgressMeter(const Progress& progress, std::int64_t total)
        : progress_(progress), total_(total) {}
    // Reports the end.
    ~ProgressMeter() { Report(total_); }
    ProgressMeter(const ProgressMeter&) = delete;
    ProgressMeter& operator=(const ProgressMeter&) = delete;

    void Step() {
        ++done_;
        const std::int64_t percent = total_ > 0 ? done_ * 100 / total_ : 0;
        if (percent != percent_ && done_ < total_) Report(done_);
        percent_ = percent;
    }

private:
    void Report(std::int64_t done) const {
        if (progress_) progress_(done, total_);
    }

    const Progress& progress_;
    std::int64_t total_;
    std::int64_t done_ = 0;
    std::int64_t percent_ = -1;
};

}  // namespace catalogue
