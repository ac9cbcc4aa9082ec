// command_bench [rows [text]] (of the commands whose name holds the text): what remembering for
// undo adds to each command of the program that changes many tables. Each runs on a copy of the
// same catalogue with and without a history, in turn; the fastest of three counts. The time ends
// when everything is in the catalogue's file and, with a history, in that. Then the command is
// undone. Aims, on 100,000 tables: 15 % more at most, undone in 3 s.
#include "bench_catalogue.h"
#include "history/history_file.h"
#include "history/undo_redo.h"
#include "support/changing_commands.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

using test_support::ChangingCommand;
using test_support::TablesFolder;

struct Times {
    double command = std::numeric_limits<double>::max();  // seconds
    double undo = std::numeric_limits<double>::max();
};

void RunOnce(const TablesFolder& folder, const ChangingCommand& command, bool remember,
             Times& best) {
    folder.StartAgain();
    const auto files = platform::MakeFileSystem();
    history::HistoryFile history(*files, folder.database().toStdU16String());
    platform::SystemClock clock;
    platform::NoSettings settings;
    catalogue::ProcessValues values;
    values.ApplicationFolder = folder.folder();
    jet::Connection connection(*files);
    connection.UseNotes(remember ? &history : nullptr);
    catalogue::Catalogue tables{&connection, &values, &settings, &clock};
    bench::Require(catalogue::Main(tables));
    bench::Require(connection.Flush());
    best.command = std::min(best.command, bench::Seconds([&] {
                                bench::Require(command.run(folder, tables));
                                bench::Require(connection.Flush());
                            }));
    if (remember)
        best.undo = std::min(best.undo, bench::Seconds([&] {
                                 const auto done = history::UndoRedo(connection, history).Undo();
                                 bench::Require(done.status());
                                 if (!*done || !(*done)->result.refusals.empty()) std::exit(1);
                             }));
    bench::Require(connection.Close());
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kRounds = 3;
    const TablesFolder folder(argc > 1 ? std::atoi(argv[1]) : 100'000);
    std::printf("%d tables\n%-24s %10s %12s %8s %10s\n", folder.rows(), "", "without", "remembered",
                "more", "undone in");
    for (const ChangingCommand& command : test_support::ChangingCommands()) {
        if (!command.is_for_all || std::strstr(command.name, argc > 2 ? argv[2] : "") == nullptr)
            continue;
        Times without;
        Times with;
        for (int round = 0; round < kRounds; ++round) {
            RunOnce(folder, command, false, without);
            RunOnce(folder, command, true, with);
        }
        std::printf("%-24s %8.3f s %10.3f s %+6.1f %% %8.3f s\n", command.name, without.command,
                    with.command, 100 * (with.command / without.command - 1), with.undo);
        std::fflush(stdout);
    }
    return 0;
}
