#include "jet_bench.h"

#include "duel.h"
#include "jet_side.h"
#include "mdb_side.h"
#include "sqlite_side.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>

namespace bench {
namespace {

void Same(bool same) {
    if (!same) Require({base::StatusCode::kCorruption, "the two did not read the same"});
}

// Another reader of the format beside SQLite.
struct SecondPeer {
    const char* name = nullptr;
    std::function<void()> read;
};

void Print(const char* line, const Duel& duel, const SecondPeer& second = {}) {
    std::printf("| %-42s | %9.2f ms | %9.2f ms | %6.2f |", line, duel.ours * 1e3, duel.theirs * 1e3,
                duel.theirs / duel.ours);
    if (second.name == nullptr) {
        std::printf(" %-37s |\n", "");
        return;
    }
    double best = 1e9;
    for (int run = 0; run < 3; ++run)
        best = std::min(best, Seconds(second.read));
    std::printf(" %-12s %9.2f ms, ratio %5.1f |\n", second.name, best * 1e3, best / duel.ours);
}

// A question to both, each with the opening and closing of its file.
struct Question {
    const char* line;
    std::string select;
    jet::CursorType cursor = jet::CursorType::kKeyset;
    SecondPeer second = {};
};

void Ask(const JetBench& bench, const Question& question) {
    if (!bench.Wants(question.line)) return;
    const auto ours = JetCatalogue(bench.files, bench.jet_path()).ContentOf(question.select);
    const auto theirs = SqliteCatalogue(bench.sqlite_path()).ContentOf(question.select);
    Same(ours == theirs && ours.rows() > 0);
    Answer our_answer;
    Answer their_answer;
    const Duel duel = Alternate(
        [&] {
            JetCatalogue catalogue(bench.files, bench.jet_path());
            our_answer = catalogue.Read(question.select, question.cursor);
        },
        [&] { their_answer = SqliteCatalogue(bench.sqlite_path()).Read(question.select); });
    Same(our_answer.rows == their_answer.rows && our_answer.cells == their_answer.cells);
    Print(question.line, duel, question.second);
}

// The same on connections that stay open.
void AskOften(const JetBench& bench, const char* line, const std::string& select, int times) {
    if (!bench.Wants(line)) return;
    JetCatalogue jet_catalogue(bench.files, bench.jet_path());
    SqliteCatalogue sqlite_catalogue(bench.sqlite_path());
    const auto ask = [&](auto& catalogue, auto... more) {
        std::size_t cells = 0;
        for (int i = 0; i < times; ++i) {
            const std::string sql = select + std::to_string(1 + i * 7919LL % bench.rows);
            cells += catalogue.Read(sql, more...).cells;
        }
        return cells;
    };
    std::size_t ours = 0;
    std::size_t theirs = 0;
    const Duel duel = Alternate([&] { ours = ask(jet_catalogue, jet::CursorType::kKeyset); },
                                [&] { theirs = ask(sqlite_catalogue); });
    Same(ours == theirs && ours > 0);
    Print(line, duel);
}

void BenchOneColumn(const JetBench& bench) {
    static constexpr const char* kLine = "scan of one column, below SQL";
    if (!bench.Wants(kLine)) return;
    Answer ours;
    Answer theirs;
    const Duel duel = Alternate(
        [&] { ours = JetCatalogue(bench.files, bench.jet_path()).Scan(1); },
        [&] {
            theirs = SqliteCatalogue(bench.sqlite_path()).Read("SELECT DisplayName FROM Catalogue");
        });
    Same(ours.rows == theirs.rows && ours.cells == theirs.cells);
    Print(kLine, duel, {"libmdb", [&] { ScanWithLibmdb(bench.jet_path(), 1); }});
}

void BenchKeyset(const JetBench& bench) {
    static constexpr const char* kLine = "keyset by name, opened, its last row read";
    if (!bench.Wants(kLine)) return;
    std::u16string ours;
    std::u16string theirs;
    const Duel duel =
        Alternate([&] { ours = JetCatalogue(bench.files, bench.jet_path()).LastByName(); },
                  [&] { theirs = SqliteCatalogue(bench.sqlite_path()).LastByName(); });
    Same(ours == theirs);
    Print(kLine, duel);
}

// A question that an index cannot answer, and one that it can.
void BenchSelections(const JetBench& bench) {
    const std::string select = "SELECT ID, DisplayName, Company FROM Catalogue WHERE ";
    const std::string order = " ORDER BY Company, DisplayName";
    for (const auto& [line, condition] :
         {std::pair("selection of most rows, ORDER BY two texts", "Company > 'Company 2'"),
          std::pair("selection by an index, ORDER BY two texts", "Author = 'Author 77'")}) {
        const std::string unsorted = select + condition;
        Ask(bench, {line,
                    unsorted + order,
                    jet::CursorType::kKeyset,
                    {"mdb-sql|sort", [&] { ReadWithMdbSql(bench.jet_path(), unsorted, true); }}});
    }
}

}  // namespace

void BenchReading(const JetBench& bench) {
    std::printf("| %-42s | %-12s | %-12s | ratio  | %-37s |\n", "reading", "engine", "SQLite",
                "second peer");
    Ask(bench, {"full scan, every cell",
                "SELECT * FROM Catalogue",
                jet::CursorType::kForwardOnly,
                {"libmdb", [&] { ScanWithLibmdb(bench.jet_path(), 19); }}});
    BenchOneColumn(bench);
    BenchSelections(bench);
    Ask(bench, {"all rows by name",
                "SELECT ID, DisplayName, FileName FROM Catalogue ORDER BY DisplayName"});
    Ask(bench,
        {"all rows, ORDER BY a date and a number",
         "SELECT ID, FileDate, TimesPlayed FROM Catalogue ORDER BY FileDate DESC, TimesPlayed"});
    Ask(bench, {"DISTINCT of two columns", "SELECT DISTINCT Company, [Year] FROM Catalogue"});
    Ask(bench, {"GROUP BY with two aggregates",
                "SELECT Company, Count(*), Max(TimesPlayed) FROM Catalogue GROUP BY Company"});
    BenchKeyset(bench);
    const std::string by_key = "SELECT DisplayName FROM Catalogue WHERE ID = ";
    Ask(bench, {"open, one row by its key",
                by_key + "777",
                jet::CursorType::kKeyset,
                {"mdb-sql", [&] { ReadWithMdbSql(bench.jet_path(), by_key + "777", false); }}});
    AskOften(bench, "1,000 times one row by its key, held open", by_key, 1000);
}

}  // namespace bench
