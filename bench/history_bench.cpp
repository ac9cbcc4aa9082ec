// history_bench [rows]: what it costs to remember what commands change, and how long undo takes.
// Each command runs on a copy of the same catalogue with and without a history, in turn, five
// times; the fastest of each counts. The time ends when the last statement has returned; what a
// checkpoint does afterwards is not in it. Then the command is undone once. The last lines say how
// long the history's window needs for a change of all rows, in its own thread for long work.
#include "history/change_lines.h"
#include "history/history_file.h"
#include "history/undo_redo.h"
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "platform/file_system.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

double MsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void Check(const base::Status& status) {
    if (status.ok()) return;
    std::fprintf(stderr, "%s\n", status.message().c_str());
    std::exit(1);
}

std::u16string Number(int number) {
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
}

struct Command {
    const char* name;
    bool begins_empty;
    std::function<void(jet::Connection&)> run;
};

void Run(jet::Connection& connection, std::u16string_view sql) {
    Check(connection.Execute(sql).status());
}

void InsertAll(jet::Connection& connection, int rows) {
    for (int i = 1; i <= rows; ++i)
        Run(connection,
            u"INSERT INTO Tables (DisplayName, FileName, CRC, TimesPlayed) VALUES ('Table " +
                Number(i) + u"', '/home/somebody/tables/some folder/Table " + Number(i) +
                u".vpt', 'A1B2C3D4', 0)");
}

std::u16string Source(const std::filesystem::path& path) {
    return u"Data Source=" + path.u16string();
}

class Bench {
public:
    explicit Bench(int rows) : rows_(rows) {
        std::filesystem::create_directories(folder_);
        Make(empty_, 0);
        Make(full_, rows);
    }
    ~Bench() { std::filesystem::remove_all(folder_); }

    void Measure(const Command& command) {
        double without = 1e9;
        double with = 1e9;
        double undo = 1e9;
        for (int round = 0; round < 5; ++round) {
            without = std::min(without, Once(command, nullptr, nullptr));
            history::HistoryFile file(*files_, work_);
            with = std::min(with, Once(command, &file, &undo));
        }
        std::printf("%-28s %9.1f ms, with history %9.1f ms (%+5.1f %%), undo %8.1f ms\n",
                    command.name, without, with, 100 * (with / without - 1), undo);
        std::fflush(stdout);
    }

    int rows() const { return rows_; }

    // Of a DELETE of all rows, which notes every cell.
    void MeasureShowing() {
        std::filesystem::copy_file(full_, work_, std::filesystem::copy_options::overwrite_existing);
        history::HistoryFile file(*files_, work_);
        jet::Connection connection(*files_);
        connection.UseNotes(&file);
        Check(connection.Open(Source(work_)));
        Run(connection, u"DELETE FROM Tables");
        Check(connection.Close());
        const auto changes = file.Changes();
        Check(changes.status());
        auto start = Clock::now();
        const auto tell = [&start](const char* what) {
            std::printf("%-28s %9.1f ms\n", what, MsSince(start));
            start = Clock::now();
        };
        auto notes = file.NotesOf(changes->back().number);
        Check(notes.status());
        tell("read");
        auto folded = history::FoldedChange::Fold(*std::move(notes));
        Check(folded.status());
        tell("fold");
        const history::ChangeLines lines(*std::move(folded));
        tell("list");
        const auto shown = lines.Matching(u"table 9999", {});
        tell("filter by a text");
        std::printf("%zu lines of %zu\n", shown.size(), lines.all().size());
    }

private:
    void Make(const std::filesystem::path& path, int rows) {
        Check(jet::CreateDatabaseFile(*files_, path, 46000));
        jet::Connection connection(*files_);
        Check(connection.Open(Source(path)));
        Run(connection, u"CREATE TABLE Tables (ID COUNTER PRIMARY KEY, DisplayName TEXT(255) WITH "
                        u"COMPRESSION, FileName TEXT(255) WITH COMPRESSION, Author TEXT(255) WITH "
                        u"COMPRESSION, Company TEXT(255) WITH COMPRESSION, Notes MEMO WITH "
                        u"COMPRESSION, PinMame YESNO, Favorite YESNO, FileDate DATETIME, "
                        u"TimesPlayed LONG, LastPlayed DATETIME, CRC TEXT(50))");
        Run(connection, u"CREATE INDEX DisplayName ON Tables (DisplayName)");
        InsertAll(connection, rows);
        Check(connection.Close());
    }

    double Once(const Command& command, history::HistoryFile* file, double* undo) {
        std::filesystem::remove(history::HistoryFile::PathFor(work_));
        std::filesystem::copy_file(command.begins_empty ? empty_ : full_, work_,
                                   std::filesystem::copy_options::overwrite_existing);
        jet::Connection connection(*files_);
        connection.UseNotes(file);
        Check(connection.Open(Source(work_)));
        const auto start = Clock::now();
        {
            const jet::NamedChange named(connection, u"Command");
            command.run(connection);
        }
        const double took = MsSince(start);
        if (undo != nullptr) {
            Check(connection.Flush());
            const auto undo_start = Clock::now();
            auto done = history::UndoRedo(connection, *file).Undo();
            Check(done.status());
            *undo = std::min(*undo, MsSince(undo_start));
            if (!*done || !(*done)->result.refusals.empty()) std::exit(1);
        }
        Check(connection.Close());
        return took;
    }

    int rows_;
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("history_bench." + std::to_string(std::rand()));
    std::filesystem::path empty_ = folder_ / "empty.mdb";
    std::filesystem::path full_ = folder_ / "full.mdb";
    std::filesystem::path work_ = folder_ / "work.mdb";
};

void UpdateEach(jet::Connection& connection) {
    jet::Recordset rows;
    Check(rows.Open(u"Select * from Tables", connection, jet::CursorType::kDynamic,
                    jet::LockType::kOptimistic));
    for (; !rows.Eof(); Check(rows.MoveNext())) {
        Check(rows.SetField(u"CRC", jet::Value::Text(u"00000000")));
        Check(rows.Update());
    }
}

void DeleteEach(jet::Connection& connection) {
    jet::Recordset rows;
    Check(rows.Open(u"Select * from Tables", connection, jet::CursorType::kDynamic,
                    jet::LockType::kOptimistic));
    for (; !rows.Eof(); Check(rows.MoveNext()))
        Check(rows.Delete());
}

}  // namespace

int main(int argc, char** argv) {
    std::srand(static_cast<unsigned>(Clock::now().time_since_epoch().count()));
    Bench bench(argc > 1 ? std::atoi(argv[1]) : 100000);
    std::printf("%d rows\n", bench.rows());
    bench.Measure({"UPDATE of a number", false, [](jet::Connection& connection) {
                       Run(connection, u"UPDATE Tables SET TimesPlayed = TimesPlayed + 1");
                   }});
    bench.Measure({"UPDATE of an indexed text", false, [](jet::Connection& connection) {
                       Run(connection, u"UPDATE Tables SET DisplayName = 'A ' & DisplayName");
                   }});
    bench.Measure({"DELETE", false,
                   [](jet::Connection& connection) { Run(connection, u"DELETE FROM Tables"); }});
    bench.Measure({"INSERT, row by row", true,
                   [&](jet::Connection& connection) { InsertAll(connection, bench.rows()); }});
    bench.Measure({"Update, row by row", false, UpdateEach});
    bench.Measure({"Delete, row by row", false, DeleteEach});
    bench.MeasureShowing();
}
