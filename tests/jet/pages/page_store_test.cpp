// The contract of a page store, for the one in memory and the one in a file.
#include "jet/pages/page_store.h"

#include "jet/pages/file_mark.h"
#include "support/faulty_file_system.h"
#include "support/forwarding_files.h"
#include "support/page_workload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <thread>

namespace {

using jet::PageNumber;
using test_support::FaultyFileSystem;
using test_support::MakePages;
using test_support::PageWorkload;

using test_support::kDatabasePath;

enum class Kind { kMemory, kFile, kFileWithSmallCache };

class PageStoreTest : public testing::TestWithParam<Kind> {
protected:
    void SetUp() override { Open(MakePages(1, 4)); }

    void Open(std::vector<std::byte> bytes) {
        if (GetParam() == Kind::kMemory) {
            store_ = jet::MakeMemoryPageStore(4096, std::move(bytes));
            return;
        }
        store_.reset();
        files_.Put(kDatabasePath, std::move(bytes));
        jet::PageStoreOptions options;
        options.flush_delay = {};
        if (GetParam() == Kind::kFileWithSmallCache) options.cache_bytes = 0;
        auto opened = jet::OpenPageStore(files_, kDatabasePath, options);
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        store_ = std::move(opened).value();
    }

    void WriteByte(PageNumber page, std::size_t offset, int value) {
        const auto bytes = store_->Change(page);
        ASSERT_TRUE(bytes.ok()) << bytes.status().message();
        (*bytes)[offset] = static_cast<std::byte>(value);
    }

    int ByteAt(PageNumber page, std::size_t offset) {
        const auto view = store_->Read(page);
        EXPECT_TRUE(view.ok()) << view.status().message();
        return view.ok() ? std::to_integer<int>(view->bytes()[offset]) : -1;
    }

