// The engine on one generated catalogue of 100,000 rows. Each line of its two tables, one of tasks
// that read and one of tasks that write, has SQLite beside it: the same rows, indexes and
// questions, in the same run, the fastest of five, the two in turn. A ratio above 1 says how many
// times as fast the engine is. Where another reader of the format does the same, it is the second
// peer.
//   jet_bench [rows [text in the names of the lines]]
#include "jet_bench.h"

#include "duel.h"
#include "jet_side.h"
#include "sqlite_side.h"

#include "platform/file_system.h"

#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

void Run(int rows, const char* only) {
    const auto files = platform::MakeFileSystem();
    char pattern[] = "/tmp/jet_bench.XXXXXX";
    const JetBench bench{*files, mkdtemp(pattern), rows, only};
    const auto megabytes = [](const std::filesystem::path& path) {
        return static_cast<double>(std::filesystem::file_size(path)) / 1e6;
    };
    const double ours = Seconds([&] { MakeJetCatalogue(*files, bench.jet_path(), rows); });
    const double theirs = Seconds([&] { MakeSqliteCatalogue(bench.sqlite_path(), rows); });
    std::printf("A catalogue of %d rows: %.1f MB, made in %.1f s; by SQLite %.1f MB, in %.1f s\n\n",
                rows, megabytes(bench.jet_path()), ours, megabytes(bench.sqlite_path()), theirs);
    BenchReading(bench);
    BenchWriting(bench);
    std::filesystem::remove_all(bench.folder);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    bench::Run(argc > 1 ? std::atoi(argv[1]) : 100000, argc > 2 ? argv[2] : "");
    return 0;
}
