// The engine against mdbtools on one generated catalogue of 100,000 rows, in one run. Prints a
// table; a ratio above 1 says how many times as fast the engine is.
//   jet_bench [rows]
#include "jet/connection.h"
#include "jet/conversions.h"
#include "jet/database.h"
#include "platform/file_system.h"

#include "base/unicode.h"

#include <mdbtools.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// Ends the program with the failure's text: a benchmark of something that failed says nothing.
void Require(const base::Status& status) {
    if (status.ok()) return;
    std::fprintf(stderr, "%s\n", status.message().c_str());
    std::exit(1);
}

// Seconds of the fastest of three runs.
double Fastest(const std::function<void()>& work) {
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        const auto begin = Clock::now();
        work();
        best = std::min(best, std::chrono::duration<double>(Clock::now() - begin).count());
    }
    return best;
}

// Passes everything on and counts the bytes that are written.
class CountingFile final : public jet::File {
public:
    CountingFile(std::unique_ptr<jet::File> file, std::uint64_t& written)
        : file_(std::move(file)), written_(written) {}
    base::Result<std::uint64_t> Size() const override { return file_->Size(); }
    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        return file_->ReadAt(offset, bytes);
    }
    base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        written_ += bytes.size();
        return file_->WriteAt(offset, bytes);
    }
    base::Status Truncate(std::uint64_t size) override { return file_->Truncate(size); }
    base::Status Sync() override { return file_->Sync(); }
    base::Status Lock(jet::FileLock lock) override { return file_->Lock(lock); }

private:
    std::unique_ptr<jet::File> file_;
    std::uint64_t& written_;
};

class CountingFiles final : public jet::FileSystem {
public:
    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = files_->Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(new CountingFile(std::move(file).value(), written));
    }
    bool Exists(const std::filesystem::path& path) override { return files_->Exists(path); }
    base::Status Remove(const std::filesystem::path& path) override { return files_->Remove(path); }
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override {
        return files_->Rename(from, to);
    }
    base::Status SyncFolder(const std::filesystem::path& folder) override {
        return files_->SyncFolder(folder);
    }
    std::string OwnerName() override { return files_->OwnerName(); }

    std::uint64_t written = 0;

private:
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
};

std::u16string Number(int n) {
    return base::ToUtf16(std::to_string(n));
}

void Execute(jet::Connection& connection, std::u16string_view sql) {
    Require(connection.Execute(sql).status());
}

void Open(jet::Connection& connection, const std::filesystem::path& path) {
    Require(connection.Open(u"Data Source=" + path.u16string()));
}

// Nineteen columns and three indexes, as the program's catalogue has them.
void MakeCatalogue(jet::FileSystem& files, const std::filesystem::path& path, int rows) {
    Require(jet::CreateDatabaseFile(files, path, 46346));
    jet::Connection connection(files);
    Open(connection, path);
    Execute(
        connection,
        u"CREATE TABLE Catalogue (ID COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, DisplayName "
        u"VARCHAR(255) WITH COMPRESSION, FileName VARCHAR(255) WITH COMPRESSION, Author "
        u"VARCHAR(100) WITH COMPRESSION, Company VARCHAR(100) WITH COMPRESSION, [Year] "
        u"VARCHAR(20) WITH COMPRESSION, Version VARCHAR(50), ImageFile VARCHAR(255), FlyerFile "
        u"VARCHAR(255), Notes MEMO, PinMame BIT, Favorite BIT, RulesFile VARCHAR(255), FileDate "
        u"DATE, RulesText MEMO, TimesPlayed INT DEFAULT 0, LastPlayed DATE, DateAdded DATE, CRC "
        u"VARCHAR(50))");
    Execute(connection, u"CREATE INDEX ByName ON Catalogue (DisplayName)");
    Execute(connection, u"CREATE INDEX ByAuthor ON Catalogue (Author, [Year])");
    jet::Database& database = *connection.database();
    jet::Table& table = **database.FindTable(u"Catalogue");
    using jet::Value;
    for (int first = 0; first < rows; first += 1000) {
        Require(database.Begin());
        for (int i = first; i < std::min(first + 1000, rows); ++i) {
            std::vector<Value> row(19);
            row[1] = Value::Text(u"Table number " + Number(i * 7919 % rows));
            row[2] = Value::Text(u"C:\\Visual Pinball\\Tables\\Table " + Number(i) + u".vpt");
            row[3] = Value::Text(u"Author " + Number(i * 31 % 500));
            row[4] = Value::Text(u"Company " + Number(i * 17 % 40));
            row[5] = Value::Text(Number(1950 + i % 60));
            row[9] = Value::Text(u"Notes of table " + Number(i) + u", a line of them");
            row[10] = Value::Boolean(i % 3 == 0);
            row[13] = Value::DateTime(38000 + i % 9000 + 0.5);
            row[15] = Value::Long(i % 50);
            row[17] = Value::DateTime(46000 + i % 300);
            row[18] = Value::Text(u"89ABCDEF");
            Require(table.Insert(row).status());
        }
        Require(database.Commit());
    }
    Require(connection.Close());
}

