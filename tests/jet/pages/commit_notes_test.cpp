// Notes of commits: they reach who takes them exactly when their transaction is in the database,
// each known by journal and offset, wherever the process or the power stops.
#include "jet/pages/file_mark.h"
#include "jet/pages/page_store.h"
#include "support/encoded_file.h"
#include "support/faulty_file_system.h"
#include "support/page_workload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

using jet::CommitNote;
using test_support::FaultKind;
using test_support::FaultPlan;
using test_support::FaultyFileSystem;
using test_support::PageWorkload;

using test_support::kDatabasePath;
constexpr std::size_t kNotedTransactions = 14;

// Keeps each note once. Outlives process and power, as a file would.
class KeptNotes final : public jet::CommitNotes {
public:
    void Bind(std::vector<std::uint64_t> marks) override {
        if (last_mark_ != 0) is_bound_ = std::ranges::count(marks, last_mark_) != 0;
    }
    void Keep(std::vector<CommitNote> notes, std::uint64_t mark) override {
        for (CommitNote& note : notes) {
            const bool is_known = std::ranges::any_of(kept_, [&](const CommitNote& kept) {
                return kept.journal == note.journal && kept.offset == note.offset;
            });
            if (!is_known) kept_.push_back(std::move(note));
        }
        last_mark_ = mark;
    }

    // The numbers that the notes tell, in their order.
    std::vector<std::uint32_t> Numbers() const {
        std::vector<std::uint32_t> numbers;
        for (const CommitNote& note : kept_) {
            std::uint32_t number = 0;
            std::memcpy(&number, note.bytes.data(), sizeof number);
            numbers.push_back(number);
        }
        return numbers;
    }
    bool is_bound() const { return is_bound_; }
    std::uint64_t last_mark() const { return last_mark_; }

private:
    std::vector<CommitNote> kept_;
    std::uint64_t last_mark_ = 0;
    bool is_bound_ = true;
};

std::vector<std::byte> NoteOf(std::size_t number) {
    std::vector<std::byte> note(4 + number * 7);
    const auto told = static_cast<std::uint32_t>(number);
    std::memcpy(note.data(), &told, sizeof told);
    return note;
}

std::vector<std::uint32_t> NumbersBelow(std::size_t end) {
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < end; ++i)
        numbers.push_back(i);
    return numbers;
}

base::Result<std::unique_ptr<jet::PageStore>> Open(jet::FileSystem& files,
                                                   jet::CommitNotes* notes) {
    jet::PageStoreOptions options;
    options.flush_delay = {};
    options.notes = notes;
    return jet::OpenPageStore(files, kDatabasePath, options);
}

std::uint64_t MarkOf(const FaultyFileSystem& files) {
    const std::vector<std::byte> file = files.Get(kDatabasePath);
    return jet::ReadFileMark(std::span(file).first(4096));
}

class CommitNotesTest : public testing::Test {
protected:
    std::unique_ptr<FaultyFileSystem> FreshDisk(FaultPlan plan = {}) {
        auto files = std::make_unique<FaultyFileSystem>();
        files->Put(kDatabasePath, workload_.first_file());
        files->SetPlan(plan);
        return files;
    }

    // Ends at the first failure. The answer: how many commits were acknowledged.
    std::size_t Run(FaultyFileSystem& files, jet::CommitNotes& notes) {
        auto store = Open(files, &notes);
        if (!store.ok()) return 0;
        std::size_t done = 0;
        for (; done < kNotedTransactions; ++done) {
            if (!workload_.Run(**store, done, NoteOf(done)).ok()) return done;
            if (done % 4 == 3 && !(*store)->Flush().ok()) return done + 1;
        }
        (*store)->Close().Ignore();
        return done;
    }

    void CheckReopened(FaultyFileSystem& files, KeptNotes& notes, std::size_t least,
                       std::size_t most) {
        auto store = Open(files, &notes);
        ASSERT_TRUE(store.ok()) << store.status().message();
        EXPECT_TRUE(notes.is_bound());
        const int seen = workload_.Recognize(PageWorkload::Read(**store), least, most);
        ASSERT_TRUE((*store)->Close().ok());
        ASSERT_GE(seen, 0);
        EXPECT_EQ(notes.Numbers(), NumbersBelow(static_cast<std::size_t>(seen)));
    }

    PageWorkload workload_{7};
};

TEST_F(CommitNotesTest, EachIsHandedOnOnceAndTheMarkIsTheFilesOwn) {
    const auto files = FreshDisk();
    KeptNotes notes;
    EXPECT_EQ(Run(*files, notes), kNotedTransactions);
    EXPECT_EQ(notes.Numbers(), NumbersBelow(kNotedTransactions));
    EXPECT_EQ(notes.last_mark(), MarkOf(*files));
    EXPECT_FALSE(files->Exists("folder/tables.mdb-journal"));
}

