// LocalPaths: the one place where a path of the catalogue becomes a path of this system; who looks
// for a table, a picture or a rules file asks here first. Copies share the map, so that threads
// keep one. Threads: from any.
#pragma once

#include "catalogue/path_map.h"

#include <memory>

namespace platform {
class SettingsStore;
}

namespace catalogue {

class LocalPaths {
public:
    // Without a map.
    LocalPaths();

    void Use(PathMap map);
    std::shared_ptr<const PathMap> map() const;

    // Where the file is to be looked for: where the map says, or as stored when it is there and not
    // where the map says. Looks at the disk when a pair counts for the path, else never.
    QString Of(const QString& stored) const;
    // How a path of this system is stored (PathMap::Stored).
    QString Stored(const QString& local) const;

private:
    struct State;
    std::shared_ptr<State> state_;
};

// The pairs are a setting of this user on this machine: they say nothing about the catalogue.
// kCorruption: what is kept is no list of pairs.
base::Result<std::vector<PathPair>> ReadPathPairs(platform::SettingsStore& settings);
// kInvalidArgument as CheckPairs; the failures of the store.
base::Status WritePathPairs(platform::SettingsStore& settings, const std::vector<PathPair>& pairs);

}  // namespace catalogue