    FaultyFileSystem files_;
    std::unique_ptr<jet::PageStore> store_;
};

TEST_P(PageStoreTest, KnowsPageSizeAndCount) {
    EXPECT_EQ(store_->page_size(), 4096u);
    EXPECT_EQ(store_->page_count(), 4u);
    EXPECT_FALSE(store_->read_only());
    EXPECT_FALSE(store_->in_transaction());
}

TEST_P(PageStoreTest, CommittedChangesAreRead) {
    ASSERT_TRUE(store_->Begin().ok());
    EXPECT_TRUE(store_->in_transaction());
    WriteByte(2, 100, 7);
    EXPECT_EQ(ByteAt(2, 100), 7);
    ASSERT_TRUE(store_->Commit().ok());
    EXPECT_FALSE(store_->in_transaction());
    EXPECT_EQ(ByteAt(2, 100), 7);
}

TEST_P(PageStoreTest, RollbackTakesChangesAndNewPagesBack) {
    ASSERT_TRUE(store_->Begin().ok());
    WriteByte(2, 100, 7);
    ASSERT_TRUE(store_->Extend().ok());
    EXPECT_EQ(store_->page_count(), 5u);
    store_->Rollback();
    EXPECT_EQ(store_->page_count(), 4u);
    EXPECT_EQ(ByteAt(2, 100), 0);
}

TEST_P(PageStoreTest, RollbackWithoutTransactionDoesNothing) {
    store_->Rollback();
    EXPECT_EQ(store_->page_count(), 4u);
}

TEST_P(PageStoreTest, NewPagesAreZerosAtTheEnd) {
    ASSERT_TRUE(store_->Begin().ok());
    const auto page = store_->Extend();
    ASSERT_TRUE(page.ok());
    EXPECT_EQ(*page, 4u);
    EXPECT_EQ(ByteAt(4, 0), 0);
    WriteByte(4, 4095, 9);
    ASSERT_TRUE(store_->Commit().ok());
    EXPECT_EQ(store_->page_count(), 5u);
    EXPECT_EQ(ByteAt(4, 4095), 9);
}

TEST_P(PageStoreTest, ViewKeepsOldContentWhenThePageIsWritten) {
    const auto before = store_->Read(1);
    ASSERT_TRUE(store_->Begin().ok());
    WriteByte(1, 5, 1);
    const auto inside = store_->Read(1);
    WriteByte(1, 5, 2);
    ASSERT_TRUE(store_->Commit().ok());
    EXPECT_EQ(before->bytes()[5], std::byte{0});
    EXPECT_EQ(inside->bytes()[5], std::byte{1});
    EXPECT_EQ(ByteAt(1, 5), 2);
}

TEST_P(PageStoreTest, PagePastTheEndIsCorruption) {
    EXPECT_EQ(store_->Read(4).status().code(), base::StatusCode::kCorruption);
    ASSERT_TRUE(store_->Begin().ok());
    EXPECT_EQ(store_->Change(4).status().code(), base::StatusCode::kCorruption);
    store_->Rollback();
}

TEST_P(PageStoreTest, EveryCallFailsAfterClose) {
    ASSERT_TRUE(store_->Close().ok());
    EXPECT_TRUE(store_->Close().ok());
    EXPECT_FALSE(store_->Read(0).ok());
    EXPECT_FALSE(store_->Begin().ok());
    EXPECT_FALSE(store_->Flush().ok());
}

TEST_P(PageStoreTest, EmptyCommitChangesNothing) {
    ASSERT_TRUE(store_->Begin().ok());
    ASSERT_TRUE(store_->Commit().ok());
    EXPECT_EQ(store_->page_count(), 4u);
}

TEST_P(PageStoreTest, FollowsTheModelThroughManyTransactions) {
    PageWorkload workload(11);
    Open(workload.first_file());
    for (std::size_t i = 0; i < 150; ++i) {
        ASSERT_TRUE(workload.Run(*store_, i).ok());
        if (i % 7 == 6) {
            ASSERT_TRUE(store_->Flush().ok());
        }
        ASSERT_GE(workload.Recognize(PageWorkload::Read(*store_), i + 1, i + 1), 0);
    }
}

// More pages than the store reads at a time, and than it keeps of a walk.
TEST_P(PageStoreTest, ALongWalkMeetsWhatIsCommittedOnItsWay) {
    constexpr PageNumber kPages = 1500;
    constexpr PageNumber kAtOnce = 40;
    Open(MakePages(1, kPages + kAtOnce));
    std::vector<int> expected(kPages + kAtOnce, 0);
    for (PageNumber page = 1; page < kPages; ++page) {
        ASSERT_EQ(ByteAt(page, 100), expected[page]) << page;
        if (page % 100 != 30) continue;
        ASSERT_TRUE(store_->Begin().ok());
        for (PageNumber next = page + 1; next <= page + kAtOnce; ++next) {
            expected[next] = static_cast<int>(next % 251);
            WriteByte(next, 100, expected[next]);
        }
        ASSERT_TRUE(store_->Commit().ok());
        if (page % 200 == 30) {
            ASSERT_TRUE(store_->Flush().ok());
        }
        ASSERT_EQ(ByteAt(page + kAtOnce / 2, 100), expected[page + kAtOnce / 2]);
    }
    for (PageNumber page = kPages; page-- > 1;)
        ASSERT_EQ(ByteAt(page, 100), expected[page]) << page;
}

TEST_P(PageStoreTest, AViewOfAWalkKeepsItsContent) {
    constexpr PageNumber kPages = 1000;
    Open(MakePages(1, kPages));
    ASSERT_TRUE(store_->Begin().ok());
    for (PageNumber page = 1; page < kPages; ++page)
        WriteByte(page, 7, static_cast<int>(page % 251));
    ASSERT_TRUE(store_->Commit().ok());
    ASSERT_TRUE(store_->Flush().ok());
    std::vector<jet::PageView> views;
    for (PageNumber page = 1; page < kPages; ++page) {
        auto view = store_->Read(page);
        ASSERT_TRUE(view.ok());
        views.push_back(std::move(view).value());
    }
    for (std::size_t i = 0; i < views.size(); ++i)
        ASSERT_EQ(std::to_integer<std::size_t>(views[i].bytes()[7]), (i + 1) % 251);
}

std::string KindName(const testing::TestParamInfo<Kind>& kind) {
    return kind.param == Kind::kMemory ? "memory"
           : kind.param == Kind::kFile ? "file"
                                       : "fileWithSmallCache";
}

INSTANTIATE_TEST_SUITE_P(Stores, PageStoreTest,
                         testing::Values(Kind::kMemory, Kind::kFile, Kind::kFileWithSmallCache),
                         KindName);

// ------------------------------------------------------------------------- the one in a file

class FilePageStoreTest : public testing::Test {
protected:
    static std::unique_ptr<jet::PageStore> Open(jet::FileSystem& files, bool read_only = false) {
        jet::PageStoreOptions options;
        options.read_only = read_only;
        options.flush_delay = {};
        auto store = jet::OpenPageStore(files, kDatabasePath, options);
        EXPECT_TRUE(store.ok()) << store.status().message();
        return store.ok() ? std::move(store).value() : nullptr;
    }

