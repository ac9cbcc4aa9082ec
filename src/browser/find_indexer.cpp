#include "browser/find_indexer.h"

#include <utility>

namespace browser {

void FindIndexer::Make(const TableSnapshotPointer& tables) {
    Forget();
    task_.Start(
        [tables](const std::stop_token& stop) -> IndexPointer {
            return FindIndex::Make(tables, [&stop] { return stop.stop_requested(); });
        },
        [this](IndexPointer index) {
            index_ = std::move(index);
            Q_EMIT Ready();
        });
}

void FindIndexer::Forget() {
    task_.Stop();
    index_.reset();
}

}  // namespace browser
