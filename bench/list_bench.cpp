// `tavolo-cli list --json` of a catalogue of N tables, and its CSV, beside `mdb-export` of the same
// file, all to /dev/null.
//   list_bench [--tables N] [--rounds R]       100,000 tables, best of 5 rounds
// Aim: list --json sooner than mdb-export.
#include "many_tables.h"
#include "platform/application_folder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <algorithm>
#include <limits>

namespace {

double Run(const QString& program, const QStringList& words) {
    return bench::Seconds([&] {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(program, words);
        if (process.waitForFinished(-1) && process.exitCode() == 0) return;
        std::fprintf(stderr, "%s failed: %s\n", qPrintable(program),
                     process.readAllStandardError().constData());
        std::exit(1);
    });
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const int tables = bench::NumberOption(argc, argv, "--tables", 100'000);
    const int rounds = bench::NumberOption(argc, argv, "--rounds", 5);
    const QTemporaryDir folder;
    bench::MakeManyTables(folder.path(), QStringLiteral("/home/user/tables"), tables);
    const QString database = folder.filePath(QStringLiteral("pinball.mdb"));
    std::printf("%d tables, file of %.1f MB\n", tables, double(QFile(database).size()) / 1e6);

    const QString cli = platform::ProgramFolder() + QStringLiteral("/tavolo-cli");
    struct Line {
        const char* name;
        QString program;
        QStringList words;
        double best = std::numeric_limits<double>::max();
    };
    const QString at = QStringLiteral("--folder=") + folder.path();
    Line lines[] = {
        {"mdb-export", QStringLiteral("mdb-export"), {database, QStringLiteral("Tables")}},
        {"tavolo-cli list --json", cli, {at, QStringLiteral("list"), QStringLiteral("--json")}},
        {"tavolo-cli list", cli, {at, QStringLiteral("list")}},
        {"tavolo-cli export (CSV)", cli, {at, QStringLiteral("export")}}};
    for (int round = 0; round < rounds; ++round)
        for (Line& line : lines)
            line.best = std::min(line.best, Run(line.program, line.words));
    for (const Line& line : lines)
        std::printf("%-30s %8.3f s   ratio %5.2f%s\n", line.name, line.best,
                    line.best / lines[0].best, &line == &lines[1] ? "   (aim: under 1)" : "");
    return 0;
}