std::size_t ScanWithEngine(jet::FileSystem& files, const std::filesystem::path& path) {
    jet::Connection connection(files);
    Open(connection, path);
    auto rows = connection.Execute(u"SELECT * FROM Catalogue");
    Require(rows.status());
    std::size_t cells = 0;
    while (!rows->Eof()) {
        for (std::size_t i = 0; i < rows->FieldCount(); ++i)
            cells += rows->Fields(i)->is_null() ? 0 : 1;
        Require(rows->MoveNext());
    }
    return cells;
}

std::size_t ScanWithLibmdb(const std::filesystem::path& path) {
    MdbHandle* mdb = mdb_open(path.c_str(), MDB_NOFLAGS);
    mdb_read_catalog(mdb, MDB_TABLE);
    std::string name = "Catalogue";
    MdbTableDef* table = mdb_read_table_by_name(mdb, name.data(), MDB_TABLE);
    mdb_read_columns(table);
    const auto columns = static_cast<int>(table->num_cols);
    std::vector<std::vector<char>> buffers(static_cast<std::size_t>(columns),
                                           std::vector<char>(MDB_BIND_SIZE));
    std::vector<int> lengths(static_cast<std::size_t>(columns));
    for (int i = 0; i < columns; ++i) {
        const auto at = static_cast<std::size_t>(i);
        mdb_bind_column(table, i + 1, buffers[at].data(), &lengths[at]);
    }
    mdb_rewind_table(table);
    std::size_t cells = 0;
    while (mdb_fetch_row(table) != 0)
        for (const int length : lengths)
            cells += length > 0 ? 1 : 0;
    mdb_free_tabledef(table);
    mdb_close(mdb);
    return cells;
}

// A question that an index cannot answer, and one that it can.
constexpr const char* kMany = "Company > 'Company 2'";
constexpr const char* kFew = "Author = 'Author 77'";

std::size_t OrderWithEngine(jet::FileSystem& files, const std::filesystem::path& path,
                            const char* condition) {
    jet::Connection connection(files);
    Open(connection, path);
    jet::Recordset rows;
    Require(rows.Open(u"SELECT ID, DisplayName, Company FROM Catalogue WHERE " +
                          base::ToUtf16(condition) + u" ORDER BY Company, DisplayName",
                      connection, jet::CursorType::kKeyset));
    std::size_t units = 0;
    while (!rows.Eof()) {
        for (std::size_t i = 0; i < 3; ++i)
            units += jet::ToText(*rows.Fields(i)).size();
        Require(rows.MoveNext());
    }
    return units;
}

// mdb-sql 1.0 knows no ORDER BY: sort does it, as a script would.
void OrderWithMdbSql(const std::filesystem::path& path, const std::filesystem::path& folder,
                     const char* condition) {
    const std::string script = (folder / "question.sql").string();
    std::FILE* file = std::fopen(script.c_str(), "w");
    std::fprintf(file, "SELECT ID, DisplayName, Company FROM Catalogue WHERE %s\ngo\n", condition);
    std::fclose(file);
    const std::string command = "mdb-sql -HFP -i '" + script + "' '" + path.string() +
                                "' | sort -t '\t' -k3,3 -k2,2 > /dev/null";
    if (std::system(command.c_str()) != 0) Require({base::StatusCode::kIoError, "mdb-sql failed"});
}

