// A real process on real files is killed (SIGKILL) at random instants while it changes a catalogue,
// makes, checks and thins out snapshots and restores them. The catalogue is then in one of its
// states, every snapshot that counts is whole, and what was begun is cleared away by the next run.
#include "jet/check/check.h"
#include "jet/connection.h"
#include "jet/pages/page_copy.h"
#include "jet/tables/database.h"
#include "platform/file_system.h"
#include "snapshots/restore.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <random>
#include <set>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using snapshots::SnapshotState;
using snapshots::SnapshotStore;

constexpr int kKills = 300;
constexpr int kRows = 60;

// A kill loses nothing of what the system's cache holds, so a file system in memory proves as much.
std::filesystem::path FolderForManySyncs() {
    const std::filesystem::path memory = "/dev/shm";
    return ::access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

class SnapshotKillTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (FolderForManySyncs() / "tavolo-snapshots-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
        path_ = folder_ / "pinball.mdb";
        ASSERT_TRUE(jet::CreateDatabaseFile(*files_, path_, 40000).ok());
        ASSERT_TRUE(Run({u"Create Table Tables (ID counter primary key, State int, Notes memo)"}));
        std::vector<std::u16string> rows;
        for (int i = 0; i < kRows; ++i)
            rows.push_back(u"Insert into Tables (State, Notes) values (0, '" +
                           std::u16string(300, static_cast<char16_t>(u'a' + i % 26)) + u"')");
        ASSERT_TRUE(Run(rows));
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    bool Run(const std::vector<std::u16string>& statements) {
        jet::Connection connection(*files_);
        const std::string path = path_.string();
        if (!connection.Open(u"Data Source=" + std::u16string(path.begin(), path.end())).ok())
            return false;
        for (const std::u16string& statement : statements)
            if (!connection.Execute(statement).ok()) return false;
        return connection.Close().ok();
    }

    // The writer: every state of the catalogue has one number in all of its rows.
    [[noreturn]] void WorkUntilKilled(std::uint32_t seed, int pipe) {
        std::mt19937 random(seed);
        SnapshotStore store(*files_, path_);
        if (::write(pipe, "+", 1) != 1) ::_exit(3);
        for (snapshots::LocalSeconds time = seed * 7200;; time += 1000) {
            const std::string text = std::to_string(1 + random() % 30000);
            const std::u16string number(text.begin(), text.end());
            if (!Run({u"Update Tables set State = " + number})) ::_exit(4);
            if (!store.Make({snapshots::Occasion::kClock, time, ""}).ok()) ::_exit(5);
            if (!store.CheckAll().ok()) ::_exit(6);
            if (!store.Keep().ok()) ::_exit(7);
            if (random() % 2 != 0) continue;
            const auto list = store.List();
            if (!list.ok() || list->empty()) ::_exit(8);
            const auto state = store.Read((*list)[random() % list->size()].number);
            if (!state.ok()) ::_exit(9);
            if (!snapshots::Restore(*files_, store, *state, time).ok()) ::_exit(10);
        }
    }

    void RunAndKill(std::uint32_t seed, std::chrono::microseconds delay) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t writer = ::fork();
        if (writer == 0) WorkUntilKilled(seed, ends[1]);
        ::close(ends[1]);
        char begun = 0;
        EXPECT_EQ(::read(ends[0], &begun, 1), 1);
        std::this_thread::sleep_for(delay);
        ::kill(writer, SIGKILL);
        ::close(ends[0]);
        int state = 0;
        ::waitpid(writer, &state, 0);
        EXPECT_TRUE(WIFSIGNALED(state)) << "the writer ended by itself with " << WEXITSTATUS(state);
    }

    // The number in all rows; -1: the rows are of several states, or not all are there.
    static int StateOf(const std::vector<std::byte>& bytes) {
        const auto page_size = jet::PageSizeOf(bytes);
        if (!page_size.ok()) return -1;
        const auto pages = jet::MakeMemoryPageStore(*page_size, bytes);
        if (!jet::CheckIntegrity(*pages).sound()) return -1;
        auto database = jet::OpenDatabase(jet::MakeMemoryPageStore(*page_size, bytes), "copy");
        if (!database.ok()) return -1;
        jet::Connection connection(std::move(database).value());
        auto rows = connection.Execute(u"Select State from Tables");
        std::set<std::int64_t> states;
        int count = 0;
        for (; rows.ok() && !rows->Eof(); ++count) {
            const auto value = rows->Fields(std::size_t{0});
            if (value.ok()) states.insert(jet::ToInteger(*value));
            if (!rows->MoveNext().ok()) return -1;
        }
        return count == kRows && states.size() == 1 ? static_cast<int>(*states.begin()) : -1;
    }

    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
    std::filesystem::path folder_;
    std::filesystem::path path_;
};

TEST_F(SnapshotKillTest, AfterEachKillTheCatalogueIsInOneStateAndTheSnapshotsAreWhole) {
    std::mt19937 random(7);
    std::size_t most = 0;
    for (std::uint32_t i = 0; i < kKills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        ASSERT_NO_FATAL_FAILURE(RunAndKill(i, std::chrono::microseconds(random() % 40'000)));
        const auto now = jet::CopyFileBytes(*files_, path_);
        ASSERT_TRUE(now.ok()) << now.status().message();
        ASSERT_GE(StateOf(*now), 0);
        SnapshotStore store(*files_, path_);
        const auto list = store.List();
        ASSERT_TRUE(list.ok()) << list.status().message();
        most = std::max(most, list->size());
        for (const auto& info : *list) {
            ASSERT_NE(info.state, SnapshotState::kDamaged) << info.number;
            if (info.state != SnapshotState::kGood) continue;
            const auto state = store.Read(info.number);
            ASSERT_TRUE(state.ok()) << state.status().message();
            if (info.number % 8 != i % 8) continue;
            ASSERT_GE(StateOf(*state), 0) << info.number;
        }
    }
    EXPECT_GT(most, 10U);
    SnapshotStore store(*files_, path_);
    ASSERT_TRUE(store.Keep().ok());
    for (const auto& entry : std::filesystem::directory_iterator(SnapshotStore::FolderFor(path_)))
        EXPECT_NE(entry.path().extension(), ".new") << entry.path();
}

}  // namespace
