// Every call of the file system fails once while a file is compacted in its place, is where the
// process stops, or where the power fails: there is the old file or the new one, nothing between.
#include "jet/connection.h"
#include "jet/pages/file_mark.h"
#include "jet/repair/compact.h"
#include "jet/repair/finished_file.h"
#include "jet/tables/database.h"
#include "support/check_database.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

using test_support::FaultKind;
using test_support::FaultPlan;
using test_support::FaultyFileSystem;
using Content = std::vector<std::vector<std::byte>>;

constexpr const char* kPath = "folder/a.mdb";
constexpr const char* kJournalPath = "folder/a.mdb-journal";
constexpr const char* kNewPath = "folder/a.mdb-new";

// What a program would read; the file mark does not count. Empty: it cannot be opened.
Content ContentOf(FaultyFileSystem& files) {
    PageStoreOptions options;
    options.read_only = true;
    const auto store = OpenPageStore(files, kPath, options);
    if (!store.ok()) return {};
    Content content;
    for (PageNumber page = 0; page < (*store)->page_count(); ++page) {
        const PageView view = (*store)->Read(page).value();
        content.emplace_back(view.bytes().begin(), view.bytes().end());
    }
    StoreFileMark(std::span(content[0]).subspan(FileMarkOffset((*store)->page_size()), 16), 1);
    return content;
}

class CompactFaultTest : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        FaultyFileSystem files;
        ASSERT_TRUE(CreateDatabaseFile(files, kPath, 40000.25).ok());
        PageStoreOptions options;
        options.flush_delay = {};
        auto store = OpenPageStore(files, kPath, options);
        ASSERT_TRUE(store.ok());
        auto database = OpenDatabase(std::move(store).value(), kPath);
        ASSERT_TRUE(database.ok());
        Connection connection(std::move(database).value());
        const auto execute = [&](const char16_t* sql) {
            ASSERT_TRUE(connection.Execute(sql).ok());
        };
        execute(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, Notes MEMO)");
        for (int i = 0; i < 12; ++i)
            execute(u"INSERT INTO T (Notes) VALUES (String(3000, 'n'))");
        execute(u"DELETE FROM T WHERE ID < 11");
        ASSERT_TRUE(HasJournal() || connection.Close().ok());
        for (const char* path : {kPath, kJournalPath})
            if (files.Exists(path)) on_disk_.emplace_back(path, files.Get(path));
        EXPECT_EQ(on_disk_.size(), HasJournal() ? 2U : 1U);
    }

    // Whether what was committed last is still in a journal when it begins.
    static bool HasJournal() { return GetParam(); }

    std::unique_ptr<FaultyFileSystem> Start() const {
        auto files = std::make_unique<FaultyFileSystem>();
        for (const auto& [path, bytes] : on_disk_)
            files->Put(path, bytes);
        return files;
    }

    void FindBothStates() {
        const auto files = Start();
        before_ = ContentOf(*files);
        ASSERT_FALSE(before_.empty());
        const auto calls_before = files->calls();
        ASSERT_TRUE(CompactInPlace(*files, kPath).ok());
        calls_ = files->calls() - calls_before;
        after_ = ContentOf(*files);
        ASSERT_LT(after_.size(), before_.size());
        EXPECT_FALSE(files->Exists(kNewPath));
        EXPECT_FALSE(files->Exists(kJournalPath));
        EXPECT_FALSE(files->Exists("folder/a.ldb"));
    }

    // 0: before, 1: after; anything else fails the test.
    int StateOf(FaultyFileSystem& files) {
        const Content content = ContentOf(files);
        if (content == before_) return 0;
        if (content == after_) return 1;
        ADD_FAILURE() << "the file is neither the old one nor the new one: " << content.size()
                      << " pages";
        return -1;
    }

    std::vector<std::pair<const char*, FaultyFileSystem::Bytes>> on_disk_;
    Content before_;
    Content after_;
    std::uint64_t calls_ = 0;
};

TEST_P(CompactFaultTest, EveryCallThatFailsLeavesTheOldFileOrTheNewOne) {
    FindBothStates();
    for (const FaultKind kind : {FaultKind::kRefuse, FaultKind::kHalf, FaultKind::kDoneButFail,
                                 FaultKind::kForgotten, FaultKind::kLost}) {
        for (std::uint64_t call = 1; call <= calls_; ++call) {
            SCOPED_TRACE("kind " + std::to_string(static_cast<int>(kind)) + " call " +
                         std::to_string(call));
            const auto files = Start();
            files->SetPlan({files->calls() + call, kind});
            const auto done = CompactInPlace(*files, kPath);
            files->SetPlan({});
            const int state = StateOf(*files);
            EXPECT_TRUE(!done.ok() || state == 1);
            EXPECT_TRUE(kind == FaultKind::kLost || !files->Exists(kNewPath));
            if (HasFailure()) return;
            if (kind != FaultKind::kRefuse && kind != FaultKind::kLost) continue;
            // And nothing stands in the way of the next attempt.
            const auto again = CompactInPlace(*files, kPath);
            ASSERT_TRUE(again.ok()) << again.status().message();
            EXPECT_EQ(StateOf(*files), 1);
            EXPECT_FALSE(files->Exists(kNewPath));
        }
    }
}

