#include "snapshots/snapshot_keeper.h"

#include "snapshots/restore_catalogue.h"
#include "snapshots/texts.h"

#include <utility>

namespace snapshots {
namespace {

constexpr int kMinuteMs = 60'000;
constexpr qint64 kHourSeconds = 3600;

base::Status WithoutSnapshot(const base::Status& failure) {
    return {failure.code(),
            SnapshotsTexts::tr("No snapshot was made: %1")
                .arg(QString::fromStdString(failure.message()))
                .toStdString(),
            failure.number()};
}

}  // namespace

SnapshotKeeper::SnapshotKeeper(jet::FileSystem& files, std::filesystem::path database,
                               platform::Clock& clock, QObject* parent)
    : QObject(parent), files_(files), clock_(clock), store_(files, std::move(database)) {
    timer_.setInterval(kMinuteMs);
    connect(&timer_, &QTimer::timeout, this, &SnapshotKeeper::MakeByClock);
}

SnapshotKeeper::~SnapshotKeeper() {
    {
        const std::lock_guard lock(mutex_);
        is_ending_ = true;
        waiting_.clear();
        changed_.notify_all();
    }
    if (thread_.joinable()) thread_.join();
}

void SnapshotKeeper::StartClock() {
    timer_.start();
}

// The timer comes every minute, so that an hour in which the computer slept is not waited for
// again.
void SnapshotKeeper::MakeByClock() {
    const QDateTime now = clock_.Now();
    if (last_by_clock_.isValid() && qAbs(last_by_clock_.secsTo(now)) < kHourSeconds) return;
    last_by_clock_ = now;
    Post([this, time = ToLocalSeconds(now)] {
        const auto made = store_.Make({Occasion::kClock, time, {}});
        Tell(made.ok() ? base::Status() : WithoutSnapshot(made.status()));
        if (made.ok() && *made) CheckAndKeep();
    });
}

void SnapshotKeeper::MakeBefore(const QString& command, catalogue::LongRunner* runner) {
    const SnapshotStore::Request request{Occasion::kBeforeCommand, ToLocalSeconds(clock_.Now()),
                                         command.toStdString()};
    const auto made = catalogue::RunLong(
        runner, {SnapshotsTexts::tr("Snapshot")},
        [&](const base::RunSteps& steps) { return store_.Make(request, steps); });
    Tell(made.ok() ? base::Status() : WithoutSnapshot(made.status()));
    if (made.ok() && *made) Post([this] { CheckAndKeep(); });
}

void SnapshotKeeper::CheckAndKeep() {
    base::Status done = store_.CheckAll();
    const base::Status kept = store_.Keep();
    if (done.ok()) done = kept;
    if (!done.ok()) Tell(done);
}

// From any thread.
void SnapshotKeeper::Tell(const base::Status& status) {
    QMetaObject::invokeMethod(
        this,
        [this, status] {
            const std::string& text = status.message();
            if (text == told_) return;
            told_ = text;
            if (!status.ok()) Q_EMIT Failed(status);
        },
        Qt::QueuedConnection);
}

void SnapshotKeeper::Run(std::function<void()> work, std::function<void()> done) {
    Post([this, work = std::move(work), done = std::move(done)] {
        work();
        QMetaObject::invokeMethod(this, done, Qt::QueuedConnection);
    });
}

void SnapshotKeeper::Post(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(work));
    if (!thread_.joinable()) thread_ = std::thread([this] { Work(); });
    changed_.notify_all();
}

void SnapshotKeeper::Work() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return is_ending_ || !waiting_.empty(); });
        if (is_ending_) return;
        const std::function<void()> work = std::move(waiting_.front());
        waiting_.pop_front();
        is_working_ = true;
        lock.unlock();
        work();
        lock.lock();
        is_working_ = false;
        changed_.notify_all();
    }
}

void SnapshotKeeper::WaitUntilIdle() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return waiting_.empty() && !is_working_; });
}

}  // namespace snapshots
