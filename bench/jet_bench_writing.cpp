#include "jet_bench.h"

#include "duel.h"
#include "jet_side.h"
#include "sqlite_side.h"

#include <cstdio>
#include <functional>
#include <memory>

namespace bench {
namespace {

constexpr int kCount = 10000;

// One side of a line: a copy of its made file for each round, opened anew.
template <typename Catalogue>
class Side {
public:
    using Open = std::function<std::unique_ptr<Catalogue>(const std::filesystem::path&)>;

    Side(const std::filesystem::path& made, Open open)
        : made_(made), copy_(made.string() + ".round"), open_(std::move(open)) {}

    Writer MakeWriter(std::function<void(Catalogue&)> work) {
        return {[this] {
                    std::filesystem::copy_file(made_, copy_,
                                               std::filesystem::copy_options::overwrite_existing);
                    catalogue_ = open_(copy_);
                },
                [this, work = std::move(work)] { work(*catalogue_); },
                [this] {
                    catalogue_->Close();
                    catalogue_.reset();
                }};
    }

    // What the last round has left.
    Content ContentNow(const std::string& select) { return open_(copy_)->ContentOf(select); }

private:
    std::filesystem::path made_;
    std::filesystem::path copy_;
    Open open_;
    std::unique_ptr<Catalogue> catalogue_;
};

using JetWork = std::function<void(JetCatalogue&)>;
using SqliteWork = std::function<void(SqliteCatalogue&)>;

class WritingTable {
public:
    explicit WritingTable(const JetBench& bench)
        : bench_(bench), jet_(bench.jet_path(),
                              [&](const std::filesystem::path& path) {
                                  return std::make_unique<JetCatalogue>(bench.files, path);
                              }),
          sqlite_(bench.sqlite_path(), [](const std::filesystem::path& path) {
              return std::make_unique<SqliteCatalogue>(path);
          }) {}

    // `work` of either does something to `count` rows; what it leaves to be written until the
    // file is closed is in its bytes, not in its time.
    void Line(const char* line, int count, JetWork jet_work, SqliteWork sqlite_work) {
        if (!bench_.Wants(line)) return;
        const WritingDuel duel = Alternate(jet_.MakeWriter(std::move(jet_work)),
                                           sqlite_.MakeWriter(std::move(sqlite_work)));
        static const std::string kAll = "SELECT ID, DisplayName, Author, TimesPlayed, FileDate "
                                        "FROM Catalogue";
        if (jet_.ContentNow(kAll) != sqlite_.ContentNow(kAll))
            Require({base::StatusCode::kCorruption, "the two did not write the same"});
        std::printf("| %-42s | %9.2f us | %9.2f us | %6.2f | %7.0f | %7.0f |\n", line,
                    duel.time.ours / count * 1e6, duel.time.theirs / count * 1e6,
                    duel.time.theirs / duel.time.ours, static_cast<double>(duel.our_bytes) / count,
                    static_cast<double>(duel.their_bytes) / count);
    }

private:
    const JetBench& bench_;
    Side<JetCatalogue> jet_;
    Side<SqliteCatalogue> sqlite_;
};

// The two spell a date differently.
std::string InsertSql(int i, const char* file_date, const char* date_added) {
    const std::string n = std::to_string(i);
    return "INSERT INTO Catalogue (DisplayName, FileName, Author, [Year], FileDate, CRC, "
           "DateAdded) VALUES ('New " +
           n + "', 'C:\\New\\" + n + ".vpt', 'Author " + n + "', '2001', " + file_date +
           ", '12345678', " + date_added + ")";
}

void InsertWithSql(WritingTable& table) {
    table.Line(
        "INSERT, one statement a row", kCount,
        [](JetCatalogue& catalogue) {
            for (int i = 0; i < kCount; ++i)
                catalogue.Execute(
                    base::ToUtf16(InsertSql(i, "'11/20/2026 12:00:00 PM'", "'20-Nov-26'")));
        },
        [](SqliteCatalogue& catalogue) {
            for (int i = 0; i < kCount; ++i)
                catalogue.Execute(InsertSql(i, "46346.5", "46346"));
        });
}

void UpdateByKey(WritingTable& table, int rows) {
    const auto sql = [rows](int i) {
        return "UPDATE Catalogue SET TimesPlayed = TimesPlayed + 1 WHERE ID = " +
               std::to_string(1 + i * 7919LL % rows);
    };
    table.Line(
        "UPDATE of one row by its key", kCount,
        [&](JetCatalogue& catalogue) {
            for (int i = 0; i < kCount; ++i)
                catalogue.Execute(base::ToUtf16(sql(i)));
        },
        [&](SqliteCatalogue& catalogue) {
            for (int i = 0; i < kCount; ++i)
                catalogue.Execute(sql(i));
        });
}

void InsertBelowSql(WritingTable& table, const char* line, int rows_per_transaction, int rows) {
    const auto insert = [&](auto& catalogue) {
        catalogue.Insert(rows, kCount, rows_per_transaction, rows);
    };
    table.Line(line, kCount, insert, insert);
}

void ChangeMany(WritingTable& table, const char* line, int count, const std::string& sql) {
    table.Line(
        line, count, [&](JetCatalogue& catalogue) { catalogue.Execute(base::ToUtf16(sql)); },
        [&](SqliteCatalogue& catalogue) { catalogue.Execute(sql); });
}

}  // namespace

void BenchWriting(const JetBench& bench) {
    std::printf("\n| %-42s | %-12s | %-12s | ratio  | bytes a row: |  SQLite |\n",
                "writing, three indexes; per row", "engine", "SQLite");
    WritingTable table(bench);
    InsertWithSql(table);
    UpdateByKey(table, bench.rows);
    InsertBelowSql(table, "insert below SQL, one row a transaction", 1, bench.rows);
    InsertBelowSql(table, "insert below SQL, 1,000 rows a transaction", 1000, bench.rows);
    ChangeMany(table, "UPDATE of all rows, one statement", bench.rows,
               "UPDATE Catalogue SET TimesPlayed = TimesPlayed + 1");
    ChangeMany(table, "DELETE of half the rows, one statement", bench.rows / 2,
               "DELETE FROM Catalogue WHERE TimesPlayed >= 25");
}

}  // namespace bench