TEST_P(CompactFaultTest, AStopAtEveryCallLeavesTheOldFileOrTheNewOne) {
    FindBothStates();
    bool seen[2] = {false, false};
    for (std::uint64_t call = 1; call <= calls_; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        const auto files = Start();
        files->SetPlan({files->calls() + call, FaultKind::kStop});
        (void)CompactInPlace(*files, kPath);
        const auto killed = files->Kill();
        const int state = StateOf(*killed);
        ASSERT_GE(state, 0);
        seen[state] = true;
        for (std::uint32_t seed = 0; seed < 4; ++seed) {
            const auto after_power_cut = files->CutPower(seed);
            const int cut_state = StateOf(*after_power_cut);
            ASSERT_GE(cut_state, 0) << "seed " << seed;
        }
        ASSERT_TRUE(CompactInPlace(*killed, kPath).ok());
        EXPECT_EQ(StateOf(*killed), 1);
        EXPECT_FALSE(killed->Exists(kNewPath));
    }
    EXPECT_TRUE(seen[0] && seen[1]);
}

TEST_P(CompactFaultTest, WhatWasDoneSurvivesAPowerCut) {
    FindBothStates();
    const auto files = Start();
    ASSERT_TRUE(CompactInPlace(*files, kPath).ok());
    for (std::uint32_t seed = 0; seed < 32; ++seed)
        EXPECT_EQ(StateOf(*files->CutPower(seed)), 1) << "seed " << seed;
}

INSTANTIATE_TEST_SUITE_P(Starts, CompactFaultTest, testing::Bool(),
                         [](const auto& param) { return param.param ? "WithAJournal" : "Closed"; });

TEST(CompactedFileTest, ASpareFileOfAnotherSizeIsReplaced) {
    FaultyFileSystem files;
    ASSERT_TRUE(CreateDatabaseFile(files, kPath, 40000.25).ok());
    files.Put(kNewPath, FaultyFileSystem::Bytes(100 * 4096, std::byte{1}));
    const auto report = CompactInPlace(files, kPath);
    ASSERT_TRUE(report.ok()) << report.status().message();
    EXPECT_EQ(files.Get(kPath).size(), report->bytes_after());
    EXPECT_FALSE(files.Exists(kNewPath));
}

TEST(CompactedFileTest, WhoIsToldBeforeCanStillPreventIt) {
    FaultyFileSystem files;
    ASSERT_TRUE(CreateDatabaseFile(files, kPath, 40000.25).ok());
    const auto before = files.Get(kPath);
    const auto refused = CompactInPlace(files, kPath, {}, [&](const CompactReport& report) {
        EXPECT_EQ(files.Get(kPath), before);
        EXPECT_EQ(files.Get(kNewPath).size(), report.bytes_after());
        return base::Status(base::StatusCode::kNoSpace, "no room");
    });
    EXPECT_EQ(refused.status().code(), base::StatusCode::kNoSpace);
    EXPECT_EQ(files.Get(kPath), before);
    EXPECT_FALSE(files.Exists(kNewPath));
}

TEST(CompactedFileTest, AJournalOfTheOldFileIsNoneOfTheNewOne) {
    FaultyFileSystem files;
    ASSERT_TRUE(CreateDatabaseFile(files, kPath, 40000.25).ok());
    PageStoreOptions options;
    options.flush_delay = {};
    std::vector<std::byte> journal;
    {
        auto store = OpenPageStore(files, kPath, options).value();
        ASSERT_TRUE(store->Begin().ok());
        (*store->Change(15))[100] = std::byte{1};
        ASSERT_TRUE(store->Commit().ok());
        journal = files.Get(kJournalPath);
        ASSERT_FALSE(journal.empty());
        ASSERT_TRUE(store->Begin().ok());
        (*store->Change(15))[100] = std::byte{0};
        ASSERT_TRUE(store->Commit().ok());
    }
    ASSERT_TRUE(CompactInPlace(files, kPath).ok());
    const Content compacted = ContentOf(files);
    files.Put(kJournalPath, journal);
    EXPECT_EQ(ContentOf(files), compacted);
}

}  // namespace
}  // namespace jet::test
