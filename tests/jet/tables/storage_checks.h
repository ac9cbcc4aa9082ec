// What has to be true of a database's pages whatever was done to it; each fault is a line of text.
#pragma once

#include "jet/pages/page_store.h"

#include <string>
#include <vector>

namespace jet::test {

struct StorageFaults {
    std::vector<std::string> faults;
    std::size_t entries_checked = 0;
    // Indexes whose keys the engine cannot compute; their entries were checked for their rows only.
    std::size_t indexes_not_computed = 0;
};

// Every page is free or reached exactly once; every index holds exactly the rows of its table, in
// order, under the keys that the engine computes for them. `compare_keys` false: only the rows are
// looked at.
StorageFaults CheckStorage(PageStore& pages, bool compare_keys = true);

}  // namespace jet::test
