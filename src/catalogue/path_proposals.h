// ProposePairs: pairs of the path map, from what is found. Files that are stored under other paths
// than they have here are known by their names and those of the folders above them:
// C:\Tables\Old\x.vpt is /data/vp/tables/old/x.vpt, so C:\Tables may be /data/vp/tables. Proposed
// is only what leads to files that are there.
#pragma once

#include "base/run_steps.h"
#include "catalogue/catalogue.h"
#include "catalogue/path_map.h"

#include <QtCore/QStringList>

#include <cstdint>
#include <vector>

namespace catalogue {

struct ProposedPair {
    PathPair pair;
    std::int64_t stored = 0;  // of the paths that were not found, those below `pair.stored`
    std::int64_t found = 0;   // of which the pair leads to a file
    bool operator==(const ProposedPair&) const = default;
};

// `stored`: the paths of the catalogue. `folders`: of this system, looked through with all below
// them, up to a bound. `map`: what is known already; only files that it does not lead to are looked
// for, and it has none of the proposed pairs. The one that leads to most files comes first.
// Stopped: what is known until then.
std::vector<ProposedPair> ProposePairs(const QStringList& stored, const QStringList& folders,
                                       const PathMap& map, const base::RunSteps& steps = {});

// The folders of this system that are known here: the application folder, those of the collection,
// those of the map, those in which dialogs were last, that of the simulator. Not all need to exist.
// The failure of CollectionFolders.
base::Result<QStringList> FoldersToSearch(const Catalogue& catalogue);

}  // namespace catalogue
