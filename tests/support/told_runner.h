// ToldRunner: does long work at once, keeps what it tells, and asks it to stop when the test wants.
#pragma once

#include "catalogue/long_run.h"

#include <optional>
#include <utility>
#include <vector>

namespace test_support {

class ToldRunner final : public catalogue::LongRunner {
public:
    void Run(const catalogue::LongRun& run,
             const std::function<void(const catalogue::RunSteps&)>& work) override {
        runs.push_back(run);
        std::stop_source stop;
        const bool may_stop =
            run.stop == catalogue::LongRun::Stop::kOnRequest && runs.size() > stops_after_runs;
        const auto stop_at = [&](std::int64_t done) {
            if (may_stop && stops_at && done >= *stops_at) stop.request_stop();
        };
        stop_at(0);
        work({[&](std::int64_t done, std::int64_t total) {
                  progress.emplace_back(done, total);
                  stop_at(done);
              },
              stop.get_token()});
    }

    std::vector<catalogue::LongRun> runs;
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
    std::optional<std::int64_t> stops_at;  // as many steps; 0: before the first
    std::size_t stops_after_runs = 0;      // those before are not stopped
};

}  // namespace test_support
