// The engine on one generated catalogue of 100,000 rows, each task beside a program or library that
// does the same in the same run, where there is one. Prints two tables: tasks that read (a ratio
// above 1 says how many times as fast the engine is) and tasks that write (with the bytes that
// reached the journal and the file).
//   jet_bench [rows]
#include "counting_files.h"

#include "jet/connection.h"
#include "jet/tables/database.h"
#include "jet/values/conversions.h"

#include "base/unicode.h"

#include <mdbtools.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

namespace {

using jet::Value;

// Ends the program with the failure's text: a benchmark of something that failed says nothing.
void Require(const base::Status& status) {
    if (status.ok()) return;
    std::fprintf(stderr, "%s\n", status.message().c_str());
    std::exit(1);
}

template <typename T>
T Required(base::Result<T> result) {
    Require(result.status());
    return std::move(result).value();
}

void RequireSame(std::size_t ours, std::size_t theirs) {
    if (ours != theirs || ours == 0)
        Require({base::StatusCode::kCorruption, "the two did not read the same"});
}

double Seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// Of the fastest of three runs.
double Fastest(const std::function<void()>& work) {
    double best = 1e9;
    for (int run = 0; run < 3; ++run)
        best = std::min(best, Seconds(work));
    return best;
}

std::u16string Number(int n) {
    return base::ToUtf16(std::to_string(n));
}

// ------------------------------------------------------------------------------ the catalogue

// A connection that is open while it lives.
class Catalogue {
public:
    Catalogue(jet::FileSystem& files, const std::filesystem::path& path) : connection_(files) {
        Require(connection_.Open(u"Data Source=" + path.u16string()));
    }
    jet::Connection& connection() { return connection_; }
    jet::Database& database() { return *connection_.database(); }
    jet::Table& table() { return *Required(database().FindTable(u"Catalogue")); }
    jet::Recordset Execute(std::u16string_view sql) { return Required(connection_.Execute(sql)); }

private:
    jet::Connection connection_;
};

std::vector<Value> Row(int i, int rows) {
    std::vector<Value> row(19);
    row[1] = Value::Text(u"Table number " + Number(static_cast<int>(i * 7919LL % rows)));
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
    return row;
}

void InsertRows(Catalogue& catalogue, int first, int count, int rows_per_transaction, int rows) {
    jet::Table& table = catalogue.table();
    for (int i = first; i < first + count;) {
        Require(catalogue.database().Begin());
        for (int n = 0; n < rows_per_transaction && i < first + count; ++n, ++i) {
            std::vector<Value> row = Row(i, rows);
            Require(table.Insert(row).status());
        }
        Require(catalogue.database().Commit());
    }
}

// Nineteen columns and three indexes, as the program's catalogue has them.
void MakeCatalogue(jet::FileSystem& files, const std::filesystem::path& path, int rows) {
    Require(jet::CreateDatabaseFile(files, path, 46346));
    Catalogue catalogue(files, path);
    catalogue.Execute(
        u"CREATE TABLE Catalogue (ID COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, DisplayName "
        u"VARCHAR(255) WITH COMPRESSION, FileName VARCHAR(255) WITH COMPRESSION, Author "
        u"VARCHAR(100) WITH COMPRESSION, Company VARCHAR(100) WITH COMPRESSION, [Year] "
        u"VARCHAR(20) WITH COMPRESSION, Version VARCHAR(50), ImageFile VARCHAR(255), FlyerFile "
        u"VARCHAR(255), Notes MEMO, PinMame BIT, Favorite BIT, RulesFile VARCHAR(255), FileDate "
        u"DATE, RulesText MEMO, TimesPlayed INT DEFAULT 0, LastPlayed DATE, DateAdded DATE, CRC "
        u"VARCHAR(50))");
    catalogue.Execute(u"CREATE INDEX ByName ON Catalogue (DisplayName)");
    catalogue.Execute(u"CREATE INDEX ByAuthor ON Catalogue (Author, [Year])");
    InsertRows(catalogue, 0, rows, 1000, rows);
    Require(catalogue.connection().Close());
}

// ------------------------------------------------------------------------------- the engine

std::size_t ScanWithSql(jet::FileSystem& files, const std::filesystem::path& path) {
    Catalogue catalogue(files, path);
    jet::Recordset rows = catalogue.Execute(u"SELECT * FROM Catalogue");
    std::size_t read = 0;
    std::size_t cells = 0;
    for (; !rows.Eof(); Require(rows.MoveNext()), ++read)
        for (std::size_t i = 0; i < rows.FieldCount(); ++i)
            cells += Required(rows.Fields(i)).is_null() ? 0 : 1;
    return cells > read ? read : 0;
}

// Below SQL, the first `columns` columns.
std::size_t Scan(jet::FileSystem& files, const std::filesystem::path& path, std::size_t columns) {
    Catalogue catalogue(files, path);
    std::vector<std::size_t> wanted(columns);
    std::iota(wanted.begin(), wanted.end(), std::size_t{1});
    std::vector<Value> values(columns);
    const auto cursor = Required(catalogue.table().Scan());
    std::size_t read = 0;
    for (; Required(cursor->Next()); ++read)
        Require(cursor->Read(wanted, values));
    return read;
}

// Every row, every field as text.
std::size_t ReadAll(jet::FileSystem& files, const std::filesystem::path& path,
                    const std::string& select) {
    Catalogue catalogue(files, path);
    jet::Recordset rows;
    Require(rows.Open(base::ToUtf16(select), catalogue.connection(), jet::CursorType::kKeyset));
    std::size_t units = 0;
    for (; !rows.Eof(); Require(rows.MoveNext()))
        for (std::size_t i = 0; i < rows.FieldCount(); ++i)
            units += jet::ToText(Required(rows.Fields(i))).size();
    return units;
}

void OpenAndReadLast(jet::FileSystem& files, const std::filesystem::path& path) {
    Catalogue catalogue(files, path);
    jet::Recordset rows;
    Require(rows.Open(u"SELECT * FROM Catalogue ORDER BY DisplayName Asc", catalogue.connection(),
                      jet::CursorType::kKeyset, jet::LockType::kOptimistic));
    Require(rows.MoveLast());
    Require(rows.Fields(u"FileName").status());
}

// -------------------------------------------------------------------------------- its peers

std::size_t ScanWithLibmdb(const std::filesystem::path& path, int columns) {
    MdbHandle* mdb = mdb_open(path.c_str(), MDB_NOFLAGS);
    mdb_read_catalog(mdb, MDB_TABLE);
    std::string name = "Catalogue";
    MdbTableDef* table = mdb_read_table_by_name(mdb, name.data(), MDB_TABLE);
    mdb_read_columns(table);
    const auto all = static_cast<int>(table->num_cols);
    std::vector<std::vector<char>> buffers(static_cast<std::size_t>(all),
                                           std::vector<char>(MDB_BIND_SIZE));
    std::vector<int> lengths(static_cast<std::size_t>(all));
    for (int i = 0; i < all; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const bool wanted = columns == all || (i > 0 && i <= columns);
        if (wanted) mdb_bind_column(table, i + 1, buffers[at].data(), &lengths[at]);
    }
    mdb_rewind_table(table);
    std::size_t rows = 0;
    while (mdb_fetch_row(table) != 0)
        ++rows;
    mdb_free_tabledef(table);
    mdb_close(mdb);
    return rows;
}

// mdb-sql 1.0 knows no ORDER BY: `sort` does it, as a script would.
void ReadWithMdbSql(const std::filesystem::path& path, const std::string& select, bool sort) {
    const std::string script = (path.parent_path() / "question.sql").string();
    std::FILE* file = std::fopen(script.c_str(), "w");
    std::fprintf(file, "%s\ngo\n", select.c_str());
    std::fclose(file);
    const std::string command = "mdb-sql -HFP -i '" + script + "' '" + path.string() + "'" +
                                (sort ? " | sort -t '\t' -k3,3 -k2,2" : "") + " > /dev/null";
    if (std::system(command.c_str()) != 0) Require({base::StatusCode::kIoError, "mdb-sql failed"});
}

// ---------------------------------------------------------------------------------- reading

void Print(const char* what, double engine) {
    std::printf("| %-42s | %9.2f ms | %27s | %6s | %4s |\n", what, engine * 1e3, "", "", "");
}

void Print(const char* what, double engine, double peer, const char* peer_name, double aim) {
    std::printf("| %-42s | %9.2f ms | %9.2f ms (%-12s) | %6.1f | %4.0f |\n", what, engine * 1e3,
                peer * 1e3, peer_name, peer / engine, aim);
}

void BenchScans(jet::FileSystem& files, const std::filesystem::path& path) {
    std::size_t ours = 0;
    std::size_t theirs = 0;
    const double all = Fastest([&] { ours = ScanWithSql(files, path); });
    const double peer_all = Fastest([&] { theirs = ScanWithLibmdb(path, 19); });
    RequireSame(ours, theirs);
    Print("full scan, every cell", all, peer_all, "libmdb", 3);
    const double one = Fastest([&] { ours = Scan(files, path, 1); });
    const double peer_one = Fastest([&] { theirs = ScanWithLibmdb(path, 1); });
    RequireSame(ours, theirs);
    Print("scan of one column, below SQL", one, peer_one, "libmdb", 3);
}

void BenchSelections(jet::FileSystem& files, const std::filesystem::path& path) {
    const std::string select = "SELECT ID, DisplayName, Company FROM Catalogue WHERE ";
    const std::string order = " ORDER BY Company, DisplayName";
    // A question that an index cannot answer, and one that it can.
    for (const auto& [what, condition] :
         {std::pair("selection of most rows, ORDER BY two texts", "Company > 'Company 2'"),
          std::pair("selection by an index, ORDER BY two texts", "Author = 'Author 77'")}) {
        const double engine = Fastest([&] { ReadAll(files, path, select + condition + order); });
        const double peer = Fastest([&] { ReadWithMdbSql(path, select + condition, true); });
        Print(what, engine, peer, "mdb-sql|sort", 10);
    }
    for (const auto& [what, sql] :
         {std::pair("all rows, ORDER BY a date and a number",
                    "SELECT ID, FileDate, TimesPlayed FROM Catalogue ORDER BY FileDate DESC, "
                    "TimesPlayed"),
          std::pair("DISTINCT of two columns", "SELECT DISTINCT Company, [Year] FROM Catalogue"),
          std::pair("GROUP BY with two aggregates",
                    "SELECT Company, Count(*), Max(TimesPlayed) FROM Catalogue GROUP BY Company")})
        Print(what, Fastest([&] { ReadAll(files, path, sql); }));
}

void BenchReading(jet::FileSystem& files, const std::filesystem::path& path) {
    std::printf("| %-42s | %-12s | %-27s | ratio  | aim  |\n", "reading", "engine", "peer");
    BenchScans(files, path);
    BenchSelections(files, path);
    Print("keyset by name, opened, its last row read",
          Fastest([&] { OpenAndReadLast(files, path); }));
    const std::string by_key = "SELECT DisplayName FROM Catalogue WHERE ID = 777";
    const double open = Fastest([&] { ReadAll(files, path, by_key); });
    const double peer = Fastest([&] { ReadWithMdbSql(path, by_key, false); });
    Print("open, one row by its key", open, peer, "mdb-sql", 10);
}

// ---------------------------------------------------------------------------------- writing

// `work` does something to `count` rows; what it leaves pending is written before the count ends.
void PrintWriting(const char* what, int count, bench::CountingFiles& files,
                  const std::filesystem::path& path, const std::function<void(Catalogue&)>& work) {
    Catalogue catalogue(files, path);
    Require(catalogue.connection().Flush());
    files.written = 0;
    const double seconds = Seconds([&] { work(catalogue); });
    Require(catalogue.connection().Close());
    std::printf("| %-42s | %9.1f us | %15.0f |\n", what, seconds / count * 1e6,
                static_cast<double>(files.written) / count);
}

void InsertWithSql(Catalogue& catalogue, int count) {
    for (int i = 0; i < count; ++i) {
        const std::u16string n = Number(i);
        catalogue.Execute(u"INSERT INTO Catalogue (DisplayName, FileName, Author, [Year], "
                          u"FileDate, CRC, DateAdded) VALUES ('New " +
                          n + u"', 'C:\\New\\" + n + u".vpt', 'Author " + n +
                          u"', '2001', '11/20/2026 3:04:05 PM', '12345678', '20-Nov-26')");
    }
}

void UpdateByKey(Catalogue& catalogue, int count, int rows) {
    for (int i = 0; i < count; ++i)
        catalogue.Execute(u"UPDATE Catalogue SET TimesPlayed = TimesPlayed + 1 WHERE ID = " +
                          Number(static_cast<int>(1 + i * 7919LL % rows)));
}

void BenchWriting(const std::filesystem::path& path, int rows) {
    constexpr int kCount = 10000;
    bench::CountingFiles files;
    std::printf("\n| %-42s | %-12s | bytes per row   |\n", "writing, three indexes", "per row");
    PrintWriting("INSERT, one statement a row", kCount, files, path,
                 [&](Catalogue& catalogue) { InsertWithSql(catalogue, kCount); });
    PrintWriting("UPDATE of one row by its key", kCount, files, path,
                 [&](Catalogue& catalogue) { UpdateByKey(catalogue, kCount, rows); });
    PrintWriting("insert below SQL, one row a transaction", kCount, files, path,
                 [&](Catalogue& catalogue) { InsertRows(catalogue, rows, kCount, 1, rows); });
    PrintWriting(
        "insert below SQL, 1,000 rows a transaction", kCount, files, path,
        [&](Catalogue& catalogue) { InsertRows(catalogue, rows + kCount, kCount, 1000, rows); });
    PrintWriting("UPDATE of all rows, one statement", rows, files, path, [&](Catalogue& catalogue) {
        catalogue.Execute(u"UPDATE Catalogue SET TimesPlayed = TimesPlayed + 1");
    });
    PrintWriting("DELETE of half the rows, one statement", rows / 2, files, path,
                 [&](Catalogue& catalogue) {
                     catalogue.Execute(u"DELETE FROM Catalogue WHERE TimesPlayed >= 26");
                 });
}

}  // namespace

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    char pattern[] = "/tmp/jet_bench.XXXXXX";
    const std::filesystem::path folder = mkdtemp(pattern);
    const std::filesystem::path path = folder / "catalogue.mdb";
    const auto files = platform::MakeFileSystem();
    const double made = Seconds([&] { MakeCatalogue(*files, path, rows); });
    std::printf("A catalogue of %d rows, %.1f MB, made in %.1f s\n\n", rows,
                static_cast<double>(std::filesystem::file_size(path)) / 1e6, made);
    BenchReading(*files, path);
    BenchWriting(path, rows);
    std::filesystem::remove_all(folder);
    return 0;
}
