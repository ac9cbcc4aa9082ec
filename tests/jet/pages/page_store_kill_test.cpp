// A real process on real files is killed (SIGKILL) at random instants while it commits numbered
// transactions. What it had acknowledged over a pipe must be there after each kill, and nothing by
// half.
#include "jet/pages/page_store.h"
#include "platform/file_system.h"
#include "support/page_workload.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using test_support::PageWorkload;

constexpr int kKills = 1000;
constexpr std::size_t kMaxTransactions = 10'000'000;

// A kill loses nothing of what the system's cache holds, so a file system in memory proves as much
// and needs no minutes.
std::filesystem::path FolderForManySyncs() {
    const std::filesystem::path memory = "/dev/shm";
    return ::access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

class KillTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (FolderForManySyncs() / "tavolo-kill-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
        path_ = folder_ / "tables.mdb";
        std::ofstream file(path_, std::ios::binary);
        const auto bytes = workload_.first_file();
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        files_ = platform::MakeFileSystem();
    }

    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    base::Result<std::unique_ptr<jet::PageStore>> Open() {
        jet::PageStoreOptions options;
        options.flush_delay = std::chrono::milliseconds(3);  // so that kills hit checkpoints too
        return jet::OpenPageStore(*files_, path_, options);
    }

    // The writer: goes on after `done` transactions and tells the pipe the number of each that was
    // committed.
    [[noreturn]] void WriteUntilKilled(std::size_t done, int pipe) {
        auto store = Open();
        if (!store.ok()) ::_exit(3);
        for (std::size_t i = done; i < kMaxTransactions; ++i) {
            if (!workload_.Run(**store, i).ok()) ::_exit(4);
            const auto number = static_cast<std::uint32_t>(i + 1);
            if (::write(pipe, &number, sizeof number) != sizeof number) ::_exit(5);
        }
        ::_exit(6);
    }

    // Runs the writer, kills it after `delay`; the answer is the last transaction it acknowledged.
    std::size_t RunAndKill(std::size_t done, std::chrono::microseconds delay) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        const pid_t writer = ::fork();
        if (writer == 0) WriteUntilKilled(done, ends[1]);
        ::close(ends[1]);
        std::uint32_t acknowledged = 0;
        // The instant counts from the first commit on, so every run gets that far.
        if (::read(ends[0], &acknowledged, sizeof acknowledged) == sizeof acknowledged)
            std::this_thread::sleep_for(delay);
        ::kill(writer, SIGKILL);
        for (std::uint32_t number = 0; ::read(ends[0], &number, sizeof number) == sizeof number;)
            acknowledged = number;
        ::close(ends[0]);
        int state = 0;
        ::waitpid(writer, &state, 0);
        EXPECT_TRUE(WIFSIGNALED(state)) << "the writer ended by itself with " << WEXITSTATUS(state);
        return acknowledged;
    }

    PageWorkload workload_{77};
    std::filesystem::path folder_;
    std::filesystem::path path_;
    std::unique_ptr<jet::FileSystem> files_;
};

TEST_F(KillTest, AcknowledgedTransactionsSurviveKillsAtRandomInstants) {
    std::mt19937 random(1);
    std::size_t done = 0;
    for (int i = 0; i < kKills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        const std::size_t acknowledged =
            RunAndKill(done, std::chrono::microseconds(random() % 9000));
        ASSERT_GT(acknowledged, done);
        auto store = Open();
        ASSERT_TRUE(store.ok()) << store.status().message();
        const int seen =
            workload_.Recognize(PageWorkload::Read(**store), acknowledged, acknowledged + 1);
        ASSERT_GE(seen, 0);
        done = static_cast<std::size_t>(seen);
        workload_.Forget(done);
        ASSERT_TRUE((*store)->Close().ok());
    }
    RecordProperty("transactions", static_cast<int>(done));
}

}  // namespace
