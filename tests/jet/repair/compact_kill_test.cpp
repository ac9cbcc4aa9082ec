// A real process on a real file is killed (SIGKILL) at random instants while it compacts the file
// in its place: there is the old file or the new one, and the next attempt succeeds.
#include "jet/connection.h"
#include "jet/pages/file_mark.h"
#include "jet/repair/compact.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"
#include "support/check_database.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace jet::test {
namespace {

constexpr int kKills = 300;

// A kill loses nothing of what the system's cache holds, so a file system in memory proves as much.
std::filesystem::path FolderForManySyncs() {
    const std::filesystem::path memory = "/dev/shm";
    return ::access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

class CompactKillTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (FolderForManySyncs() / "tavolo-kill-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
        path_ = folder_ / "a.mdb";
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

    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    static std::vector<std::byte> WithoutMark(std::vector<std::byte> bytes) {
        StoreFileMark(std::span(bytes).subspan(FileMarkOffset(4096), kFileMarkBytes), 1);
        return bytes;
    }

    // Compacts in a process of its own and kills that `delay` after it has begun. Whether it came
    // to its end before.
    bool CompactAndKill(std::chrono::microseconds delay) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        const pid_t writer = ::fork();
        if (writer == 0) {
            const char ready = 'r';
            if (::write(ends[1], &ready, 1) != 1) ::_exit(3);
            ::_exit(CompactInPlace(*files_, path_).ok() ? 0 : 4);
        }
        ::close(ends[1]);
        char ready = 0;
        EXPECT_EQ(::read(ends[0], &ready, 1), 1);
        ::close(ends[0]);
        std::this_thread::sleep_for(delay);
        ::kill(writer, SIGKILL);
        int state = 0;
        ::waitpid(writer, &state, 0);
        EXPECT_TRUE(WIFSIGNALED(state) || WEXITSTATUS(state) == 0) << WEXITSTATUS(state);
        return !WIFSIGNALED(state);
    }

    std::unique_ptr<FileSystem> files_ = platform::MakeFileSystem();
    std::filesystem::path folder_;
    std::filesystem::path path_;
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
    for (int i = 0; i < kKills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        WriteWholeFile(path_, original);
        const bool ended =
            CompactAndKill(std::chrono::microseconds(random() % (whole * 5 / 4 + 1)));
        const auto bytes = WithoutMark(ReadWholeFile(path_));
        const bool is_old = bytes == before_;
        ASSERT_TRUE(bytes == after || (is_old && !ended));
        old_files += is_old ? 1 : 0;
        spares += std::filesystem::exists(path_.string() + "-new") ? 1 : 0;
        if (i % 8 != 0) continue;
        // What the process has left is in nobody's way.
        ASSERT_TRUE(CompactInPlace(*files_, path_).ok());
        ASSERT_EQ(WithoutMark(ReadWholeFile(path_)), after);
        ASSERT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1);
    }
    EXPECT_TRUE(test_support::DatabaseIsSound(path_, test_support::kOwnFile));
    EXPECT_GT(old_files, 0);
    EXPECT_LT(old_files, kKills);
    RecordProperty("old_files", old_files);
    RecordProperty("spares", spares);
}

}  // namespace
}  // namespace jet::test
