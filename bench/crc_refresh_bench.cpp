// The CRC refresh of N files beside `rhash --crc32` on the same files, both from the page cache;
// the checksums must be equal.
//   crc_refresh_bench [--files N] [--smallest-mb A] [--largest-mb B]       100 files of 1 to 30 MB
// The whole aim is measured with --files 1000.
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

void MakeFile(const QString& path, int megabytes, QRandomGenerator& random) {
    QList<quint32> block((1 << 20) / 4);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) std::exit(1);
    for (int i = 0; i < megabytes; ++i) {
        random.fillRange(block.data(), block.size());
        if (file.write(reinterpret_cast<const char*>(block.constData()), 1 << 20) != 1 << 20)
            std::exit(1);
    }
}

// Megabytes in all.
int MakeFiles(bench::BenchCatalogue& catalogue, int files, int smallest, int largest) {
    QRandomGenerator random(1);
    int total = 0;
    for (int i = 0; i < files; ++i) {
        const int megabytes = smallest + i * (largest - smallest) / std::max(1, files - 1);
        const QString path = catalogue.Path(FileName(i));
        MakeFile(path, megabytes, random);
        catalogue.Execute(
            QStringLiteral("INSERT INTO TABLES (DisplayName,FileName) Values ('%1', '%2')")
                .arg(FileName(i), path));
        total += megabytes;
    }
    return total;
}

// File name to checksum, as rhash prints them ("1a2b3c4d  table00001.vpt").
QMap<QString, QString> RunRhash(const bench::BenchCatalogue& catalogue, int files) {
    QStringList arguments = {QStringLiteral("--crc32"), QStringLiteral("--simple")};
    for (int i = 0; i < files; ++i)
        arguments.append(FileName(i));
    QProcess rhash;
    rhash.setWorkingDirectory(catalogue.Path({}));
    rhash.start(QStringLiteral("rhash"), arguments);
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

}  // namespace

int main(int argc, char** argv) {
    const int files = bench::NumberOption(argc, argv, "--files", 100);
    bench::BenchCatalogue catalogue;
    const int megabytes =
        MakeFiles(catalogue, files, bench::NumberOption(argc, argv, "--smallest-mb", 1),
                  bench::NumberOption(argc, argv, "--largest-mb", 30));
    NoEvents events;
    const auto refresh = [&] {
        bench::Require(checksum::RefreshCrcs(catalogue.get(), events, [](const QString&) {}));
    };
    refresh();  // brings the files into the page cache
    const QMap<QString, QString> sums = RunRhash(catalogue, files);
    RequireEqual(catalogue, sums);

    double ours = 1e9;
    double theirs = 1e9;
    for (int round = 0; round < 3; ++round) {
        theirs = std::min(theirs, bench::Seconds([&] { RunRhash(catalogue, files); }));
        ours = std::min(ours, bench::Seconds(refresh));
    }
    std::printf("%d files, %d MB, best of 3\n", files, megabytes);
    std::printf("%-20s %8.3f s %8.0f MB/s\n", "rhash --crc32", theirs, megabytes / theirs);
    std::printf("%-20s %8.3f s %8.0f MB/s\n", "CRC refresh", ours, megabytes / ours);
    std::printf("CRC refresh / rhash: %.2f of the time (aim: not more than 1)\n", ours / theirs);
    return 0;
}