    static base::Status OpenFails(jet::FileSystem& files, const std::filesystem::path& path,
                                  bool read_only = false) {
        jet::PageStoreOptions options;
        options.read_only = read_only;
        const auto store = jet::OpenPageStore(files, path, options);
        EXPECT_FALSE(store.ok());
        return store.ok() ? base::Status() : store.status();
    }

    FaultyFileSystem files_;
    PageWorkload workload_{5};
};

TEST_F(FilePageStoreTest, CommitLeavesTheDatabaseFileAloneAndFlushWritesIt) {
    files_.Put(kDatabasePath, workload_.first_file());
    const auto store = Open(files_);
    ASSERT_TRUE(workload_.Run(*store, 0).ok());
    const auto before = files_.Get(kDatabasePath);
    EXPECT_EQ(before.size(), workload_.first_file().size());
    ASSERT_TRUE(store->Flush().ok());
    EXPECT_TRUE(files_.Get("folder/tables.mdb-journal").empty());
    const auto content = workload_.ContentAfter(1);
    const auto after = files_.Get(kDatabasePath);
    ASSERT_EQ(after.size(), content.size() * 4096);
    for (std::size_t i = 1; i < content.size(); ++i)
        EXPECT_TRUE(std::equal(content[i].begin(), content[i].end(),
                               after.begin() + static_cast<std::ptrdiff_t>(i * 4096)));
}

TEST_F(FilePageStoreTest, OpeningAndClosingLeavesNoTrace) {
    files_.Put(kDatabasePath, workload_.first_file());
    auto store = Open(files_);
    ASSERT_TRUE(store->Close().ok());
    EXPECT_EQ(files_.Get(kDatabasePath), workload_.first_file());
    EXPECT_FALSE(files_.Exists("folder/tables.ldb"));
    EXPECT_FALSE(files_.Exists("folder/tables.mdb-journal"));
}

TEST_F(FilePageStoreTest, CloseRemovesTheSisterFiles) {
    files_.Put(kDatabasePath, workload_.first_file());
    auto store = Open(files_);
    EXPECT_TRUE(files_.Exists("folder/tables.ldb"));
    ASSERT_TRUE(workload_.Run(*store, 0).ok());
    EXPECT_TRUE(files_.Exists("folder/tables.mdb-journal"));
    ASSERT_TRUE(store->Close().ok());
    EXPECT_FALSE(files_.Exists("folder/tables.ldb"));
    EXPECT_FALSE(files_.Exists("folder/tables.mdb-journal"));
}

TEST_F(FilePageStoreTest, CommitWordsStayAboveTheNeutralValue) {
    files_.Put(kDatabasePath, workload_.first_file());
    auto store = Open(files_);
    ASSERT_TRUE(workload_.Run(*store, 0).ok());
    ASSERT_TRUE(store->Close().ok());
    const auto bytes = files_.Get(kDatabasePath);
    for (std::size_t at = 0xE00; at < 0x1000; at += 2)
        EXPECT_EQ(bytes[at + 1], std::byte{1});
    EXPECT_NE(jet::ReadFileMark(std::span(bytes).first(4096)), 0u);
}

TEST_F(FilePageStoreTest, KilledProcessLosesNothingCommitted) {
    files_.Put(kDatabasePath, workload_.first_file());
    const auto store = Open(files_);
    for (std::size_t i = 0; i < 12; ++i) {
        ASSERT_TRUE(workload_.Run(*store, i).ok());
        const auto survivor = files_.Kill();
        const auto reopened = Open(*survivor);
        EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*reopened), i + 1, i + 1),
                  static_cast<int>(i + 1));
        if (i % 5 == 2) {
            ASSERT_TRUE(store->Flush().ok());
        }
    }
}

TEST_F(FilePageStoreTest, ReaderSeesALeftOverJournalAndWritesNothing) {
    files_.Put(kDatabasePath, workload_.first_file());
    const auto store = Open(files_);
    for (std::size_t i = 0; i < 3; ++i)
        ASSERT_TRUE(workload_.Run(*store, i).ok());
    const auto survivor = files_.Kill();
    const auto reader = Open(*survivor, true);
    EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*reader), 3, 3), 3);
    EXPECT_EQ(reader->Begin().code(), base::StatusCode::kPermissionDenied);
    EXPECT_EQ(reader->Begin().number(), 3027);
    ASSERT_TRUE(reader->Close().ok());
    EXPECT_EQ(survivor->bytes_written(), 0u);
    EXPECT_EQ(survivor->Get(kDatabasePath), files_.Get(kDatabasePath));
    EXPECT_EQ(survivor->Get("folder/tables.mdb-journal"), files_.Get("folder/tables.mdb-journal"));
}

