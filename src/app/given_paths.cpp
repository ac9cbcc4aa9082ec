#include "app/given_paths.h"

#include "base/scope_guards.h"

#include <utility>

namespace app {
namespace {

// Nothing tells when a dialog is closed or a record stored; a person does not notice this wait.
constexpr int kAskAgainMs = 100;

}  // namespace

GivenPaths::GivenPaths(std::function<bool()> may_take,
                       std::function<void(const QString& path)> take)
    : may_take_(std::move(may_take)), take_(std::move(take)) {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { TakeNext(); });
}

bool GivenPaths::Add(const QString& path) {
    if (waiting_.size() >= kMost) return false;
    waiting_.push_back(path);
    if (!is_taking_) timer_.start(0);
    return true;
}

void GivenPaths::TakeNext() {
    if (!may_take_()) {
        timer_.start(kAskAgainMs);
        return;
    }
    const QString path = waiting_.front();
    waiting_.pop_front();
    {
        const base::ScopedFlag taking(is_taking_);
        take_(path);
    }
    if (!waiting_.empty()) timer_.start(0);
}

}  // namespace app
