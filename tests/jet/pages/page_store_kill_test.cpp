// A real process on real files is killed at random instants while it commits numbered transactions.
// What it had acknowledged must be there after each kill, and nothing by half.
#include "base/file_names.h"
#include "base/unicode.h"
#include "jet/pages/page_store.h"
#include "platform/file_system.h"
#include "support/page_workload.h"
#include "support/temporary_folder.h"
#include "support/worker_process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <random>
#include <thread>

namespace {

using test_support::PageWorkload;
using test_support::TemporaryFolder;
using test_support::WorkerProcess;

constexpr int kKills = 1000;
constexpr std::size_t kMaxTransactions = 10'000'000;

// One for the test and the workers: a forked one knows what has been made of it.
PageWorkload& Workload() {
    static PageWorkload workload(77);
    return workload;
}

base::Result<std::unique_ptr<jet::PageStore>> Open(jet::FileSystem& files,
                                                   const std::filesystem::path& path) {
    jet::PageStoreOptions options;
    options.flush_delay = std::chrono::milliseconds(3);  // so that kills hit checkpoints too
    return jet::OpenPageStore(files, path, options);
}

// Goes on with the file words[0] after words[1] transactions and tells the number of each that was
// committed.
int WriteUntilKilled(const WorkerProcess::Words& words, const WorkerProcess::Tell& tell) {
    const auto files = platform::MakeFileSystem();
    const std::size_t done = std::stoull(words[1]);
    Workload().Forget(done);
    auto store = Open(*files, base::PathOf(base::ToUtf16(words[0])));
    if (!store.ok()) return 3;
    for (std::size_t i = done; i < kMaxTransactions; ++i) {
        if (!Workload().Run(**store, i).ok()) return 4;
        tell(static_cast<std::uint32_t>(i + 1));
    }
    return 5;
}
const test_support::KnownWork kWriter("writer", WriteUntilKilled);

class KillTest : public testing::Test {
protected:
    void SetUp() override {
        std::ofstream file(path_, std::ios::binary);
        const auto bytes = Workload().first_file();
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }

    // Runs the writer, kills it after `delay`; the answer is the last transaction it acknowledged.
    std::size_t RunAndKill(std::size_t done, std::chrono::microseconds delay) {
        WorkerProcess writer("writer", {base::Utf8Of(path_), std::to_string(done)});
        // The instant counts from the first commit on, so every run gets that far.
        std::uint32_t acknowledged = writer.Next().value_or(0);
        if (acknowledged != 0) std::this_thread::sleep_for(delay);
        const auto ended = writer.Kill();
        EXPECT_FALSE(ended) << "the writer ended by itself with " << ended.value_or(0);
        while (const auto number = writer.Next())
            acknowledged = *number;
        return acknowledged;
    }

    // A kill loses nothing of what the system's cache holds, so files in memory prove as much.
    TemporaryFolder folder_{TemporaryFolder::On::kMemory};
    std::filesystem::path path_ = folder_.path() / "tables.mdb";
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
};

TEST_F(KillTest, AcknowledgedTransactionsSurviveKillsAtRandomInstants) {
    std::mt19937 random(1);
    std::size_t done = 0;
    const int kills = test_support::WorkersToKill(kKills);
    for (int i = 0; i < kills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        const std::size_t acknowledged =
            RunAndKill(done, std::chrono::microseconds(random() % 9000));
        ASSERT_GT(acknowledged, done);
        auto store = Open(*files_, path_);
        ASSERT_TRUE(store.ok()) << store.status().message();
        const int seen =
            Workload().Recognize(PageWorkload::Read(**store), acknowledged, acknowledged + 1);
        ASSERT_GE(seen, 0);
        done = static_cast<std::size_t>(seen);
        Workload().Forget(done);
        ASSERT_TRUE((*store)->Close().ok());
    }
    RecordProperty("transactions", static_cast<int>(done));
}

}  // namespace
