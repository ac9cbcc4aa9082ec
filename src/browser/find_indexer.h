// FindIndexer: makes the index of a snapshot in a thread of its own. Threads: the object belongs to
// the thread that created it, which needs an event loop.
#pragma once

#include "browser/find_index.h"
#include "platform/latest_task.h"

#include <QtCore/QObject>

#include <memory>

namespace browser {

class FindIndexer : public QObject {
    Q_OBJECT

public:
    explicit FindIndexer(QObject* parent = nullptr) : QObject(parent) {}

    // Begins another index; index() is null until Ready.
    void Make(const TableSnapshotPointer& tables);
    // Stops, and frees the index.
    void Forget();
    // nullptr: there is none, or not yet.
    const FindIndex* index() const { return index_.get(); }
    bool is_at_work() const { return task_.is_at_work(); }

Q_SIGNALS:
    void Ready();

private:
    using IndexPointer = std::shared_ptr<const FindIndex>;
    IndexPointer index_;
    platform::LatestTask<IndexPointer> task_;
};

}  // namespace browser
