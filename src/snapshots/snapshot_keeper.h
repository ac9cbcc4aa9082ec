// SnapshotKeeper: makes the snapshots of a running program: before commands that change many rows,
// and every hour. They are checked, and those that are not to be kept removed, in a thread of its
// own, beside the windows. Threads: the object belongs to the thread that created it, which needs
// an event loop; Failed is emitted there.
#pragma once

#include "catalogue/long_run.h"
#include "platform/clock.h"
#include "snapshots/snapshot_store.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace snapshots {

class SnapshotKeeper : public QObject {
    Q_OBJECT

public:
    // All are borrowed and outlive the keeper. `files` may be used by several threads.
    SnapshotKeeper(jet::FileSystem& files, std::filesystem::path database, platform::Clock& clock,
                   QObject* parent = nullptr);
    // Waits for the step in progress; what was not done by then is done by the next run.
    ~SnapshotKeeper() override;

    SnapshotStore& store() { return store_; }
    jet::FileSystem& files() { return files_; }

    // From now on makes a snapshot every hour in which something has changed, the first one after a
    // minute.
    void StartClock();
    // Makes a snapshot before a command, whose name goes into the list, and returns when it is on
    // the disk. A failure is told by Failed; the command goes on. `runner` shows the work; null:
    // nobody does.
    void MakeBefore(const QString& command, catalogue::LongRunner* runner = nullptr);
    // Runs `work` in the keeper's thread, after what was asked for before; `done` is called in this
    // object's thread, unless the keeper is deleted before.
    void Run(std::function<void()> work, std::function<void()> done);
    // When all that was asked for is done. For tests.
    void WaitUntilIdle();

Q_SIGNALS:
    // No snapshot was made, or it does not count. Each reason once, until one was made again.
    void Failed(const base::Status& failure);

private:
    void Work();
    void Post(std::function<void()> work);
    Q_INVOKABLE void MakeByClock();
    void CheckAndKeep();
    void Tell(const base::Status& status);

    jet::FileSystem& files_;
    platform::Clock& clock_;
    SnapshotStore store_;
    QTimer timer_;
    QDateTime last_by_clock_;
    std::string told_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> waiting_;  // mutex_
    bool is_working_ = false;                    // mutex_
    bool is_ending_ = false;                     // mutex_
    std::thread thread_;                         // begun with the first work
};

}  // namespace snapshots
