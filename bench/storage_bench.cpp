// The engine below SQL against libmdb of mdbtools, on a catalogue of 100,000 rows: scan, open,
// insert with three indexes.
#include "jet/database.h"
#include "platform/file_system.h"

#include <mdbtools.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <numeric>

namespace {

constexpr int kRows = 100000;
constexpr int kMeasuredInserts = 10000;

using Clock = std::chrono::steady_clock;

double MillisecondsOf(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

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

jet::ColumnDesign Column(const char16_t* name, jet::ColumnType type, std::uint16_t size = 0) {
    jet::ColumnDesign column;
    column.name = name;
    column.type = type;
    column.size = size;
    column.compressed = type == jet::ColumnType::kText || type == jet::ColumnType::kMemo;
    return column;
}

jet::TableDesign Design() {
    using enum jet::ColumnType;
    jet::TableDesign design;
    design.name = u"Tables";
    design.columns = {Column(u"ID", kLong),
                      Column(u"FileName", kText, 255),
                      Column(u"DisplayName", kText, 100),
                      Column(u"Author", kText, 100),
                      Column(u"Company", kText, 50),
                      Column(u"Year", kShort),
                      Column(u"Notes", kMemo),
                      Column(u"Rom", kBoolean),
                      Column(u"TimesPlayed", kLong),
                      Column(u"DateAdded", kDate),
                      Column(u"CRC", kText, 50)};
    design.columns[0].autonumber = true;
    design.indexes = {{u"PrimaryKey", {{0, true}}, true},
                      {u"DisplayName", {{2, true}}},
                      {u"AuthorYear", {{3, true}, {5, true}}}};
    return design;
}

std::u16string Number(int value) {
    const std::string text = std::to_string(value);
    return {text.begin(), text.end()};
}

std::vector<jet::Value> Row(int i) {
    using jet::Value;
    const int mixed = static_cast<int>(static_cast<unsigned>(i) * 2654435761U >> 12);
    return {Value::Null(),
            Value::Text(u"C:\\Games\\Visual Pinball\\Tables\\table " + Number(i) + u".vpt"),
            Value::Text(u"Table " + Number(mixed)),
            Value::Text(u"Author " + Number(mixed % 500)),
            Value::Text(u"Company"),
            Value::Short(static_cast<std::int16_t>(1970 + mixed % 40)),
            i % 3 == 0 ? Value::Text(u"Some notes on this table, not very long.") : Value::Null(),
            Value::Boolean(i % 2 == 0),
            Value::Long(i % 100),
            Value::DateTime(40000 + i % 1000),
            Value::Text(u"89ABCDEF")};
}

std::unique_ptr<jet::Database> Open(jet::FileSystem& files, const std::filesystem::path& path) {
    return Required(
        jet::OpenDatabase(Required(jet::OpenPageStore(files, path, {})), path.string()));
}

void Fill(jet::Database& database, int from, int count, int rows_per_transaction) {
    for (int i = from; i < from + count;) {
        Require(database.Begin());
        for (int n = 0; n < rows_per_transaction && i < from + count; ++n, ++i) {
            auto values = Row(i);
            Require(Required(database.FindTable(u"Tables"))->Insert(values).status());
        }
        Require(database.Commit());
    }
}

int ScanOurs(jet::Table& table, bool all_columns) {
    std::vector<std::size_t> columns(all_columns ? table.design().columns.size() : 1);
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    std::vector<jet::Value> values(columns.size());
    const auto cursor = Required(table.Scan());
    int rows = 0;
    while (Required(cursor->Next())) {
        Require(cursor->Read(columns, values));
        ++rows;
    }
    return rows;
}

int ScanTheirs(const std::filesystem::path& path) {
    MdbHandle* mdb = mdb_open(path.c_str(), MDB_NOFLAGS);
    MdbTableDef* table = mdb_read_table_by_name(mdb, const_cast<char*>("Tables"), MDB_TABLE);
    mdb_read_columns(table);
    mdb_rewind_table(table);
    std::vector<std::array<char, 65536>> buffers(table->num_cols);
    for (unsigned i = 0; i < table->num_cols; ++i)
        mdb_bind_column(table, static_cast<int>(i + 1), buffers[i].data(), nullptr);
    int rows = 0;
    while (mdb_fetch_row(table))
        ++rows;
    mdb_free_tabledef(table);
    mdb_close(mdb);
    return rows;
}

}  // namespace

int main() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "storage-bench-XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    const std::filesystem::path path = folder / "bench.mdb";
    const auto files = platform::MakeFileSystem();
    Require(jet::CreateDatabaseFile(*files, path, 45000));
    auto database = Open(*files, path);
    Require(database->Begin());
    Require(database->CreateTable(Design()));
    Require(database->Commit());

    const double bulk = MillisecondsOf([&] { Fill(*database, 0, kRows, 1000); });
    const double single = MillisecondsOf([&] { Fill(*database, kRows, kMeasuredInserts, 1); });
    std::printf("insert, 1,000 rows a transaction  %8.2f us per row\n", bulk * 1000 / kRows);
    std::printf("insert, one row a transaction     %8.2f us per row\n",
                single * 1000 / kMeasuredInserts);
    const double flush = MillisecondsOf([&] { Require(database->Close()); });
    std::printf("close                             %8.2f ms\n", flush);

    database.reset();
    double open = 1e9;
    for (int round = 0; round < 5; ++round) {
        database.reset();
        open = std::min(open, MillisecondsOf([&] {
                            database = Open(*files, path);
                            Required(database->FindTable(u"Tables"));
                        }));
    }
    std::printf("open                              %8.2f ms\n", open);

    jet::Table& table = *Required(database->FindTable(u"Tables"));
    ScanOurs(table, true);
    ScanTheirs(path);
    double ours = 1e9;
    double theirs = 1e9;
    double one = 1e9;
    for (int round = 0; round < 5; ++round) {
        int rows = 0;
        ours = std::min(ours, MillisecondsOf([&] { rows = ScanOurs(table, true); }));
        one = std::min(one, MillisecondsOf([&] { ScanOurs(table, false); }));
        int other_rows = 0;
        theirs = std::min(theirs, MillisecondsOf([&] { other_rows = ScanTheirs(path); }));
        if (rows != other_rows) {
            std::fprintf(stderr, "%d rows, libmdb has %d\n", rows, other_rows);
            return 1;
        }
    }
    std::printf("scan, all columns                 %8.2f ms\n", ours);
    std::printf("scan, one column                  %8.2f ms\n", one);
    std::printf("scan by libmdb                    %8.2f ms   %.1f times ours\n", theirs,
                theirs / ours);
    Require(database->Close());
    std::filesystem::remove_all(folder);
    return 0;
}
