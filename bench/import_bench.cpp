// The import of a launcher's data file, one statement a line, beside the engine's own rate of
// inserts: N lines into N rows.
//   import_bench [--rows N]        N: 10000
#include "bench_catalogue.h"
#include "maintenance/launcher_import.h"

#include <QtCore/QFile>

namespace {

QString Checksum(int row) {
    return QString::number(0x9E3779B9U * static_cast<unsigned>(row + 1), 16).toUpper();
}

class NoPrompts final : public platform::UserPrompts {
public:
    platform::MessageAnswer Ask(const platform::Message& message) override {
        std::fprintf(stderr, "unexpected box: %s\n", message.text.toUtf8().constData());
        std::exit(1);
    }
    QString ChooseFileToOpen(const platform::FileDialog& dialog) override {
        return dialog.file_name;
    }
    QString ChooseFileToSave(const platform::FileDialog&) override { return {}; }
    QString ChooseFolder(const QString&) override { return {}; }
};

class NoEvents final : public platform::UserEvents {
public:
    void ProcessEvents() override {}
};

class CountingDisplay final : public maintenance::ImportDisplay {
public:
    int written = 0;
    void SetBusy(bool) override {}
    void SetReading(const QString&) override {}
    void SetWriting(const QString& text) override { written += text.startsWith(u"Witing"); }
    void SetDone() override {}
};

void InsertRows(bench::BenchCatalogue& catalogue, int rows) {
    for (int i = 0; i < rows; ++i)
        catalogue.Execute(QStringLiteral("INSERT INTO TABLES (DisplayName,FileName,FIleDate,CRC,"
                                         "DateAdded) Values ('Table %1', '/tables/Table %1.vpt',"
                                         "'11/20/2003 3:04:05 PM','%2','20-Nov-03')")
                              .arg(i)
                              .arg(Checksum(i)));
}

void WriteDataFile(const QString& path, int rows) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) std::exit(1);
    for (int i = rows - 1; i >= 0; --i)
        file.write(QStringLiteral("Table %1\\1.%1\\$%2\\Author %1\\19%3\\Bally\\VPinMame\r\n")
                       .arg(i)
                       .arg(Checksum(i))
                       .arg(i % 100, 2, 10, QLatin1Char('0'))
                       .toLatin1());
}

void PrintRow(const char* what, int rows, double seconds) {
    std::printf("%-34s %10.3f s %12.0f rows/s\n", what, seconds, rows / seconds);
}

}  // namespace

int main(int argc, char** argv) {
    const int rows = bench::NumberOption(argc, argv, "--rows", 10'000);
    bench::BenchCatalogue catalogue;
    const double inserting = bench::Seconds([&] { InsertRows(catalogue, rows); });
    WriteDataFile(catalogue.Path(QStringLiteral("vpLauncher.dat")), rows);

    NoPrompts prompts;
    NoEvents events;
    CountingDisplay display;
    maintenance::LauncherImport import(catalogue.get(), prompts, events, display);
    const double importing = bench::Seconds([&] { import.ImportAll(); });
    if (display.written != rows) {
        std::fprintf(stderr, "%d of %d lines were written\n", display.written, rows);
        return 1;
    }
    PrintRow("insert, one statement a row", rows, inserting);
    PrintRow("import, one update a line", rows, importing);
    std::printf("import / insert: %.2f of the rate (aim: 10,000 lines in under 2 s)\n",
                inserting / importing);
    return 0;
}
