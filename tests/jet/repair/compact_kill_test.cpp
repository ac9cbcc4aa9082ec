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
#include "support/worker_process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <thread>

namespace jet::test {
namespace {

using test_support::WorkerProcess;

constexpr int kKills = 300;

// Tells when it begins with the file words[0].
int Compact(const WorkerProcess::Words& words, const WorkerProcess::Tell& tell) {
    const auto files = platform::MakeFileSystem();
    tell(1);
    return CompactInPlace(*files, base::PathOf(base::ToUtf16(words[0]))).ok() ? 0 : 4;
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

    // Compacts in a process of its own and kills that `delay` after it has begun. Whether it came
    // to its end before.
    bool CompactAndKill(std::chrono::microseconds delay) {
        WorkerProcess worker("compact", {base::Utf8Of(path_)});
        EXPECT_EQ(worker.Next(), 1U);
        std::this_thread::sleep_for(delay);
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
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(CompactInPlace(*files_, path_).ok());
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(
                           std::chrono::steady_clock::now() - start)
                           .count();
    const auto after = WithoutMark(ReadWholeFile(path_));
    ASSERT_LT(after.size(), before_.size());
    std::mt19937 random(1);
    int old_files = 0;
    int spares = 0;
    const int kills = test_support::WorkersToKill(kKills);
    for (int i = 0; i < kills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        WriteWholeFile(path_, original);
        const bool ended =
            CompactAndKill(std::chrono::microseconds(random() % (whole * 5 / 4 + 1)));
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