TEST_F(FilePageStoreTest, Jet3PagesHave2048Bytes) {
    PageWorkload workload(6, 0);
    files_.Put(kDatabasePath, workload.first_file());
    auto store = Open(files_);
    EXPECT_EQ(store->page_size(), 2048u);
    for (std::size_t i = 0; i < 5; ++i)
        ASSERT_TRUE(workload.Run(*store, i).ok());
    const auto survivor = files_.Kill();
    const auto reopened = Open(*survivor);
    EXPECT_EQ(workload.Recognize(PageWorkload::Read(*reopened), 5, 5), 5);
}

TEST_F(FilePageStoreTest, FlusherWritesWhileTheProgramIsIdle) {
    files_.Put(kDatabasePath, workload_.first_file());
    jet::PageStoreOptions options;
    options.flush_delay = std::chrono::milliseconds(1);
    const auto store = jet::OpenPageStore(files_, kDatabasePath, options);
    ASSERT_TRUE(store.ok());
    ASSERT_TRUE(workload_.Run(**store, 0).ok());
    const std::size_t wanted = workload_.ContentAfter(1).size() * 4096;
    const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (files_.Get(kDatabasePath).size() < wanted ||
           !files_.Get("folder/tables.mdb-journal").empty()) {
        ASSERT_LT(std::chrono::steady_clock::now(), give_up);
        std::this_thread::yield();
    }
}

TEST_F(FilePageStoreTest, CommitsAndReadsRunBesideTheFlusher) {
    files_.Put(kDatabasePath, workload_.first_file());
    jet::PageStoreOptions options;
    options.flush_delay = std::chrono::milliseconds(1);
    options.cache_bytes = 0;
    auto store = jet::OpenPageStore(files_, kDatabasePath, options);
    ASSERT_TRUE(store.ok());
    for (std::size_t i = 0; i < 400; ++i) {
        ASSERT_TRUE(workload_.Run(**store, i).ok());
        ASSERT_GE(workload_.Recognize(PageWorkload::Read(**store), i + 1, i + 1), 0);
    }
    store.value().reset();
    const auto reopened = Open(files_);
    EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*reopened), 400, 400), 400);
}

// Of a page that the database file has, the journal is told the bytes that changed: a head of 24
// bytes, one of 8 and one of 4 for each number.
TEST_F(FilePageStoreTest, AChangedNumberIsToldInFewBytes) {
    files_.Put(kDatabasePath, MakePages(1, 8));
    const auto store = Open(files_);
    const auto change = [&](jet::PageNumber page, std::size_t at) {
        const std::uint64_t before = files_.bytes_written();
        EXPECT_TRUE(store->Begin().ok());
        (*store->Change(page))[at] ^= std::byte{0x5A};
        EXPECT_TRUE(store->Commit().ok());
        return files_.bytes_written() - before;
    };
    change(3, 100);  // the journal's head comes with it
    EXPECT_EQ(change(4, 100), 24U + 8 + 4 + 1);
    EXPECT_EQ(change(4, 2000), 24U + 8 + 4 + 1);
    EXPECT_EQ(change(3, 200), 24U + 8 + 4 + 1);
    const auto survivor = files_.Kill();
    const auto reopened = Open(*survivor);
    for (const jet::PageNumber page : {3, 4})
        EXPECT_TRUE(std::ranges::equal(reopened->Read(page)->bytes(), store->Read(page)->bytes()));
}

// What a checkpoint brings into the database file are the sectors that changed, and the mark.
TEST_F(FilePageStoreTest, ACheckpointWritesTheSectorsThatChanged) {
    constexpr std::uint64_t kRecordOfMark = 24 + 8;
    files_.Put(kDatabasePath, MakePages(1, 8));
    const auto store = Open(files_);
    const auto flushed = [&](const std::vector<std::pair<jet::PageNumber, std::size_t>>& places) {
        EXPECT_TRUE(store->Begin().ok());
        for (const auto& [page, at] : places)
            (*store->Change(page))[at] ^= std::byte{0x5A};
        EXPECT_TRUE(store->Commit().ok());
        const std::uint64_t before = files_.bytes_written();
        EXPECT_TRUE(store->Flush().ok());
        return files_.bytes_written() - before - kRecordOfMark - jet::kFileMarkBytes;
    };
    EXPECT_EQ(flushed({{3, 100}}), 512U);
    EXPECT_EQ(flushed({{3, 511}, {3, 512}, {5, 4095}}), 3 * 512U);
    EXPECT_EQ(flushed({{3, 0}, {3, 1024}}), 3 * 512U);  // with the one between them
    EXPECT_EQ(flushed({{3, 0}, {3, 1536}}), 2 * 512U);
    const auto survivor = files_.Kill();
    const auto again = Open(*survivor);
    for (jet::PageNumber page = 1; page < 8; ++page)
        EXPECT_TRUE(std::ranges::equal(again->Read(page)->bytes(), store->Read(page)->bytes()));
}

