// The import of a launcher's data file of N lines into N rows, each line a statement, for several
// N, beside SQLite with the same statements on the same rows: a table with an index on the CRC,
// texts compared without regard to letter case, WAL with synchronous NORMAL, each statement parsed
// and committed by itself.
//   import_bench [--rows N]...                                           1000, 10000 and 100000
// Best of three, the two taking turns. Aims: the same cost for each line whatever the number of
// rows; 10,000 lines in under 2 s.
#include "bench_catalogue.h"
#include "maintenance/launcher_import.h"

#include <QtCore/QFile>

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <vector>

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
    QString ChooseFolder(const QString&, const QString&) override { return {}; }
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

double Import(int rows) {
    bench::BenchCatalogue catalogue;
    InsertRows(catalogue, rows);
    WriteDataFile(catalogue.Path(QStringLiteral("vpLauncher.dat")), rows);
    NoPrompts prompts;
    NoEvents events;
    CountingDisplay display;
    maintenance::LauncherImport import(catalogue.get(), prompts, events, display);
    const double seconds = bench::Seconds([&] { import.ImportAll(); });
    if (display.written == rows) return seconds;
    std::fprintf(stderr, "%d of %d lines were written\n", display.written, rows);
    std::exit(1);
}

class Sqlite {
public:
    explicit Sqlite(const QString& path) {
        Require(sqlite3_open(path.toUtf8().constData(), &database_));
        Execute("PRAGMA journal_mode=WAL");
        Execute("PRAGMA synchronous=NORMAL");
    }
    ~Sqlite() { sqlite3_close(database_); }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;
    void Execute(const QByteArray& sql) {
        Require(sqlite3_exec(database_, sql.constData(), nullptr, nullptr, nullptr));
    }
    int changed_rows() const { return sqlite3_changes(database_); }

private:
    void Require(int code) {
        if (code == SQLITE_OK) return;
        std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(database_));
        std::exit(1);
    }
    sqlite3* database_ = nullptr;
};

double SqliteUpdates(int rows) {
    const QTemporaryDir folder;
    Sqlite database(folder.filePath(QStringLiteral("rows.db")));
    database.Execute("CREATE TABLE Tables (ID INTEGER PRIMARY KEY, DisplayName TEXT COLLATE NOCASE,"
                     " FileName TEXT COLLATE NOCASE, FileDate REAL, CRC TEXT COLLATE NOCASE,"
                     " DateAdded REAL, Version TEXT, Author TEXT, Year TEXT, Company TEXT,"
                     " PinMame INTEGER)");
    database.Execute("CREATE INDEX Name ON Tables (DisplayName)");
    database.Execute("CREATE INDEX File ON Tables (FileName)");
    database.Execute("CREATE INDEX Sum ON Tables (CRC)");
    database.Execute("BEGIN");
    for (int i = 0; i < rows; ++i)
        database.Execute(QStringLiteral("INSERT INTO Tables (DisplayName, FileName, FileDate, CRC,"
                                        " DateAdded) VALUES ('Table %1', '/tables/Table %1.vpt',"
                                        " 37945.6, '%2', 37945)")
                             .arg(i)
                             .arg(Checksum(i))
                             .toUtf8());
    database.Execute("COMMIT");
    return bench::Seconds([&] {
        for (int i = rows - 1; i >= 0; --i) {
            database.Execute(
                QStringLiteral("UPDATE Tables SET Version = '1.%1', Author = 'Author %1', Year = "
                               "'19%2', Company = 'Bally', PinMame = 1 WHERE CRC = '%3'")
                    .arg(i)
                    .arg(i % 100, 2, 10, QLatin1Char('0'))
                    .arg(Checksum(i))
                    .toUtf8());
            if (database.changed_rows() != 1) std::exit(1);
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kRounds = 3;
    std::vector<int> sizes = bench::NumberOptions(argc, argv, "--rows");
    if (sizes.empty()) sizes = {1000, 10'000, 100'000};
    std::printf("%10s %12s %12s %12s %12s %8s\n", "lines", "import", "us/line", "SQLite", "us/line",
                "ratio");
    for (const int rows : sizes) {
        double ours = std::numeric_limits<double>::max();
        double theirs = ours;
        for (int round = 0; round < kRounds; ++round) {
            theirs = std::min(theirs, SqliteUpdates(rows));
            ours = std::min(ours, Import(rows));
        }
        std::printf("%10d %10.3f s %12.2f %10.3f s %12.2f %8.2f\n", rows, ours, ours / rows * 1e6,
                    theirs, theirs / rows * 1e6, ours / theirs);
        std::fflush(stdout);
    }
    return 0;
}
