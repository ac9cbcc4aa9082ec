// LatestTask: long work in a thread of its own, of which only the newest counts.
#pragma once

#include <QtCore/QObject>

#include <functional>
#include <memory>
#include <stop_token>
#include <thread>
#include <utility>

namespace platform {

// Threads: the object belongs to the thread that created it, which needs an event loop.
template <class Answer>
class LatestTask {
public:
    // Runs in the other thread. What it returns after a stop was requested is thrown away.
    using Work = std::function<Answer(const std::stop_token& stop)>;
    // Called in the thread of the object; may start the next task.
    using Done = std::function<void(Answer answer)>;

    LatestTask() = default;
    LatestTask(const LatestTask&) = delete;
    LatestTask& operator=(const LatestTask&) = delete;
    // Waits as Stop does.
    ~LatestTask() { Stop(); }

    // In place of the task before, whose `done` is not called any more.
    void Start(Work work, Done done) {
        Stop();
        is_at_work_ = true;
        thread_ = std::jthread([this, work = std::move(work), done = std::move(done),
                                order = order_](const std::stop_token& stop) {
            auto answer = std::make_shared<Answer>(work(stop));
            QMetaObject::invokeMethod(
                &context_,
                [this, answer = std::move(answer), done, order] {
                    if (order != order_) return;
                    is_at_work_ = false;
                    done(std::move(*answer));
                },
                Qt::QueuedConnection);
        });
    }
    // Waits for as long as the work takes to look at its token.
    void Stop() {
        ++order_;
        thread_ = std::jthread();  // stops the former and waits for it
        is_at_work_ = false;
    }
    // From Start until `done` is called.
    bool is_at_work() const { return is_at_work_; }

private:
    QObject context_;  // takes the answer home
    bool is_at_work_ = false;
    unsigned order_ = 0;  // of the last Start or Stop
    std::jthread thread_;
};

}  // namespace platform