// What follows on a page of which much has changed can be told by moves.
TEST_F(FilePageStoreTest, APageOfWhichMuchChangesIsToldOnceAsAWhole) {
    auto bytes = MakePages(1, 8);
    std::mt19937 random(3);
    for (std::size_t at = 4096; at < bytes.size(); ++at)
        bytes[at] = static_cast<std::byte>(random());
    files_.Put(kDatabasePath, bytes);
    const auto store = Open(files_);
    const auto insert = [&] {
        const std::uint64_t before = files_.bytes_written();
        EXPECT_TRUE(store->Begin().ok());
        const auto page = *store->Change(4);
        std::memmove(page.data() + 1010, page.data() + 1000, 3000);
        EXPECT_TRUE(store->Commit().ok());
        return files_.bytes_written() - before;
    };
    insert();
    EXPECT_LT(insert(), 100U);
    EXPECT_LT(insert(), 100U);
    const auto now = std::vector(store->Read(4)->bytes().begin(), store->Read(4)->bytes().end());
    const auto survivor = files_.Kill();
    const auto reopened = Open(*survivor);
    EXPECT_TRUE(std::ranges::equal(reopened->Read(4)->bytes(), now));
}

// 16 commits of 1000 pages take 62.5 MB of it, the next one goes past 64 MB.
TEST_F(FilePageStoreTest, TheCommitThatMakesTheJournalTooLongEmptiesIt) {
    files_.Put(kDatabasePath, MakePages(1, 4));
    const auto store = Open(files_);
    for (int commit = 0; commit < 17; ++commit) {
        EXPECT_EQ(files_.Get(kDatabasePath).size(), 4 * 4096u) << commit;
        ASSERT_TRUE(store->Begin().ok());
        for (int page = 0; page < 1000; ++page)
            std::ranges::fill(*store->Change(*store->Extend()), std::byte{0x5A});
        ASSERT_TRUE(store->Commit().ok());
    }
    EXPECT_EQ(files_.Get(kDatabasePath).size(), 17'004 * 4096u);
    EXPECT_TRUE(files_.Get("folder/tables.mdb-journal").empty());
}

// ------------------------------------------------------------ journals that must not be applied

class LeftOverJournalTest : public FilePageStoreTest {
protected:
    // The file system as it is when the process died after `count` commits, the database file as it
    // was before.
    std::unique_ptr<FaultyFileSystem> DieAfter(std::size_t count) {
        files_.Put(kDatabasePath, workload_.first_file());
        const auto store = Open(files_);
        EXPECT_TRUE(workload_.Run(*store, 0).ok());
        EXPECT_TRUE(store->Flush().ok());
        backup_ = files_.Get(kDatabasePath);
        for (std::size_t i = 1; i < count; ++i) {
            EXPECT_TRUE(workload_.Run(*store, i).ok());
            EXPECT_TRUE(store->Flush().ok() || i + 1 == count);
        }
        EXPECT_TRUE(workload_.Run(*store, count).ok());
        return files_.Kill();
    }

    std::vector<std::byte> backup_;
};

TEST_F(LeftOverJournalTest, AnOlderCopyPutBackStaysAsItIs) {
    const auto survivor = DieAfter(4);
    survivor->Put(kDatabasePath, backup_);
    auto store = Open(*survivor);
    EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*store), 1, 1), 1);
    ASSERT_TRUE(store->Close().ok());
    EXPECT_EQ(survivor->Get(kDatabasePath), backup_);
}

TEST_F(LeftOverJournalTest, AnOlderCopyOfTheSameSizeStaysAsItIs) {
    files_.Put(kDatabasePath, MakePages(1, 4));
    const auto store = Open(files_);
    std::vector<std::byte> copy;
    for (int i = 1; i <= 3; ++i) {
        if (i == 2) copy = files_.Get(kDatabasePath);
        ASSERT_TRUE(store->Begin().ok());
        (*store->Change(2))[7] = static_cast<std::byte>(i);
        ASSERT_TRUE(store->Commit().ok());
        if (i < 3) {
            ASSERT_TRUE(store->Flush().ok());
        }
    }
    const auto survivor = files_.Kill();
    survivor->Put(kDatabasePath, copy);
    auto reopened = Open(*survivor);
    EXPECT_EQ(reopened->Read(2)->bytes()[7], std::byte{1});
    ASSERT_TRUE(reopened->Close().ok());
    EXPECT_EQ(survivor->Get(kDatabasePath), copy);
}

