// The CRC refresh of N files beside `rhash --crc32` on the same files, both from the page cache;
// the checksums must be equal.
//   crc_refresh_bench                  1000 files of 1 to 10 MB; then 1000 and 100000 files of 4 KB
//   crc_refresh_bench [--files N] [--smallest-kb A] [--largest-kb B]
// Aims: not more than the time of rhash for large files; the same cost for each small file whatever
// their number.
#include "bench_catalogue.h"
#include "catalogue/field_text.h"
#include "checksum/crc_refresh.h"
#include "jet/connection.h"

#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QRandomGenerator>

#include <algorithm>

namespace {

class NoEvents final : public platform::UserEvents {
public:
    void ProcessEvents() override {}
};

QString FileName(int index) {
    return QStringLiteral("table%1.vpt").arg(index, 5, 10, QLatin1Char('0'));
}

void MakeFile(const QString& path, int kilobytes, QRandomGenerator& random) {
    QList<quint32> block(1024 / 4);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) std::exit(1);
    for (int i = 0; i < kilobytes; ++i) {
        random.fillRange(block.data(), block.size());
        if (file.write(reinterpret_cast<const char*>(block.constData()), 1024) != 1024)
            std::exit(1);
    }
}

// Kilobytes in all.
int MakeFiles(bench::BenchCatalogue& catalogue, int files, int smallest, int largest) {
    QRandomGenerator random(1);
    int total = 0;
    for (int i = 0; i < files; ++i) {
        const auto kilobytes = static_cast<int>(smallest + std::int64_t{i} * (largest - smallest) /
                                                               std::max(1, files - 1));
        const QString path = catalogue.Path(FileName(i));
        MakeFile(path, kilobytes, random);
        catalogue.Execute(
            QStringLiteral("INSERT INTO TABLES (DisplayName,FileName) Values ('%1', '%2')")
                .arg(FileName(i), path));
        total += kilobytes;
    }
    return total;
}

// File name to checksum, as rhash prints them ("1a2b3c4d  table00001.vpt").
QMap<QString, QString> RunRhash(const bench::BenchCatalogue& catalogue, int files) {
    QFile list(catalogue.Path(QStringLiteral("list of files")));
    if (!list.open(QIODevice::WriteOnly)) std::exit(1);
    for (int i = 0; i < files; ++i)
        list.write(FileName(i).toUtf8() + '\n');
    list.close();
    QProcess rhash;
    rhash.setWorkingDirectory(catalogue.Path({}));
    rhash.start(QStringLiteral("rhash"), {QStringLiteral("--crc32"), QStringLiteral("--simple"),
                                          QStringLiteral("--file-list=") + list.fileName()});
    if (!rhash.waitForFinished(-1) || rhash.exitCode() != 0) {
        std::fprintf(stderr, "rhash, the program to compare with, did not run\n");
        std::exit(1);
    }
    QMap<QString, QString> sums;
    for (const QByteArray& line : rhash.readAllStandardOutput().split('\n')) {
        const QStringList parts = QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts);
        if (parts.size() == 2) sums[parts[1]] = parts[0];
    }
    return sums;
}

// rhash keeps leading zeros.
void RequireEqual(bench::BenchCatalogue& catalogue, const QMap<QString, QString>& sums) {
    auto rows =
        catalogue.get().CatalogueConnection->Execute(u"select DisplayName, CRC from Tables");
    bench::Require(rows.status());
    int compared = 0;
    for (; !rows->Eof(); bench::Require(rows->MoveNext()), ++compared) {
        const QString name = catalogue::FieldText(*rows, u"DisplayName").value();
        const QString ours = catalogue::FieldText(*rows, u"CRC").value();
        if (ours.rightJustified(8, u'0').toLower() == sums[name].toLower()) continue;
        std::fprintf(stderr, "%s: %s here, %s by rhash\n", qPrintable(name), qPrintable(ours),
                     qPrintable(sums[name]));
        std::exit(1);
    }
    if (compared != sums.size()) std::exit(1);
}

void Compare(int files, int smallest_kb, int largest_kb) {
    bench::BenchCatalogue catalogue;
    const int kilobytes = MakeFiles(catalogue, files, smallest_kb, largest_kb);
    NoEvents events;
    const auto refresh = [&] {
        bench::Require(checksum::RefreshCrcs(catalogue.get(), events, [](const QString&) {}));
    };
    refresh();  // brings the files into the page cache
    RequireEqual(catalogue, RunRhash(catalogue, files));

    double ours = 1e9;
    double theirs = 1e9;
    for (int round = 0; round < 5; ++round) {
        theirs = std::min(theirs, bench::Seconds([&] { RunRhash(catalogue, files); }));
        ours = std::min(ours, bench::Seconds(refresh));
    }
    const auto print = [&](const char* who, double seconds) {
        std::printf("%-14s %8.3f s %8.0f MB/s %10.2f us/file\n", who, seconds,
                    kilobytes / 1024.0 / seconds, seconds / files * 1e6);
    };
    std::printf("%d files of %d to %d KB, best of 5\n", files, smallest_kb, largest_kb);
    print("rhash --crc32", theirs);
    print("CRC refresh", ours);
    std::printf("CRC refresh / rhash: %.2f of the time\n", ours / theirs);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (const int files = bench::NumberOption(argc, argv, "--files", 0); files > 0) {
        const int smallest = bench::NumberOption(argc, argv, "--smallest-kb", 1024);
        Compare(files, smallest, bench::NumberOption(argc, argv, "--largest-kb", smallest));
        return 0;
    }
    Compare(1000, 1024, 10 * 1024);
    Compare(1000, 4, 4);
    Compare(100'000, 4, 4);
    return 0;
}
