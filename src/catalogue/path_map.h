// PathMap: where the files are that the catalogue's paths name, when it was written on another
// system or its files lie on another disk. A pair says that what is stored below one folder is
// below another one here: C:\Tables is /data/tables. The paths in the catalogue stay as they are.
// Nothing here looks at a disk.
//
// Of several pairs the one with the longest stored folder counts, and it is applied once. Folders
// are compared whole and in any letter case. In a path that begins with a drive letter or is that
// of a share both "\" and "/" separate; in one that begins with "/" only that does, as "\" is a
// letter of its names there.
#pragma once

#include "base/status.h"

#include <QtCore/QHash>
#include <QtCore/QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace catalogue {

struct PathPair {
    QString stored;  // the folder with which stored paths begin
    QString here;    // that folder on this system
    bool operator==(const PathPair&) const = default;
};

// More than anybody has disks.
inline constexpr qsizetype kMaxPathPairs = 100;
// Of each folder of a pair, in characters: the longest path of Linux.
inline constexpr qsizetype kMaxFolderLength = 4096;

// kInvalidArgument: one of the folders is not absolute (`here`: on this system), or too long, or a
// text that no folder has; two pairs have the same stored folder; there are too many.
base::Status CheckPairs(const std::vector<PathPair>& pairs);

class PathMap {
public:
    PathMap() = default;
    // Requires: CheckPairs(pairs) is ok.
    explicit PathMap(std::vector<PathPair> pairs);

    const std::vector<PathPair>& pairs() const { return pairs_; }
    bool is_empty() const { return pairs_.empty(); }

    // The pair that counts for this path; nullopt: none.
    std::optional<std::size_t> PairOf(const QString& stored) const;
    // The path here; `stored` itself when there is no pair for it.
    QString Local(const QString& stored) const;
    // How a path of this system is stored so that the other systems of the catalogue find the file,
    // too: a path whose Local is `local`. `local` itself when there is none.
    QString Stored(const QString& local) const;

private:
    struct Match {
        std::size_t pair;
        qsizetype length;  // of the path's part that the folder of the pair stands for
    };
    std::optional<Match> Find(const QString& stored) const;

    std::vector<PathPair> pairs_;
    QHash<QString, std::size_t> by_stored_;  // keys of the stored folders
    qsizetype depth_ = 0;                    // of the deepest stored folder, in names
};

}  // namespace catalogue
