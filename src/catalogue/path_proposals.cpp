#include "catalogue/path_proposals.h"

#include "base/path_pieces.h"
#include "catalogue/collection_folders.h"
#include "catalogue/local_paths.h"
#include "catalogue/path_names.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "platform/files.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>
#include <deque>
#include <tuple>
#include <utility>

namespace catalogue {
namespace {

// Bounds of the work, for folders that hold a whole disk and catalogues that name every file of it.
constexpr std::size_t kMaxFolders = 50'000;
constexpr qsizetype kMaxFiles = 500'000;
constexpr qsizetype kMaxPlacesOfName = 16;   // files of one name that are looked at
constexpr qsizetype kMaxSample = 2'000;      // lost paths, spread over all of them
constexpr std::size_t kMaxCandidates = 100;  // those that most of the sample speak for
constexpr std::size_t kMaxProposals = 20;

// The files below some folders, by their names.
class FileIndex {
public:
    void Add(const QStringList& folders, const base::RunSteps& steps) {
        std::deque<QString> waiting;
        for (const QString& folder : folders)
            if (platform::FolderExists(folder))
                waiting.push_back(WithTrailingSeparator(platform::AbsolutePath(folder)));
        while (!waiting.empty() && !steps.stop.stop_requested() &&
               static_cast<std::size_t>(met_.size()) < kMaxFolders && files_.size() < kMaxFiles) {
            const QString folder = waiting.front();
            waiting.pop_front();
            List(folder, waiting);
            if (steps.progress)
                steps.progress(met_.size(), met_.size() + static_cast<qsizetype>(waiting.size()));
        }
    }
    // Of the files with this name, in any letter case; with their separators.
    QStringList FoldersOf(const QString& name) const { return places_.value(name.toCaseFolded()); }
    bool Has(const QString& path) const { return files_.contains(path.toCaseFolded()); }

private:
    // Links are not followed, except those that are given. What cannot be listed has no files.
    void List(const QString& folder, std::deque<QString>& waiting) {
        if (platform::IsPseudoFileSystem(folder)) return;
        const QString identity = platform::Identity(folder);
        if (met_.contains(identity)) return;
        met_.insert(identity);
        platform::ListFolder(folder, [&](const platform::FolderEntry& entry) {
            if (entry.is_folder && !entry.is_link)
                waiting.push_back(folder + entry.name + platform::NativeSeparator());
            if (entry.is_folder || files_.size() >= kMaxFiles) return;
            files_.insert((folder + entry.name).toCaseFolded());
            QStringList& places = places_[entry.name.toCaseFolded()];
            if (places.size() < kMaxPlacesOfName) places.append(folder);
        }).Ignore();
    }

