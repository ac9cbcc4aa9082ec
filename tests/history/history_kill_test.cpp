// A real process on real files is killed at random instants while it changes rows, undoes
// and redoes, twice in a row, the second time while it opens what the first left behind.
// Afterwards history and file must agree: every change taken back, the newest first, leads to the
// rows that were there at the beginning, and nothing stands in the way of any.
#include "history_fixture.h"

#include "base/file_names.h"
#include "base/unicode.h"
#include "history/undo_redo.h"
#include "platform/file_system.h"
#include "support/check_database.h"
#include "support/temporary_folder.h"
#include "support/worker_process.h"

#include <chrono>
#include <random>
#include <thread>

namespace history::test {
namespace {

using test_support::TemporaryFolder;
using test_support::WorkerProcess;

constexpr int kRounds = TAVOLO_KILLED_ROUNDS;
constexpr int kRows = 40;
constexpr int kMaxSteps = 8;      // that are waited for before the kill
constexpr int kMaxDelay = 4'000;  // microseconds after them

std::u16string Number(std::size_t number) {
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
}

// The catalogue and its history, open.
struct Session {
    Session(jet::FileSystem& files, const std::filesystem::path& path)
        : history(files, path), connection(files) {
        connection.UseNotes(&history);
        opened = connection.Open(u"Data Source=" + path.u16string());
    }
    HistoryFile history;
    jet::Connection connection;
    base::Status opened;
};

std::u16string Statement(std::mt19937& random) {
    const std::u16string id = Number(1 + random() % kRows);
    switch (random() % 4) {
    case 0:
        return u"UPDATE Games SET Points = Points + 1, Name = 'n' & Points";
    case 1:
        return u"UPDATE Games SET Notes = String(" + id + u"00, 'x') WHERE ID > " + id;
    case 2:
        return u"DELETE FROM Games WHERE ID > " + id;
    default:
        return u"INSERT INTO Games (Name, Points) SELECT Name, Points FROM Games WHERE ID <= " + id;
    }
}

// Changes the file words[0] as the seed words[1] says, and tells before it opens the file and
// before each step.
int WorkUntilKilled(const WorkerProcess::Words& words, const WorkerProcess::Tell& tell) {
    std::mt19937 random(static_cast<std::uint32_t>(std::stoul(words[1])));
    const auto files = platform::MakeFileSystem();
    tell(0);
    Session session(*files, base::PathOf(base::ToUtf16(words[0])));
    if (!session.opened.ok()) return 4;
    UndoRedo undo_redo(session.connection, session.history);
    for (std::uint32_t step = 1;; ++step) {
        tell(step);
        const auto kind = random() % 5;
        if (kind < 3) {
            const jet::NamedChange named(session.connection, u"Change");
            // A command of several transactions.
            for (auto left = 1 + random() % 2; left > 0; --left)
                if (!session.connection.Execute(Statement(random)).ok()) return 5;
            continue;
        }
        const auto done = kind == 3 ? undo_redo.Undo() : undo_redo.Redo();
        if (!done.ok() || (*done && !(*done)->result.refusals.empty())) return 6;
    }
}
const test_support::KnownWork kWriter("history", WorkUntilKilled);

class HistoryKillTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(jet::CreateDatabaseFile(*files_, as_made_, 40000).ok());
        jet::Connection connection(*files_);
        ASSERT_TRUE(connection.Open(u"Data Source=" + as_made_.u16string()).ok());
        const auto execute = [&](std::u16string_view sql) {
            ASSERT_TRUE(connection.Execute(sql).ok());
        };
        execute(u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Name TEXT(50), Points LONG, Notes "
                u"MEMO)");
        execute(u"CREATE INDEX Name ON Games (Name)");
        for (int i = 0; i < kRows; ++i)
            execute(u"INSERT INTO Games (Name, Points, Notes) VALUES ('Game " + Number(i) +
                    u"', 1, String(" + Number(i * 150) + u", 'n'))");
        rows_ = RowsOf(connection);
        ASSERT_TRUE(connection.Close().ok());
    }

    static std::vector<std::u16string> RowsOf(jet::Connection& connection) {
        std::vector<std::u16string> content;
        auto rows = connection.Execute(u"SELECT * FROM Games ORDER BY ID");
        EXPECT_TRUE(rows.ok()) << rows.status().message();
        for (; rows.ok() && !rows->Eof(); rows->MoveNext().Ignore()) {
            std::u16string row;
            for (std::size_t i = 0; i < rows->FieldCount(); ++i)
                row += jet::ToText(rows->Fields(i).value()) + u"|";
            content.push_back(std::move(row));
        }
        return content;
    }

    // Kills it some time after it has made so many steps, however fast the machine is; 0: while it
    // opens the catalogue.
    void RunAndKill(std::uint32_t seed, int steps, std::chrono::microseconds delay) {
        WorkerProcess writer("history", {base::Utf8Of(path_), std::to_string(seed)});
        for (; steps >= 0; --steps)
            EXPECT_TRUE(writer.Next());
        std::this_thread::sleep_for(delay);
        const auto ended = writer.Kill();
        EXPECT_FALSE(ended) << "the writer ended by itself with " << ended.value_or(0);
    }

    void StartAgain() {
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
            if (entry.path() != as_made_) std::filesystem::remove_all(entry.path());
        std::filesystem::copy_file(as_made_, path_);
    }

    // How many changes there were.
    std::size_t TakeAllBack() {
        Session session(*files_, path_);
        EXPECT_TRUE(session.opened.ok()) << session.opened.message();
        EXPECT_TRUE(session.connection.Flush().ok());
        const auto changes = session.history.Changes();
        EXPECT_TRUE(changes.ok()) << changes.status().message();
        if (!changes.ok()) return 0;
        for (auto change = changes->rbegin(); change != changes->rend(); ++change) {
            const auto done = PutBack(session.connection, session.history, change->number, u"Back");
            EXPECT_TRUE(done.ok()) << done.status().message();
            EXPECT_TRUE(done.ok() && done->refusals.empty()) << "change " << change->number;
        }
        EXPECT_EQ(RowsOf(session.connection), rows_);
        EXPECT_TRUE(session.connection.Close().ok());
        return changes->size();
    }

    // A kill loses nothing of what the system's cache holds, so files in memory prove as much.
    TemporaryFolder folder_{TemporaryFolder::On::kMemory};
    std::filesystem::path path_ = folder_.path() / "games.mdb";
    std::filesystem::path as_made_ = folder_.path() / "as made";
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
    std::vector<std::u16string> rows_;  // at the beginning
};

TEST_F(HistoryKillTest, AfterEachKillHistoryAndFileAgree) {
    std::mt19937 random(11);
    std::size_t changes = 0;
    const int rounds = test_support::WorkersToKill(kRounds);
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(rounds); ++i) {
        SCOPED_TRACE("round " + std::to_string(i));
        StartAgain();
        const auto delay = [&] { return std::chrono::microseconds(random() % kMaxDelay); };
        ASSERT_NO_FATAL_FAILURE(
            RunAndKill(2 * i, static_cast<int>(1 + random() % kMaxSteps), delay()));
        ASSERT_NO_FATAL_FAILURE(RunAndKill(2 * i + 1, 0, delay()));
        changes += TakeAllBack();
        ASSERT_TRUE(test_support::DatabaseIsSound(path_, test_support::kOwnFile));
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(changes, static_cast<std::size_t>(rounds));
}

}  // namespace
}  // namespace history::test
