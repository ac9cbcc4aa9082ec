// A real process on a real file is killed at random instants while it compacts the file in its
// place: there is the old file or the new one, and the next attempt succeeds.
#include "base/file_names.h"
#include "base/unicode.h"
#include "jet/connection.h"
#include "jet/pages/file_mark.h"
#include "jet/repair/compact.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"
#include "support/check_database.h"
#include "support/told_files.h"
#include "support/worker_process.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <random>
#include <thread>

namespace jet::test {
namespace {

using test_support::ToldFiles;
using test_support::WorkerProcess;

constexpr int kKills = 300;
constexpr int kMaxDelay = 300;  // microseconds

void WaitToBeKilled() {
    std::promise<void>().get_future().wait();
}

// Tells of each call that changes something while it compacts the file words[0]; before the call of
// the number words[1] it stands still.
int Compact(const WorkerProcess::Words& words, const WorkerProcess::Tell& tell) {
    const auto files = platform::MakeFileSystem();
    const auto last = static_cast<std::uint32_t>(std::stoul(words[1]));
    std::atomic<std::uint32_t> calls = 0;
    ToldFiles told(*files, [&] {
        const std::uint32_t call = ++calls;
        tell(call);
        if (call == last) WaitToBeKilled();
    });
    return CompactInPlace(told, base::PathOf(base::ToUtf16(words[0]))).ok() ? 0 : 4;
}
const test_support::KnownWork kCompact("compact", Compact);

class CompactKillTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(*files_, path_, 40000.25).ok());
        Connection connection(*files_);
        ASSERT_TRUE(connection.Open(u"Data Source=" + path_.u16string()).ok());
        const auto execute = [&](const char16_t* sql) {
            ASSERT_TRUE(connection.Execute(sql).ok());
        };
        execute(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, Notes MEMO)");
        for (int i = 0; i < 40; ++i)
            execute(u"INSERT INTO T (Notes) VALUES (String(3000, 'n'))");
        execute(u"DELETE FROM T WHERE ID < 11");
        ASSERT_TRUE(connection.Close().ok());
        before_ = WithoutMark(ReadWholeFile(path_));
    }

    static std::vector<std::byte> WithoutMark(std::vector<std::byte> bytes) {
        StoreFileMark(std::span(bytes).subspan(FileMarkOffset(4096), kFileMarkBytes), 1);
        return bytes;
    }

    // Compacts in a process of its own and kills that when it has told of so many calls: right
    // then, before the last of them is made, or after a delay, wherever it has come to. Whether it
    // came to its end before.
    bool CompactAndKill(int calls, std::optional<std::chrono::microseconds> delay) {
        const std::string last = delay ? "0" : std::to_string(calls);
        WorkerProcess worker("compact", {base::Utf8Of(path_), last});
        EXPECT_TRUE(worker.Next());
        for (int told = 1; told < calls && worker.Next(); ++told) {
        }
        std::this_thread::sleep_for(delay.value_or(std::chrono::microseconds(0)));
        const auto ended = worker.Kill();
        EXPECT_EQ(ended.value_or(0), 0);
        // Whoever asks for the file finds it, however far the exchange had come.
        EXPECT_TRUE(files_->Exists(path_));
        return ended.has_value();
    }

    std::unique_ptr<FileSystem> files_ = platform::MakeFileSystem();
    // A kill loses nothing of what the system's cache holds, so files in memory prove as much.
    TemporaryFolder folder_{TemporaryFolder::On::kMemory};
    std::filesystem::path path_ = folder_.path() / "a.mdb";
    std::vector<std::byte> before_;
};

TEST_F(CompactKillTest, AKillAtAnyInstantLeavesTheOldFileOrTheNewOne) {
    const auto original = ReadWholeFile(path_);
    std::atomic<int> counted = 0;
    ToldFiles told(*files_, [&] { ++counted; });
    ASSERT_TRUE(CompactInPlace(told, path_).ok());
    const int calls = counted;
    ASSERT_GT(calls, 5);
    const auto after = WithoutMark(ReadWholeFile(path_));
    ASSERT_LT(after.size(), before_.size());
    std::mt19937 random(1);
    int old_files = 0;
    int spares = 0;
    const int kills = test_support::WorkersToKill(kKills);
    for (int i = 0; i < kills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        WriteWholeFile(path_, original);
        // Every second one is on the run, and some of those are let come to their end.
        const bool runs = i % 2 != 0;
        const auto most = static_cast<unsigned>(runs ? calls * 5 / 4 : calls);
        const auto until = static_cast<int>(1 + random() % most);
        const std::chrono::microseconds delay(random() % kMaxDelay);
        const bool ended = CompactAndKill(until, runs ? std::optional(delay) : std::nullopt);
        const auto bytes = WithoutMark(ReadWholeFile(path_));
        const bool is_old = bytes == before_;
        ASSERT_TRUE(bytes == after || (is_old && !ended));
        old_files += is_old ? 1 : 0;
        spares += std::filesystem::exists(folder_.path() / "a.mdb-new") ? 1 : 0;
        if (i % 8 != 0) continue;
        // What the process has left is in nobody's way.
        ASSERT_TRUE(CompactInPlace(*files_, path_).ok());
        ASSERT_EQ(WithoutMark(ReadWholeFile(path_)), after);
        ASSERT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 1);
    }
    EXPECT_TRUE(test_support::DatabaseIsSound(path_, test_support::kOwnFile));
    EXPECT_GT(old_files, 0);
    EXPECT_LT(old_files, kills);
    RecordProperty("old_files", old_files);
    RecordProperty("spares", spares);
}

}  // namespace
}  // namespace jet::test
