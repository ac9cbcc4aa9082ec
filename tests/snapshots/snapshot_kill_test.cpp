// A real process on real files is killed at random instants while it changes a catalogue,
// makes, checks and thins out snapshots and restores them. The catalogue is then in one of its
// states, every snapshot that counts is whole, and what was begun is cleared away by the next run.
#include "base/file_names.h"
#include "base/unicode.h"
#include "jet/check/check.h"
#include "jet/connection.h"
#include "jet/pages/page_copy.h"
#include "jet/tables/database.h"
#include "platform/file_system.h"
#include "snapshots/restore.h"
#include "support/temporary_folder.h"
#include "support/worker_process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <set>
#include <thread>

namespace {

using snapshots::SnapshotState;
using snapshots::SnapshotStore;
using test_support::TemporaryFolder;
using test_support::WorkerProcess;

constexpr int kKills = 300;
constexpr int kRows = 60;
constexpr int kMaxSteps = 12;     // that are waited for before the kill
constexpr int kMaxDelay = 4'000;  // microseconds after them

bool Execute(jet::FileSystem& files, const std::filesystem::path& path,
             const std::vector<std::u16string>& statements) {
    jet::Connection connection(files);
    if (!connection.Open(u"Data Source=" + path.u16string()).ok()) return false;
    for (const std::u16string& statement : statements)
        if (!connection.Execute(statement).ok()) return false;
    return connection.Close().ok();
}

// The writer, with the file words[0] and the seed words[1]: every state of the catalogue has one
// number in all of its rows. Tells of each step before it takes it.
int WorkUntilKilled(const WorkerProcess::Words& words, const WorkerProcess::Tell& tell) {
    const auto files = platform::MakeFileSystem();
    const std::filesystem::path path = base::PathOf(base::ToUtf16(words[0]));
    const auto seed = static_cast<std::uint32_t>(std::stoul(words[1]));
    std::mt19937 random(seed);
    SnapshotStore store(*files, path);
    for (snapshots::LocalSeconds time = seed * 7200;; time += 1000) {
        tell(1);
        const std::string text = std::to_string(1 + random() % 30000);
        const std::u16string number(text.begin(), text.end());
        if (!Execute(*files, path, {u"Update Tables set State = " + number})) return 4;
        tell(2);
        if (!store.Make({snapshots::Occasion::kClock, time, ""}).ok()) return 5;
        tell(3);
        if (!store.CheckAll().ok()) return 6;
        if (!store.Keep().ok()) return 7;
        if (random() % 2 != 0) continue;
        tell(4);
        const auto list = store.List();
        if (!list.ok() || list->empty()) return 8;
        const auto state = store.Read((*list)[random() % list->size()].number);
        if (!state.ok()) return 9;
        if (!snapshots::Restore(*files, store, *state, time).ok()) return 10;
    }
}
const test_support::KnownWork kWriter("snapshots", WorkUntilKilled);

class SnapshotKillTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(jet::CreateDatabaseFile(*files_, path_, 40000).ok());
        ASSERT_TRUE(
            Execute(*files_, path_,
                    {u"Create Table Tables (ID counter primary key, State int, Notes memo)"}));
        std::vector<std::u16string> rows;
        for (int i = 0; i < kRows; ++i)
            rows.push_back(u"Insert into Tables (State, Notes) values (0, '" +
                           std::u16string(300, static_cast<char16_t>(u'a' + i % 26)) + u"')");
        ASSERT_TRUE(Execute(*files_, path_, rows));
    }

    // Kills it some time after it has made so many steps, however fast the machine is.
    void RunAndKill(std::uint32_t seed, int steps, std::chrono::microseconds delay) {
        WorkerProcess writer("snapshots", {base::Utf8Of(path_), std::to_string(seed)});
        for (; steps >= 0; --steps)
            EXPECT_TRUE(writer.Next());
        std::this_thread::sleep_for(delay);
        const auto ended = writer.Kill();
        EXPECT_FALSE(ended) << "the writer ended by itself with " << ended.value_or(0);
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
    // A kill loses nothing of what the system's cache holds, so files in memory prove as much.
    TemporaryFolder folder_{TemporaryFolder::On::kMemory};
    std::filesystem::path path_ = folder_.path() / "pinball.mdb";
};

TEST_F(SnapshotKillTest, AfterEachKillTheCatalogueIsInOneStateAndTheSnapshotsAreWhole) {
    std::mt19937 random(7);
    std::size_t most = 0;
    const int kills = test_support::WorkersToKill(kKills);
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(kills); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        ASSERT_NO_FATAL_FAILURE(RunAndKill(i, static_cast<int>(random() % kMaxSteps),
                                           std::chrono::microseconds(random() % kMaxDelay)));
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
