// LongWork: the commands' work that may take long, in a thread of its own, while the windows are
// painted. It holds the user's input back from everything but the button "Stop" and the Escape key,
// which ask the work to stop where it can. What is at work shows in the status bar, or at the lower
// edge of the dialog that has asked for it, once it has taken a while.
#pragma once

#include "catalogue/catalogue.h"
#include "catalogue/long_run.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <atomic>
#include <functional>
#include <stop_token>

namespace browser {

class StatusPanels;

class LongWork final : public QObject, public catalogue::LongRunner {
    Q_OBJECT

public:
    // Both are borrowed; `status` is the main window's. Work that is begun inside of other work
    // belongs to that.
    LongWork(catalogue::Catalogue& catalogue, StatusPanels& status);

    void Run(const catalogue::LongRun& run,
             const std::function<void(const catalogue::RunSteps&)>& work) override;
    bool is_running() const { return is_running_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Wait(const catalogue::LongRun& run,
              const std::function<void(const catalogue::RunSteps&)>& work);
    void Show(const catalogue::LongRun& run);
    void Stop();
    bool IsStopButton(const QObject* object) const;

    catalogue::Catalogue& catalogue_;
    StatusPanels& status_;
    QPointer<StatusPanels> shown_;  // where the work shows; null: not yet
    QTimer draw_;
    std::atomic<std::int64_t> done_ = 0;
    std::atomic<std::int64_t> total_ = 0;
    std::stop_source stop_;
    bool may_be_stopped_ = false;
    bool is_running_ = false;
};

}  // namespace browser
