// Commits that come while a checkpoint brings older ones into the file: whatever moment the process
// dies at afterwards, they are there.
#include "jet/pages/page_store.h"

#include "support/faulty_file_system.h"
#include "support/forwarding_files.h"
#include "support/make_pages.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using test_support::FaultyFileSystem;
using test_support::MakePages;

using test_support::kDatabasePath;

// Passes everything on and tells when a file is synced.
class TellingFile final : public test_support::ForwardingFile {
public:
    TellingFile(std::unique_ptr<jet::File> file, const std::function<void()>& synced)
        : ForwardingFile(std::move(file)), synced_(synced) {}
    base::Status Sync() override {
        if (synced_) synced_();
        return ForwardingFile::Sync();
    }

private:
    const std::function<void()>& synced_;
};

class TellingFiles final : public test_support::ForwardingFiles {
public:
    explicit TellingFiles(jet::FileSystem& files) : ForwardingFiles(files) {}

    std::function<void()> database_synced;

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = ForwardingFiles::Open(path, mode);
        if (!file.ok() || path != kDatabasePath) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<TellingFile>(std::move(file).value(), database_synced));
    }

private:
};

jet::PageStoreOptions WithoutFlusher() {
    jet::PageStoreOptions options;
    options.flush_delay = {};
    return options;
}

class CommitDuringCheckpoint : public testing::Test {
protected:
    void SetUp() override {
        disk.Put(kDatabasePath, MakePages(1, 4));
        auto opened = jet::OpenPageStore(files, kDatabasePath, WithoutFlusher());
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        store = std::move(opened).value();
    }

    void Commit(jet::PageNumber page, int value) {
        ASSERT_TRUE(store->Begin().ok());
        const auto bytes = store->Change(page);
        ASSERT_TRUE(bytes.ok()) << bytes.status().message();
        (*bytes)[100] = static_cast<std::byte>(value);
        ASSERT_TRUE(store->Commit().ok());
    }

    // What the page holds for who opens the files after this process is killed now.
    int AfterAKill(jet::PageNumber page) const {
        const auto left = disk.Kill();
        const auto opened = jet::OpenPageStore(*left, kDatabasePath, WithoutFlusher());
        if (!opened.ok()) return -1;
        const auto view = (*opened)->Read(page);
        return view.ok() ? std::to_integer<int>(view->bytes()[100]) : -1;
    }

    // Commits once, the next time that the database file is synced.
    void CommitAtTheNextSync(jet::PageNumber page, int value) {
        files.database_synced = [this, page, value] {
            files.database_synced = nullptr;
            Commit(page, value);
        };
    }

    FaultyFileSystem disk;
    TellingFiles files{disk};
    std::unique_ptr<jet::PageStore> store;
};

TEST_F(CommitDuringCheckpoint, OfAnotherPageIsInTheJournalAfterIt) {
    Commit(2, 1);
    ASSERT_TRUE(store->Flush().ok());
    Commit(2, 5);
    CommitAtTheNextSync(3, 7);
    ASSERT_TRUE(store->Flush().ok());
    EXPECT_EQ(AfterAKill(2), 5);
    EXPECT_EQ(AfterAKill(3), 7);
    ASSERT_TRUE(store->Flush().ok());
    EXPECT_EQ(AfterAKill(3), 7);
}

TEST_F(CommitDuringCheckpoint, OfTheSamePageIsNotLost) {
    Commit(2, 1);
    ASSERT_TRUE(store->Flush().ok());
    Commit(2, 5);
    CommitAtTheNextSync(2, 9);
    ASSERT_TRUE(store->Flush().ok());
    const auto view = store->Read(2);
    ASSERT_TRUE(view.ok());
    EXPECT_EQ(std::to_integer<int>(view->bytes()[100]), 9);
    EXPECT_EQ(AfterAKill(2), 9);
    ASSERT_TRUE(store->Flush().ok());
    EXPECT_EQ(AfterAKill(2), 9);
}

TEST_F(CommitDuringCheckpoint, OfPageZeroIsNotLost) {
    Commit(0, 1);
    ASSERT_TRUE(store->Flush().ok());
    Commit(0, 2);
    CommitAtTheNextSync(0, 3);
    ASSERT_TRUE(store->Flush().ok());
    EXPECT_EQ(AfterAKill(0), 3);
    ASSERT_TRUE(store->Flush().ok());
    EXPECT_EQ(AfterAKill(0), 3);
}

// The journal may hold a commit that was reported as failed: nobody can say what the database
// holds.
TEST_F(CommitDuringCheckpoint, AFailureThatCannotBeTakenBackEndsTheStore) {
    Commit(2, 1);
    ASSERT_TRUE(store->Begin().ok());
    const auto bytes = store->Change(2);
    ASSERT_TRUE(bytes.ok());
    (*bytes)[100] = std::byte{2};
    disk.SetPlan({1, test_support::FaultKind::kLost});
    EXPECT_EQ(store->Commit().number(), 3043);
    EXPECT_EQ(store->Read(2).status().number(), 3043);
    EXPECT_EQ(store->Begin().number(), 3043);
    disk.SetPlan({});
    EXPECT_EQ(store->Read(2).status().number(), 3043);
    EXPECT_EQ(store->Begin().number(), 3043);
}

}  // namespace
