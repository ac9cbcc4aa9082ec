// The path map: what it costs to look for 100,000 tables and as many pictures of a catalogue that
// came from another system, in turn, as the tree and the wall do. Beside the same files asked for
// by the names that they have here. And how long proposals take for such a catalogue.
//   - no map: the paths are as they are here
//   - no pair: there is a map, which is for other folders
//   - same case: a pair leads to the files, whose names are as on the disk
//   - other case: all folders and names are in another letter case
//   path_map_bench [--files N]                                                            100000
#include "bench_catalogue.h"
#include "catalogue/local_paths.h"
#include "catalogue/path_proposals.h"
#include "platform/files.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <algorithm>
#include <filesystem>
#include <limits>

namespace {

using catalogue::LocalPaths;
using catalogue::PathMap;

constexpr int kRounds = 3;
constexpr double kNone = std::numeric_limits<double>::max();

void MakeFiles(const QString& root, int files) {
    for (const char* const folder : {"/vp/tables", "/vp/pictures"}) {
        const QString made = root + QLatin1String(folder);
        QDir().mkpath(made);
        for (int i = 0; i < files; ++i)
            if (QFile file(made + QStringLiteral("/Name %1.vpt").arg(i));
                !file.open(QIODevice::WriteOnly))
                std::exit(1);
        // What has just changed is not held in memory.
        const std::filesystem::path path = made.toStdString();
        last_write_time(path, last_write_time(path) - std::chrono::hours(1));
        last_write_time(path.parent_path(), last_write_time(path));
    }
}

QStringList Paths(const QString& begin, const QString& separator, int files, bool other_case) {
    QStringList paths;
    for (int i = 0; i < files; ++i)
        for (const char* const folder : {"tables", "pictures"}) {
            const QString path =
                QLatin1String(folder) + separator + QStringLiteral("Name %1.vpt").arg(i);
            paths.append(begin + separator + (other_case ? path.toUpper() : path));
        }
    return paths;
}

double Look(const LocalPaths& local, const QStringList& paths) {
    qsizetype found = 0;
    const double seconds = bench::Seconds([&] {
        for (const QString& path : paths)
            found += platform::FileExists(local.Of(path)) ? 1 : 0;
    });
    if (found == paths.size()) return seconds;
    std::fprintf(stderr, "%lld of %lld files found\n", static_cast<long long>(found),
                 static_cast<long long>(paths.size()));
    std::exit(1);
}

double AskDisk(const QStringList& paths) {
    return bench::Seconds([&] {
        for (const QString& path : paths)
            if (!platform::FileExists(path)) std::exit(1);
    });
}

void Print(const char* what, qsizetype paths, double ours, double disk) {
    std::printf("%-12s %7d paths %8.3f s %7.2f us/path   %5.2f of the disk alone\n", what,
                static_cast<int>(paths), ours, ours / static_cast<double>(paths) * 1e6,
                ours / disk);
}

void Compare(int files) {
    QTemporaryDir folder;
    MakeFiles(folder.path(), files);
    const QString here = folder.filePath(QStringLiteral("vp"));
    const QStringList as_here = Paths(here, QStringLiteral("/"), files, false);
    const QStringList same = Paths(QStringLiteral("C:\\VP"), QStringLiteral("\\"), files, false);
    const QStringList other = Paths(QStringLiteral("C:\\VP"), QStringLiteral("\\"), files, true);
    const LocalPaths none;
    LocalPaths mapped, elsewhere;
    mapped.Use(PathMap({{QStringLiteral("c:\\vp"), here}}));
    elsewhere.Use(PathMap({{QStringLiteral("D:\\Games"), here}}));
    double disk = kNone, no_map = kNone, no_pair = kNone, same_case = kNone, other_case = kNone;
    for (int round = 0; round < kRounds; ++round) {
        disk = std::min(disk, AskDisk(as_here));
        no_map = std::min(no_map, Look(none, as_here));
        no_pair = std::min(no_pair, Look(elsewhere, as_here));
        same_case = std::min(same_case, Look(mapped, same));
        other_case = std::min(other_case, Look(mapped, other));
    }
    Print("no map", as_here.size(), no_map, disk);
    Print("no pair", as_here.size(), no_pair, disk);
    Print("same case", same.size(), same_case, disk);
    Print("other case", other.size(), other_case, disk);
    std::vector<catalogue::ProposedPair> proposed;
    const double proposals = bench::Seconds(
        [&] { proposed = catalogue::ProposePairs(other, {folder.path()}, PathMap()); });
    Print("proposals", other.size(), proposals, disk);
    if (proposed.size() != 1 || proposed[0].found != other.size()) std::exit(1);
}

}  // namespace

int main(int argc, char** argv) {
    int files = 100'000;
    if (argc == 3 && std::string_view(argv[1]) == "--files") files = std::atoi(argv[2]);
    Compare(files);
}