    QSet<QString> met_;    // identities of folders
    QSet<QString> files_;  // paths in one letter case
    QHash<QString, QStringList> places_;
};

QStringList LostPaths(const QStringList& stored, const PathMap& map, const base::RunSteps& steps) {
    LocalPaths local;
    local.Use(map);
    QStringList lost;
    base::StepCount count(steps, stored.size());
    for (const QString& path : stored) {
        if (!platform::FileExists(local.Of(path))) lost.append(path);
        if (!count.Next().ok()) break;
    }
    return lost;
}

QStringList SampleOf(const QStringList& paths) {
    if (paths.size() <= kMaxSample) return paths;
    QStringList sample;
    for (qsizetype i = 0; i < kMaxSample; ++i)
        sample.append(paths[i * paths.size() / kMaxSample]);
    return sample;
}

// Takes the last name off a folder; false: it is a root.
bool TakeName(QString& folder, QString& name) {
    QString shorter = folder;
    if (!shorter.isEmpty() && base::IsPathSeparator(shorter.back().unicode())) shorter.chop(1);
    name = GetFileName(shorter);
    const QString above = GetFolder(shorter);
    if (name.isEmpty() || above.isEmpty()) return false;
    folder = above;
    return true;
}

// A hostile path has many folders.
constexpr int kMaxTail = 64;

// The pairs by which `stored` could lead into `here`: of the whole folders first, then of those
// above them as long as their names are the same.
std::vector<PathPair> PairsOf(const QString& stored, const QString& here) {
    std::vector<PathPair> pairs;
    PathPair pair{GetFolder(stored), here};
    QString stored_name, here_name;
    for (int i = 0; i < kMaxTail; ++i) {
        if (!CheckPairs({pair}).ok()) break;
        pairs.push_back(pair);
        if (!TakeName(pair.stored, stored_name) || !TakeName(pair.here, here_name) ||
            stored_name.compare(here_name, Qt::CaseInsensitive) != 0)
            break;
    }
    return pairs;
}

struct Candidate {
    PathPair pair;
    std::int64_t votes = 0;
};

std::vector<Candidate> CandidatesOf(const QStringList& sample, const FileIndex& files) {
    QHash<std::pair<QString, QString>, Candidate> by_key;
    for (const QString& stored : sample)
        for (const QString& here : files.FoldersOf(GetFileName(stored)))
            for (const PathPair& pair : PairsOf(stored, here)) {
                Candidate& candidate = by_key[{pair.stored.toCaseFolded(), pair.here}];
                if (candidate.votes++ == 0) candidate.pair = pair;
            }
    std::vector<Candidate> candidates(by_key.begin(), by_key.end());
    // Of as many votes the deeper folder: it says less about what nobody has seen.
    std::ranges::sort(candidates, [](const Candidate& a, const Candidate& b) {
        return std::tuple(-a.votes, -a.pair.stored.size(), a.pair.stored, a.pair.here) <
               std::tuple(-b.votes, -b.pair.stored.size(), b.pair.stored, b.pair.here);
    });
    if (candidates.size() > kMaxCandidates) candidates.resize(kMaxCandidates);
    return candidates;
}

ProposedPair Judged(const PathPair& pair, const QStringList& lost, const FileIndex& files) {
    const PathMap map({pair});
    ProposedPair judged{pair};
    for (const QString& path : lost) {
        if (!map.PairOf(path)) continue;
        ++judged.stored;
        if (files.Has(map.Local(path))) ++judged.found;
    }
    return judged;
}

// One file of many may have its name by chance.
bool IsWorthProposing(const ProposedPair& judged) {
    return judged.found >= 2 || (judged.found == 1 && judged.stored == 1);
}

bool IsNew(const PathMap& map, const std::vector<ProposedPair>& proposed, const PathPair& pair) {
    std::vector<PathPair> all = map.pairs();
    for (const ProposedPair& each : proposed)
        all.push_back(each.pair);
    all.push_back(pair);
    return CheckPairs(all).ok();
}

}  // namespace

base::Result<QStringList> FoldersToSearch(const Catalogue& catalogue) {
    const ProcessValues& values = *catalogue.values;
    ASSIGN_OR_RETURN(QStringList folders, CollectionFolders(CataloguePath(catalogue)));
    folders.prepend(values.ApplicationFolder);
    for (const PathPair& pair : values.paths.map()->pairs())
        folders.append(pair.here);
    folders.append({values.last_folders.scan, values.last_folders.capture,
                    values.last_folders.rules, values.LastPictureDir,
                    GetFolder(values.VisualPinballExe)});
    folders.removeAll(QString());
    folders.removeDuplicates();
    return folders;
}

std::vector<ProposedPair> ProposePairs(const QStringList& stored, const QStringList& folders,
                                       const PathMap& map, const base::RunSteps& steps) {
    QStringList lost = LostPaths(stored, map, steps);
    FileIndex files;
    if (!lost.isEmpty()) files.Add(folders, steps);
    std::vector<ProposedPair> proposed;
    while (!lost.isEmpty() && proposed.size() < kMaxProposals) {
        const QStringList sample = SampleOf(lost);
        ProposedPair best;
        for (const Candidate& candidate : CandidatesOf(sample, files)) {
            if (steps.stop.stop_requested()) return proposed;
            const ProposedPair judged = Judged(candidate.pair, sample, files);
            if (judged.found > best.found && IsNew(map, proposed, candidate.pair)) best = judged;
        }
        if (best.found == 0) break;
        best = Judged(best.pair, lost, files);
        if (!IsWorthProposing(best)) break;
        proposed.push_back(best);
        const PathMap found({best.pair});
        lost.removeIf([&](const QString& path) {
            return found.PairOf(path) && files.Has(found.Local(path));
        });
    }
    return proposed;
}

}  // namespace catalogue