TEST_F(LeftOverJournalTest, AnotherFileUnderTheNameStaysAsItIs) {
    const auto survivor = DieAfter(4);
    survivor->Put(kDatabasePath, workload_.first_file());
    auto store = Open(*survivor);
    EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*store), 0, 0), 0);
}

TEST_F(LeftOverJournalTest, AFileChangedByAnotherProgramStaysAsItIs) {
    const auto survivor = DieAfter(4);
    auto bytes = survivor->Get(kDatabasePath);
    bytes[0xE00] = std::byte{2};  // another engine counted a committed write
    survivor->Put(kDatabasePath, bytes);
    auto store = Open(*survivor);
    ASSERT_TRUE(store->Close().ok());
    EXPECT_EQ(survivor->Get(kDatabasePath), bytes);
}

// As long as the last commit made it, it may be a checkpoint that did not end; a page more was
// added by another program.
TEST_F(LeftOverJournalTest, AFileLongerThanItsCommitsStaysAsItIs) {
    const auto survivor = DieAfter(4);
    const std::size_t pages = workload_.ContentAfter(5).size();
    auto bytes = survivor->Get(kDatabasePath);
    bytes.resize((pages + 1) * 4096);
    survivor->Put(kDatabasePath, bytes);
    auto store = Open(*survivor);
    EXPECT_EQ(store->page_count(), pages + 1);
    ASSERT_TRUE(store->Close().ok());
    EXPECT_EQ(survivor->Get(kDatabasePath), bytes);
    bytes.resize(pages * 4096);
    survivor->Put(kDatabasePath, bytes);
    store = Open(*survivor);
    EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*store), 5, 5), 5);
}

// The file that it belongs to may be put back under this name.
TEST_F(LeftOverJournalTest, AnotherFilesJournalStaysUntilThereIsACommit) {
    const auto survivor = DieAfter(4);
    const auto own = survivor->Get(kDatabasePath);
    const std::filesystem::path path = std::string(kDatabasePath) + "-journal";
    const auto journal = survivor->Get(path);
    ASSERT_FALSE(journal.empty());
    survivor->Put(kDatabasePath, workload_.first_file());
    for (const bool read_only : {false, true}) {
        auto store = Open(*survivor, read_only);
        ASSERT_TRUE(store->Flush().ok());
        ASSERT_TRUE(store->Close().ok());
        EXPECT_EQ(survivor->Get(path), journal) << read_only;
    }
    survivor->Put(kDatabasePath, own);
    const auto store = Open(*survivor);
    EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*store), 5, 5), 5);
}

TEST_F(LeftOverJournalTest, TheNextCommitReplacesAForeignJournal) {
    const auto survivor = DieAfter(4);
    survivor->Put(kDatabasePath, workload_.first_file());
    auto store = Open(*survivor);
    ASSERT_TRUE(workload_.Run(*store, 0).ok());
    const auto next = survivor->Kill();
    const auto reopened = Open(*next);
    EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*reopened), 1, 1), 1);
}

TEST_F(LeftOverJournalTest, GarbageUnderTheNameIsNoJournal) {
    for (const std::size_t size : {0U, 1U, 47U, 48U, 4143U, 4144U, 4200U, 20000U}) {
        FaultyFileSystem files;
        files.Put(kDatabasePath, workload_.first_file());
        files.Put("folder/tables.mdb-journal", std::vector<std::byte>(size, std::byte{0xA5}));
        auto store = Open(files);
        EXPECT_EQ(workload_.Recognize(PageWorkload::Read(*store), 0, 0), 0);
        EXPECT_FALSE(files.Exists("folder/tables.mdb-journal"));
    }
}

TEST_F(LeftOverJournalTest, CutAtAnyLengthItGivesAWholeNumberOfTransactions) {
    const auto survivor = DieAfter(3);
    const auto journal = survivor->Get("folder/tables.mdb-journal");
    for (std::size_t size = 0; size < journal.size(); size += size < 4300 ? 211 : 1) {
        FaultyFileSystem files;
        files.Put(kDatabasePath, survivor->Get(kDatabasePath));
        auto cut = journal;
        cut.resize(size);
        files.Put("folder/tables.mdb-journal", cut);
        auto store = Open(files);
        ASSERT_GE(workload_.Recognize(PageWorkload::Read(*store), 3, 3), 0) << "size " << size;
    }
}

