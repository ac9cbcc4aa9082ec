// The paths in the catalogue, and how many of them lead to a file here.
#pragma once

#include "base/run_steps.h"
#include "base/status.h"
#include "catalogue/path_map.h"
#include "jet/connection.h"

#include <QtCore/QStringList>

#include <cstdint>
#include <vector>

namespace catalogue {

// Those of all tables, pictures and rules files, each once; not the empty ones. Columns that the
// catalogue does not have have none.
base::Result<QStringList> StoredPaths(jet::Connection& connection,
                                      const base::RunSteps& steps = {});

struct PathCount {
    std::int64_t stored = 0;  // paths that there are
    std::int64_t found = 0;   // of which a file is here
    bool operator==(const PathCount&) const = default;
};

struct PathCounts {
    std::vector<PathCount> pairs;  // of each pair, the paths for which it counts
    PathCount others;              // for which none does
};

// Stopped: what is known until then.
PathCounts CountPaths(const QStringList& stored, const PathMap& map,
                      const base::RunSteps& steps = {});

}  // namespace catalogue