TEST_F(CommitNotesTest, ANoteWithoutAChangeIsACommitToo) {
    const auto files = FreshDisk();
    KeptNotes notes;
    const auto store = Open(*files, &notes);
    ASSERT_TRUE(store.ok());
    ASSERT_TRUE((*store)->Begin().ok());
    ASSERT_TRUE((*store)->Commit(NoteOf(0)).ok());
    EXPECT_TRUE(notes.Numbers().empty());
    ASSERT_TRUE((*store)->Flush().ok());
    EXPECT_EQ(notes.Numbers(), NumbersBelow(1));
    ASSERT_TRUE((*store)->Close().ok());
    EXPECT_EQ(notes.last_mark(), MarkOf(*files));
}

TEST_F(CommitNotesTest, WithoutATakerNothingIsWrittenBeside) {
    const auto with = FreshDisk();
    const auto without = FreshDisk();
    {
        const auto store = Open(*without, nullptr);
        ASSERT_TRUE(store.ok());
        EXPECT_FALSE((*store)->takes_notes());
        ASSERT_TRUE(workload_.Run(**store, 0, NoteOf(100)).ok());
        const auto plain = Open(*with, nullptr);
        ASSERT_TRUE(plain.ok());
        ASSERT_TRUE(workload_.Run(**plain, 0).ok());
        EXPECT_EQ(with->Get("folder/tables.mdb-journal").size(),
                  without->Get("folder/tables.mdb-journal").size());
    }
}

TEST_F(CommitNotesTest, AnEncodedFileHasNone) {
    PageWorkload encoded(7, 1, 0x1234ABCD);
    FaultyFileSystem files;
    files.Put(kDatabasePath, encoded.first_file());
    KeptNotes notes;
    const auto store = Open(files, &notes);
    ASSERT_TRUE(store.ok());
    EXPECT_FALSE((*store)->takes_notes());
    ASSERT_TRUE(encoded.Run(**store, 0, NoteOf(0)).ok());
    ASSERT_TRUE((*store)->Close().ok());
    EXPECT_TRUE(notes.Numbers().empty());
}

TEST_F(CommitNotesTest, AnotherFilesMarksAreNotKnown) {
    const auto files = FreshDisk();
    KeptNotes notes;
    Run(*files, notes);
    files->Put(kDatabasePath, workload_.first_file());
    ASSERT_TRUE(Open(*files, &notes).ok());
    EXPECT_FALSE(notes.is_bound());
}

TEST_F(CommitNotesTest, WhereverTheProcessStopsNotesAndPagesAgree) {
    for (std::uint64_t call = 1;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        const auto files = FreshDisk({call, FaultKind::kStop, base::StatusCode::kIoError});
        KeptNotes notes;
        const std::size_t done = Run(*files, notes);
        if (!files->fault_happened()) {
            EXPECT_GT(call, 40u);
            return;
        }
        const auto dead = files->Kill();
        CheckReopened(*dead, notes, done, std::min(done + 1, kNotedTransactions));
        if (HasFailure()) return;
    }
}

// What was handed on was in a synced journal, so a power cut cannot take its change back.
TEST_F(CommitNotesTest, WhereverThePowerFailsNotesAndPagesAgree) {
    for (std::uint64_t call = 1;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        const auto files = FreshDisk({call, FaultKind::kStop, base::StatusCode::kIoError});
        KeptNotes notes;
        const std::size_t done = Run(*files, notes);
        if (!files->fault_happened()) return;
        const auto dead = files->CutPower(static_cast<std::uint32_t>(call));
        CheckReopened(*dead, notes, notes.Numbers().size(), std::min(done + 1, kNotedTransactions));
        if (HasFailure()) return;
    }
}

TEST_F(CommitNotesTest, AFailedCheckpointHandsThemOnWithTheNext) {
    for (std::uint64_t call = 1;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        const auto files = FreshDisk({call, FaultKind::kRefuse, base::StatusCode::kIoError});
        KeptNotes notes;
        auto store = Open(*files, &notes);
        std::size_t done = 0;
        for (std::size_t tries = 0; store.ok() && done < 6 && tries < 12; ++tries) {
            if (workload_.Run(**store, done, NoteOf(done)).ok()) ++done;
            if (tries % 2 == 1) (*store)->Flush().Ignore();
        }
        if (store.ok()) (*store)->Close().Ignore();
        if (!files->fault_happened()) return;
        if (store.ok()) CheckReopened(*files, notes, done, done);
        if (HasFailure()) return;
    }
}

}  // namespace
