// LongRun: work that may take long, done where it does not keep a window from being painted. Logic
// says what it does, how far it is and whether it can be stopped; who runs it decides where, and
// shows it.
#pragma once

#include "base/run_steps.h"
#include "catalogue/catalogue.h"

#include <QtCore/QString>

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace catalogue {

using base::RunSteps;

struct LongRun {
    enum class Stop : bool { kNever, kOnRequest };

    QString what;              // is done, for the user: "Export"; empty: is not shown
    Stop stop = Stop::kNever;  // kOnRequest: the work looks at RunSteps::stop
};

class LongRunner {
public:
    virtual ~LongRunner() = default;
    // Calls `work` once, perhaps in another thread, and returns when that has returned. Meanwhile
    // `work` alone may use the catalogue.
    virtual void Run(const LongRun& run,
                     const std::function<void(const RunSteps& steps)>& work) = 0;
};

// Does `work` by the runner (null: here), and returns what that returns.
template <class Work>
auto RunLong(LongRunner* runner, const LongRun& run, const Work& work) {
    std::optional<std::invoke_result_t<const Work&, const RunSteps&>> answer;
    const auto keep = [&](const RunSteps& steps) { answer.emplace(work(steps)); };
    if (runner != nullptr)
        runner->Run(run, keep);
    else
        keep({});
    return *std::move(answer);
}
template <class Work>
auto RunLong(const Catalogue& catalogue, const LongRun& run, const Work& work) {
    return RunLong(catalogue.runner, run, work);
}

}  // namespace catalogue
