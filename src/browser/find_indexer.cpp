#include "browser/find_indexer.h"

#include <utility>

namespace browser {

FindIndexer::~FindIndexer() {
    Forget();
}

void FindIndexer::Make(const TableSnapshotPointer& tables) {
    Forget();
    is_at_work_ = true;
    thread_ = std::jthread([this, tables, order = order_](const std::stop_token& stop) {
        std::shared_ptr<const FindIndex> made =
            FindIndex::Make(tables, [&stop] { return stop.stop_requested(); });
        if (!made) return;
        QMetaObject::invokeMethod(
            this, [this, made, order] { Take(made, order); }, Qt::QueuedConnection);
    });
}

void FindIndexer::Forget() {
    ++order_;
    thread_ = std::jthread();  // stops the former and waits for it
    index_.reset();
    is_at_work_ = false;
}

// An index that was under way when another was ordered comes too late.
void FindIndexer::Take(std::shared_ptr<const FindIndex> index, unsigned order) {
    if (order != order_) return;
    index_ = std::move(index);
    is_at_work_ = false;
    Q_EMIT Ready();
}

}  // namespace browser
