// FindIndexer: makes the index of a snapshot in a thread of its own. Threads: the object belongs to
// the thread that created it, which needs an event loop.
#pragma once

#include "browser/find_index.h"

#include <QtCore/QObject>

#include <memory>
#include <thread>

namespace browser {

class FindIndexer : public QObject {
    Q_OBJECT

public:
    explicit FindIndexer(QObject* parent = nullptr) : QObject(parent) {}
    // Waits for the thread, for as long as one table takes.
    ~FindIndexer() override;

    // Begins another index; index() is null until Ready.
    void Make(const TableSnapshotPointer& tables);
    // Stops, and frees the index.
    void Forget();
    // nullptr: there is none, or not yet.
    const FindIndex* index() const { return index_.get(); }
    bool is_at_work() const { return is_at_work_; }

Q_SIGNALS:
    void Ready();

private:
    void Take(std::shared_ptr<const FindIndex> index, unsigned order);

    std::shared_ptr<const FindIndex> index_;  // shared with the event that brings it
    bool is_at_work_ = false;
    unsigned order_ = 0;  // of the last Make or Forget
    std::jthread thread_;
};

}  // namespace browser
