// The start of the program on a catalogue of N tables, until its window is on the screen with the
// tree in it and nothing is left to do, beside `mdb-export` of the same file to /dev/null; and the
// most memory that the program ever held.
//   tests/support/with_display.sh tree_bench [--tables N] [--rounds R]       100,000 tables, best
//   of 3 rounds
// Needs a display with a window manager. Aims: sooner than mdb-export; under 150 MB.
#include "many_tables.h"
#include "platform/application_folder.h"
#include "platform/window_control.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QThread>

#include <algorithm>
#include <limits>

namespace {

constexpr int kPollMs = 1;
constexpr int kIdleMs = 40;  // of waiting for events only: nothing is left to do
constexpr int kMaxStartMs = 60'000;

QString TitleOfTavolo() {
    return QStringLiteral("Tavolo -    v. 1.6 - RC 1");
}

// Settings of their own, so that no first start's question stands before the window.
QProcessEnvironment CleanEnvironment(const QString& folder) {
    QFile settings(folder + QStringLiteral("/config/TAVOLO.ini"));
    QDir().mkpath(folder + QStringLiteral("/config"));
    if (settings.open(QIODevice::WriteOnly)) settings.write("[General]\nVPEXE=/bin/true\n");
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder + QStringLiteral("/config"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    return environment;
}

QByteArray ReadProc(qint64 process, const char* name) {
    QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct Activity {
    bool waiting = false;  // for an event; neither running nor ready to run
    qint64 ticks = -1;     // processor time, user and system
    bool operator==(const Activity&) const = default;
};

Activity ActivityOf(qint64 process) {
    const QByteArray stat = ReadProc(process, "stat");
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13) return {};
    return {fields[0] == "S", fields[11].toLongLong() + fields[12].toLongLong()};
}

double PeakMegabytes(qint64 process) {
    const QByteArray status = ReadProc(process, "status");
    const qsizetype at = status.indexOf("VmHWM:");
    return at < 0 ? 0 : status.mid(at + 6).trimmed().split(' ').front().toDouble() / 1024;
}

struct Start {
    double seconds = 0;
    double peak_megabytes = 0;
};

// The moment after which the process, its window being there, only waited for kIdleMs.
Start StartProgram(const QString& folder, platform::WindowControl& windows) {
    QProcess program;
    program.setProcessEnvironment(CleanEnvironment(folder));
    const auto begin = std::chrono::steady_clock::now();
    const auto elapsed = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    program.start(platform::ProgramFolder() + QStringLiteral("/tavolo"),
                  {QStringLiteral("--folder"), folder});
    program.waitForStarted();
    while (!windows.Find(QStringLiteral("tavolo"), TitleOfTavolo())) {
        if (elapsed() * 1000 > kMaxStartMs) {
            std::fputs("the program's window does not come\n", stderr);
            std::exit(1);
        }
        QThread::msleep(kPollMs);
    }
    Start start{elapsed(), 0};
    Activity before;
    while ((elapsed() - start.seconds) * 1000 < kIdleMs) {
        QThread::msleep(kPollMs);
        const Activity now = ActivityOf(program.processId());
        if (now != before || !now.waiting) start.seconds = elapsed();
        before = now;
    }
    start.peak_megabytes = PeakMegabytes(program.processId());
    program.kill();
    program.waitForFinished();
    return start;
}

double ExportSeconds(const QString& database) {
    return bench::Seconds([&] {
        QProcess exporter;
        exporter.setStandardOutputFile(QProcess::nullDevice());
        exporter.start(QStringLiteral("mdb-export"), {database, QStringLiteral("Tables")});
        if (!exporter.waitForFinished(-1) || exporter.exitCode() != 0) {
            std::fputs("mdb-export failed\n", stderr);
            std::exit(1);
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const int tables = bench::NumberOption(argc, argv, "--tables", 100'000);
    const int rounds = bench::NumberOption(argc, argv, "--rounds", 3);
    QTemporaryDir folder;
    const double making = bench::Seconds(
        [&] { bench::MakeManyTables(folder.path(), QStringLiteral("/home/user/tables"), tables); });
    const QString database = folder.filePath(QStringLiteral("pinball.mdb"));
    std::printf("%d tables, file of %.1f MB (made in %.1f s)\n", tables,
                double(QFile(database).size()) / 1e6, making);

    const auto windows = platform::MakeWindowControl();
    Start best{std::numeric_limits<double>::max(), 0};
    double best_export = std::numeric_limits<double>::max();
    for (int round = 0; round < rounds; ++round) {
        best_export = std::min(best_export, ExportSeconds(database));
        const Start start = StartProgram(folder.path(), *windows);
        best.seconds = std::min(best.seconds, start.seconds);
        best.peak_megabytes = std::max(best.peak_megabytes, start.peak_megabytes);
    }
    std::printf("%-44s %10.3f s\n", "mdb-export to /dev/null", best_export);
    std::printf("%-44s %10.3f s\n", "tavolo, from start to the idle tree", best.seconds);
    std::printf("%-44s %10.2f     (aim: under 1)\n", "ratio", best.seconds / best_export);
    std::printf("%-44s %10.1f MB  (aim: under 150)\n", "most memory of tavolo",
                best.peak_megabytes);
    return 0;
}