TEST_F(LeftOverJournalTest, WithAnyByteFlippedItGivesAWholeNumberOfTransactions) {
    files_.Put(kDatabasePath, workload_.first_file());
    auto store = Open(files_);
    for (std::size_t i = 0; i < 4; ++i)
        ASSERT_TRUE(workload_.Run(*store, i).ok());
    const auto survivor = files_.Kill();
    const auto journal = survivor->Get("folder/tables.mdb-journal");
    for (std::size_t at = 0; at < journal.size(); at += 13) {
        FaultyFileSystem files;
        files.Put(kDatabasePath, survivor->Get(kDatabasePath));
        auto damaged = journal;
        damaged[at] ^= std::byte{0x10};
        files.Put("folder/tables.mdb-journal", damaged);
        const auto opened = Open(files);
        ASSERT_GE(workload_.Recognize(PageWorkload::Read(*opened), 0, 3), 0) << "byte " << at;
    }
}

// --------------------------------------------------------------------------- what is refused

TEST_F(FilePageStoreTest, MissingFileIs3024) {
    files_.Put("folder/other.txt", {});
    const auto status = OpenFails(files_, kDatabasePath);
    EXPECT_EQ(status.number(), 3024);
    EXPECT_EQ(status.message(), "Could not find file 'folder/tables.mdb'.");
}

TEST_F(FilePageStoreTest, MissingFolderIs3044) {
    EXPECT_EQ(OpenFails(files_, "nowhere/tables.mdb").number(), 3044);
}

TEST_F(FilePageStoreTest, FilesThatAreNoDatabaseAre3343AndGetNoSisterFiles) {
    auto renamed = MakePages(1, 2);
    std::memcpy(renamed.data() + 4, "Standard Jam DB", 16);
    auto ragged = MakePages(1, 2);
    ragged.resize(ragged.size() - 1);
    const std::vector<std::vector<std::byte>> cases = {
        {}, std::vector<std::byte>(100), std::vector<std::byte>(8192), renamed, ragged};
    for (const auto& bytes : cases) {
        FaultyFileSystem files;
        files.Put(kDatabasePath, bytes);
        for (const bool read_only : {false, true}) {
            const auto status = OpenFails(files, kDatabasePath, read_only);
            EXPECT_EQ(status.number(), 3343);
            EXPECT_EQ(status.message(), "Unrecognized database format 'folder/tables.mdb'.");
            EXPECT_EQ(status.code(), base::StatusCode::kUnsupported);
        }
        EXPECT_EQ(files.Get(kDatabasePath), bytes);
        EXPECT_FALSE(files.Exists("folder/tables.ldb"));
    }
}

TEST_F(FilePageStoreTest, NewerDatabasesAreSaidToBeNewer) {
    auto newer = MakePages(1, 2);
    newer[0x14] = std::byte{2};
    auto renamed = MakePages(1, 2);
    std::memcpy(renamed.data() + 4, "Standard ACE DB", 16);
    for (const auto& bytes : {newer, renamed}) {
        FaultyFileSystem files;
        files.Put(kDatabasePath, bytes);
        const auto status = OpenFails(files, kDatabasePath, false);
        EXPECT_EQ(status.number(), 3343);
        EXPECT_TRUE(status.message().starts_with(
            "Unrecognized database format 'folder/tables.mdb': the file was made by a newer "
            "version of the database engine"))
            << status.message();
        EXPECT_EQ(files.Get(kDatabasePath), bytes);
        EXPECT_FALSE(files.Exists("folder/tables.ldb"));
    }
}

TEST_F(FilePageStoreTest, SecondWriterIsToldWhoHoldsTheFile) {
    files_.Put(kDatabasePath, workload_.first_file());
    auto store = Open(files_);
    for (const bool read_only : {false, true}) {
        const auto status = OpenFails(files_, kDatabasePath, read_only);
        EXPECT_EQ(status.code(), base::StatusCode::kBusy);
        EXPECT_EQ(status.number(), 3356);
        EXPECT_EQ(status.message(),
                  "You attempted to open a database that is already opened exclusively by user "
                  "'tester' on machine 'bench'. Try again when the database is available.");
    }
    ASSERT_TRUE(store->Close().ok());
    EXPECT_NE(Open(files_), nullptr);
}