void PrintRatio(const char* what, double engine, double peer, const char* peer_name, double aim) {
    std::printf("| %-34s | %9.1f ms | %9.1f ms (%s) | %6.1f | %4.0f |\n", what, engine * 1e3,
                peer * 1e3, peer_name, peer / engine, aim);
}

void BenchInsert(const std::filesystem::path& path) {
    constexpr int kRows = 10000;
    CountingFiles files;
    jet::Connection connection(files);
    Open(connection, path);
    Require(connection.Flush());
    files.written = 0;
    const auto begin = Clock::now();
    for (int i = 0; i < kRows; ++i) {
        const std::u16string n = Number(i);
        Execute(connection,
                u"INSERT INTO Catalogue (DisplayName, FileName, Author, [Year], FileDate, "
                u"CRC, DateAdded) VALUES ('New " +
                    n + u"', 'C:\\New\\" + n + u".vpt', 'Author " + n +
                    u"', '2001', '11/20/2026 3:04:05 PM', "
                    u"'12345678', '20-Nov-26')");
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    Require(connection.Close());
    std::printf("\nInsert of %d rows, three indexes, one statement each: %.0f microseconds a row, "
                "%.0f bytes written a row (journal and file)\n",
                kRows, seconds / kRows * 1e6, static_cast<double>(files.written) / kRows);
}

}  // namespace

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    char pattern[] = "/tmp/jet_bench.XXXXXX";
    const std::filesystem::path folder = mkdtemp(pattern);
    const std::filesystem::path path = folder / "catalogue.mdb";
    const auto files = platform::MakeFileSystem();
    const double made = [&] {
        const auto begin = Clock::now();
        MakeCatalogue(*files, path, rows);
        return std::chrono::duration<double>(Clock::now() - begin).count();
    }();
    std::printf("A catalogue of %d rows, %.1f MB, made in %.1f s\n\n", rows,
                static_cast<double>(std::filesystem::file_size(path)) / 1e6, made);
    std::printf("| %-34s | %-12s | %-24s | ratio  | aim  |\n", "", "engine", "peer");
    std::size_t cells = 0;
    std::size_t peer_cells = 0;
    const double scan = Fastest([&] { cells = ScanWithEngine(*files, path); });
    const double peer_scan = Fastest([&] { peer_cells = ScanWithLibmdb(path); });
    PrintRatio("full scan, every cell", scan, peer_scan, "libmdb", 3);
    if (cells == 0 || peer_cells == 0) Require({base::StatusCode::kCorruption, "nothing was read"});
    for (const auto& [what, condition] : {std::pair("selection of most rows, ORDER BY", kMany),
                                          std::pair("selection by an index, ORDER BY", kFew)}) {
        const double order = Fastest([&] { OrderWithEngine(*files, path, condition); });
        const double peer = Fastest([&] { OrderWithMdbSql(path, folder, condition); });
        PrintRatio(what, order, peer, "mdb-sql|sort", 10);
    }
    const double keyset = Fastest([&] {
        jet::Connection connection(*files);
        Open(connection, path);
        jet::Recordset ordered;
        Require(ordered.Open(u"SELECT * FROM Catalogue ORDER BY DisplayName Asc", connection,
                             jet::CursorType::kKeyset, jet::LockType::kOptimistic));
        Require(ordered.MoveLast());
        Require(ordered.Fields(u"FileName").status());
    });
    std::printf("\nKeyset of all rows by name, opened and its last row read: %.1f ms\n",
                keyset * 1e3);
    const double open = Fastest([&] {
        jet::Connection connection(*files);
        Open(connection, path);
        Require(connection.Execute(u"SELECT * FROM Catalogue WHERE ID = 777").status());
    });
    std::printf("Open, and one row by its key: %.2f ms (aim: under 5 ms)\n", open * 1e3);
    BenchInsert(path);
    std::filesystem::remove_all(folder);
    return 0;
}
