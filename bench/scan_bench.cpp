// The folder scan, of a tree of new table files and once more with nothing new, for three sizes of
// the tree: 20 files of 1 KB in each folder, all in the page cache.
//   - All new: beside `rhash --crc32 -r` of the same tree, which reads and sums the same files but
//   stores nothing.
//   - Nothing new: beside `find` with the size and date of each file (aim: at most twice its time),
//   in a catalogue as it is delivered, and in an old one without an index on FileName.
// The aim for both is the same cost for each file whatever the size of the tree. Best of five, the
// two taking turns.
//   scan_bench [--files N]...                                             1000, 10000 and 100000
#include "bench_catalogue.h"
#include "discovery/folder_scan.h"
#include "platform/user_events.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

constexpr int kFilesPerFolder = 20;
constexpr int kBytes = 1024;
constexpr int kRounds = 5;

void MakeTree(const QString& root, int files) {
    const QByteArray bytes(kBytes, 'x');
    for (int i = 0; i < files; ++i) {
        const QString folder = root + QStringLiteral("/folder %1").arg(i / kFilesPerFolder);
        if (i % kFilesPerFolder == 0) QDir().mkpath(folder);
        QFile file(folder + QStringLiteral("/Table number %1 of many.vpt").arg(i));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != kBytes) std::exit(1);
    }
}

double Run(const QString& program, const QStringList& arguments) {
    return bench::Seconds([&] {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(program, arguments);
        if (process.waitForFinished(-1) && process.exitCode() == 0) return;
        std::fprintf(stderr, "%s, the program to compare with, did not run\n", qPrintable(program));
        std::exit(1);
    });
}

double Scan(bench::BenchCatalogue& catalogue, const QString& root, int new_files) {
    platform::NoUserEvents events;
    discovery::UnwatchedScan observer;
    std::int64_t found = 0;
    const double seconds = bench::Seconds([&] {
        discovery::FolderScan scan(catalogue.get(), events, observer);
        bench::Require(scan.Run(root));
        found = scan.found_count();
    });
    if (found == new_files) return seconds;
    std::fprintf(stderr, "%d new files found of %d\n", static_cast<int>(found), new_files);
    std::exit(1);
}

void Print(const char* what, int files, double ours, const char* peer, double theirs) {
    std::printf("%-36s %7d files %9.3f s %8.2f us/file   %-8s %9.3f s %8.2f us/file   %5.2f\n",
                what, files, ours, ours / files * 1e6, peer, theirs, theirs / files * 1e6,
                ours / theirs);
    std::fflush(stdout);
}

void Compare(int files) {
    QTemporaryDir folder;
    MakeTree(folder.path(), files);
    constexpr double kNone = std::numeric_limits<double>::max();
    double all_new = kNone, rhash = kNone, nothing_new = kNone, old = kNone, find = kNone;
    const int rounds = files > 50'000 ? 2 : kRounds;
    for (int round = 0; round < rounds; ++round) {
        rhash =
            std::min(rhash, Run(QStringLiteral("rhash"),
                                {QStringLiteral("--crc32"), QStringLiteral("-r"), folder.path()}));
        bench::BenchCatalogue catalogue;
        all_new = std::min(all_new, Scan(catalogue, folder.path(), files));
        bench::BenchCatalogue old_catalogue;
        old_catalogue.Execute(QStringLiteral("DROP INDEX FileName ON Tables"));
        Scan(old_catalogue, folder.path(), files);
        for (int turn = 0; turn < kRounds; ++turn) {
            find = std::min(find,
                            Run(QStringLiteral("find"),
                                {folder.path(), QStringLiteral("-iname"), QStringLiteral("*.vpt"),
                                 QStringLiteral("-printf"), QStringLiteral("%s %T@\\n")}));
            nothing_new = std::min(nothing_new, Scan(catalogue, folder.path(), 0));
            old = std::min(old, Scan(old_catalogue, folder.path(), 0));
        }
    }
    Print("scan, all new", files, all_new, "rhash", rhash);
    Print("scan, nothing new", files, nothing_new, "find", find);
    Print("scan, nothing new, an old catalogue", files, old, "find", find);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<int> sizes = bench::NumberOptions(argc, argv, "--files");
    if (sizes.empty()) sizes = {1000, 10'000, 100'000};
    for (const int files : sizes)
        Compare(files);
    return 0;
}