TEST_F(FilePageStoreTest, ReadersShareTheFileAndKeepWritersOut) {
    files_.Put(kDatabasePath, workload_.first_file());
    auto one = Open(files_, true);
    auto two = Open(files_, true);
    const auto status = OpenFails(files_, kDatabasePath);
    EXPECT_EQ(status.code(), base::StatusCode::kBusy);
    EXPECT_EQ(status.number(), 3045);
    one.reset();
    two.reset();
    EXPECT_NE(Open(files_), nullptr);
}

// Another file comes in the place of a database between the moment that it is opened and the one
// that it is locked, as a compaction by another process may do it.
class ReplacedFiles final : public test_support::ForwardingFiles {
public:
    ReplacedFiles(FaultyFileSystem& files, std::vector<std::byte> bytes)
        : ForwardingFiles(files), files_(files), bytes_(std::move(bytes)) {}
    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = files_.Open(path, mode);
        if (bytes_.empty()) return file;
        files_.Put("folder/other.mdb", std::exchange(bytes_, {}));
        EXPECT_TRUE(files_.Rename("folder/other.mdb", kDatabasePath).ok());
        return file;
    }

private:
    FaultyFileSystem& files_;
    std::vector<std::byte> bytes_;
};

TEST_F(FilePageStoreTest, NobodyGoesOnWithAFileThatWasReplaced) {
    for (const bool read_only : {false, true}) {
        FaultyFileSystem files;
        files.Put(kDatabasePath, MakePages(1, 4));
        ReplacedFiles replaced(files, MakePages(1, 4));
        jet::PageStoreOptions options;
        options.read_only = read_only;
        EXPECT_EQ(jet::OpenPageStore(replaced, kDatabasePath, options).status().number(), 3045);
        EXPECT_FALSE(files.Exists("folder/tables.ldb"));
        EXPECT_TRUE(jet::OpenPageStore(replaced, kDatabasePath, options).ok());
    }
}

TEST_F(FilePageStoreTest, ALockFileHeldByAnotherProgramMeansBusy) {
    files_.Put(kDatabasePath, workload_.first_file());
    auto ldb = files_.Open("folder/tables.ldb", jet::OpenMode::kCreate);
    ASSERT_TRUE(ldb.ok());
    std::vector<std::byte> slot(64);
    std::memcpy(slot.data(), "OFFICE", 6);
    std::memcpy(slot.data() + 32, "Admin", 5);
    ASSERT_TRUE(ldb.value()->WriteAt(0, slot).ok());
    ASSERT_TRUE(ldb.value()->Lock(jet::FileLock::kExclusive, jet::kBehindContent).ok());
    for (const bool read_only : {false, true}) {
        const auto status = OpenFails(files_, kDatabasePath, read_only);
        EXPECT_EQ(status.number(), 3356);
        EXPECT_NE(status.message().find("user 'Admin' on machine 'OFFICE'"), std::string::npos);
    }
    // The program is gone and has left its file behind, longer than we make it.
    ASSERT_TRUE(ldb.value()->WriteAt(64, slot).ok());
    ldb.value().reset();
    auto store = Open(files_);
    ASSERT_NE(store, nullptr);
    const auto ours = files_.Get("folder/tables.ldb");
    EXPECT_EQ(ours.size(), 64u);
    EXPECT_NE(ours, slot);
    ASSERT_TRUE(store->Close().ok());
    EXPECT_FALSE(files_.Exists("folder/tables.ldb"));
}

// Another program has one of the files to itself, as systems with sharing modes let it.
class FilesKeptByAnother final : public test_support::ForwardingFiles {
public:
    FilesKeptByAnother(jet::FileSystem& files, std::filesystem::path kept)
        : ForwardingFiles(files), kept_(std::move(kept)) {}
    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (path == kept_) return base::Status(base::StatusCode::kBusy, "in use");
        return ForwardingFiles::Open(path, mode);
    }

private:
    std::filesystem::path kept_;
};

TEST_F(FilePageStoreTest, AFileThatAnotherProgramKeepsToItselfIsInUse) {
    for (const char* kept : {kDatabasePath, "folder/tables.ldb", "folder/tables.mdb-journal"}) {
        files_.Put(kDatabasePath, workload_.first_file());
        files_.Put(kept, files_.Get(kept));
        FilesKeptByAnother files(files_, kept);
        for (const bool read_only : {false, true}) {
            const auto status = OpenFails(files, kDatabasePath, read_only);
            EXPECT_EQ(status.number(), 3045) << kept;
            EXPECT_EQ(status.code(), base::StatusCode::kBusy) << kept;
        }
        ASSERT_TRUE(files_.Remove(kept).ok());
    }
}

}  // namespace
