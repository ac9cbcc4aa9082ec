// The history file: bound to its database, whole or cut, within its limit.
#include "history_fixture.h"

#include "jet/pages/file_mark.h"
#include "jet/repair/compact.h"

#include <gtest/gtest.h>

namespace history::test {
namespace {

using test_support::FaultKind;
using test_support::FaultyFileSystem;

class HistoryFileTest : public HistoryFixture {
protected:
    std::uint64_t Mark() const {
        const std::vector<std::byte> file = files_->Get(kPath);
        return jet::ReadFileMark(std::span(file).first(4096));
    }
};

TEST_F(HistoryFileTest, IsMadeWhenFirstNeeded) {
    Reopen();
    Run(u"CREATE TABLE Words (Word TEXT(20))");
    Reopen();
    EXPECT_FALSE(files_->Exists(kHistoryPath));
    EXPECT_TRUE(Changes().empty());
    InsertMany(1);
    Reopen();
    EXPECT_TRUE(files_->Exists(kHistoryPath));
    EXPECT_FALSE(files_->Exists("folder/games.mdb-history.new"));
}

TEST_F(HistoryFileTest, TellsWhatWasDone) {
    InsertMany(3);
    RunNamed(u"Edit", u"UPDATE Games SET Points = 5, Name = 'x' WHERE ID < 3");
    RunNamed(u"Purge", u"DELETE FROM Games WHERE ID = 1");
    Run(u"UPDATE Games SET Points = 6");
    const std::vector<Change> changes = Changes();
    ASSERT_EQ(changes.size(), 4U);
    EXPECT_EQ(changes[0].label.name, u"Insert");
    EXPECT_EQ(changes[0].rows(), 3U);
    EXPECT_EQ(changes[1].tables, (std::vector<Change::TableCount>{{u"Games", 2}}));
    EXPECT_EQ(changes[1].fields, 4U);
    EXPECT_EQ(changes[1].label.time, 46000.25);
    EXPECT_EQ(changes[2].fields, 4U) << "those that held something";
    EXPECT_EQ(changes[0].fields, 12U);
    EXPECT_EQ(changes[2].number, 3U);
    EXPECT_EQ(changes[3].label.name, u"");
    Reopen();
    EXPECT_EQ(Changes(), changes);
    RunNamed(u"Edit", u"UPDATE Games SET Points = 7");
    EXPECT_EQ(Changes().back().number, 5U);
}

// Nobody asks in between, so that all is counted at once, at the end.
TEST_F(HistoryFileTest, ARowThatACommandChangesTwiceCountsOnce) {
    InsertMany(3);
    {
        const jet::NamedChange named(*connection_, u"Reset");
        Run(u"UPDATE Games SET Points = 5");
        Run(u"UPDATE Games SET Points = 6 WHERE ID > 1");
        Run(u"UPDATE Games SET Name = 'x' WHERE ID = 3");
    }
    RunNamed(u"Edit", u"UPDATE Games SET Points = 7 WHERE ID = 1");
    const std::vector<Change> changes = Changes();
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_EQ(changes[0].rows(), 3U);
    EXPECT_EQ(changes[1].rows(), 3U);
    EXPECT_EQ(changes[1].fields, 6U);
    EXPECT_EQ(changes[2].rows(), 1U);
    Reopen();
    EXPECT_EQ(Changes(), changes);
}

TEST_F(HistoryFileTest, OfAnotherFileIsSetAside) {
    const std::vector<std::byte> old_copy = files_->Get(kPath);
    InsertMany(2);
    Close();
    const std::vector<std::byte> foreign = files_->Get(kHistoryPath);
    files_->Put(kPath, old_copy);
    Open();
    EXPECT_TRUE(Changes().empty());
    EXPECT_EQ(files_->Get("folder/games.mdb-history.old"), foreign);
    EXPECT_EQ(history_->TakeFailure().message(),
              "The history of changes did not belong to this catalogue; it was set aside as "
              "games.mdb-history.old.");
    EXPECT_TRUE(history_->TakeFailure().ok());
    InsertMany(1);
    EXPECT_EQ(Changes().size(), 1U);
    Close();
    files_->Put(kPath, old_copy);
    Open();
    EXPECT_TRUE(Changes().empty());
    EXPECT_TRUE(files_->Exists("folder/games.mdb-history.old2"));
}

TEST_F(HistoryFileTest, ACopyOfTheDatabaseAloneHasNone) {
    InsertMany(2);
    Close();
    ASSERT_TRUE(files_->Remove(kHistoryPath).ok());
    Open();
    EXPECT_TRUE(Changes().empty());
    EXPECT_TRUE(history_->TakeFailure().ok());
    EXPECT_EQ(Rows().size(), 2U);
}

TEST_F(HistoryFileTest, GoesOnUnderANewMarkAndUnderTheOldOneIfThatStays) {
    InsertMany(2);
    Close();
    const std::uint64_t before = Mark();
    const std::vector<std::byte> old_file = files_->Get(kPath);
    std::vector<std::byte> file = old_file;
    jet::StoreFileMark(std::span(file).subspan(jet::FileMarkOffset(4096), jet::kFileMarkBytes),
                       4711);
    ASSERT_TRUE(HistoryFile::Rebind(*files_, kPath, before, 4711).ok());
    const std::vector<std::byte> history = files_->Get(kHistoryPath);
    // The new file came, or something stopped it.
    for (const auto& present : {file, old_file}) {
        files_->Put(kPath, present);
        files_->Put(kHistoryPath, history);
        Open();
        EXPECT_EQ(Changes().size(), 1U);
        EXPECT_TRUE(history_->TakeFailure().ok());
        Run(u"UPDATE Games SET Points = 2");
        Close();
        Open();
        EXPECT_EQ(Changes().size(), 2U);
        Close();
    }
    const std::vector<std::byte> later = files_->Get(kHistoryPath);
    ASSERT_TRUE(HistoryFile::Rebind(*files_, kPath, before, 4712).ok());
    EXPECT_EQ(files_->Get(kHistoryPath), later);
}

TEST_F(HistoryFileTest, ACompactedDatabaseKeepsIt) {
    InsertMany(2);
    Run(u"DELETE FROM Games WHERE ID = 1");
    const std::vector<Change> changes = Changes();
    Close();
    const auto done =
        jet::CompactInPlace(*files_, kPath, {}, [&](const jet::CompactReport& report) {
            return HistoryFile::Rebind(*files_, kPath, report.mark_before, report.mark_after);
        });
    ASSERT_TRUE(done.ok()) << done.status().message();
    Open();
    EXPECT_EQ(Changes(), changes);
    EXPECT_TRUE(history_->TakeFailure().ok());
    Close();
    // One that nobody told of it is set aside.
    ASSERT_TRUE(jet::CompactInPlace(*files_, kPath).ok());
    Open();
    EXPECT_TRUE(Changes().empty());
    EXPECT_FALSE(history_->TakeFailure().ok());
}

TEST_F(HistoryFileTest, ATornEndIsCut) {
    InsertMany(2);
    Reopen();
    RunNamed(u"Edit", u"UPDATE Games SET Points = 9");
    const std::vector<Change> changes = Changes();
    std::vector<std::byte> file = files_->Get(kHistoryPath);
    const std::size_t whole = file.size();
    for (std::size_t more = 1; more < 60; more += 7) {
        Close();
        file.resize(whole);
        file.resize(whole + more, std::byte{0x5A});
        files_->Put(kHistoryPath, file);
        Open();
        EXPECT_EQ(Changes(), changes);
    }
}

// Whatever is wrong with the file, the database opens and changes; what can be trusted is told.
TEST_F(HistoryFileTest, DamageIsNoDanger) {
    InsertMany(3);
    Run(u"UPDATE Games SET Points = 2");
    Run(u"DELETE FROM Games WHERE ID = 2");
    Close();
    const std::vector<std::byte> whole = files_->Get(kHistoryPath);
    const std::vector<std::byte> database = files_->Get(kPath);
    for (std::size_t at = 0; at < 2 * whole.size(); at += 3) {
        std::vector<std::byte> damaged = whole;
        if (at < whole.size())
            damaged[at] ^= std::byte{0x41};
        else
            damaged.resize(at - whole.size());
        files_->Put(kHistoryPath, damaged);
        files_->Put(kPath, database);
        Open();
        EXPECT_LE(Changes().size(), 3U);
        Run(u"UPDATE Games SET Points = 77 WHERE ID = 1");
        EXPECT_EQ(UndoLast().rows, 1U);
        Close();
        for (const char* aside : {"", "2", "3"})
            files_->Remove(std::string(kHistoryPath) + ".old" + aside).Ignore();
    }
}

TEST_F(HistoryFileTest, WithinItsLimitTheOldestChangesGoAsWholes) {
    Close();
    limit_ = 8000;
    Open();
    for (int i = 0; i < 60; ++i) {
        InsertMany(4);
        if (i % 5 == 0) Changes();
    }
    const std::vector<Change> changes = Changes();
    EXPECT_LE(files_->Get(kHistoryPath).size(), limit_);
    ASSERT_GT(changes.size(), 3U);
    EXPECT_EQ(changes.back().number, 60U);
    for (const Change& change : changes)
        EXPECT_EQ(change.rows(), 4U);
    Reopen();
    EXPECT_EQ(Changes(), changes);
    EXPECT_EQ(UndoLast().rows, 4U);
    EXPECT_EQ(history_->NotesOf(1).status().code(), base::StatusCode::kNotFound);
}

TEST_F(HistoryFileTest, TheNewestChangeStaysHoweverLargeItIs) {
    Close();
    limit_ = 2000;
    Open();
    InsertMany(1);
    Changes();
    InsertMany(500);
    EXPECT_EQ(Changes().size(), 1U);
    EXPECT_EQ(UndoLast().rows, 500U);
}

TEST_F(HistoryFileTest, ReadsWithoutBeingBound) {
    InsertMany(2);
    Close();
    const std::vector<std::byte> file = files_->Get(kHistoryPath);
    HistoryFile reader(*files_, kPath);
    EXPECT_EQ(reader.Changes()->size(), 1U);
    EXPECT_EQ(reader.NotesOf(1)->size(), 2U);
    EXPECT_EQ(files_->Get(kHistoryPath), file);
    Open();
}

// Each call that reaches the disk fails once: the database has what it said that it has, the
// history tells either what happened or that something is missing.
TEST_F(HistoryFileTest, AFailureIsLostHistoryAndNotALostRow) {
    Close();
    for (const FaultKind kind : {FaultKind::kRefuse, FaultKind::kHalf, FaultKind::kDoneButFail}) {
        for (std::uint64_t call = 1;; ++call) {
            SCOPED_TRACE("call " + std::to_string(call));
            files_ = std::make_unique<FaultyFileSystem>();
            Create(*files_);
            files_->SetPlan({call, kind, base::StatusCode::kNoSpace});
            history_ = std::make_unique<HistoryFile>(*files_, kPath);
            connection_ = std::make_unique<jet::Connection>(*files_, [] { return 46000.25; });
            connection_->UseNotes(history_.get());
            std::size_t rows = 0;
            bool all_told = true;
            if (connection_->Open(u"Data Source=folder/games.mdb").ok()) {
                for (int i = 0; i < 6; ++i) {
                    const bool done =
                        connection_->Execute(u"INSERT INTO Games (Name) VALUES ('a')").ok();
                    if (done) ++rows;
                    if (i % 2 == 1) connection_->Flush().Ignore();
                }
                connection_->Close().Ignore();
                all_told = history_->TakeFailure().ok();
            }
            const bool happened = files_->fault_happened();
            files_->SetPlan({});
            history_.reset();
            connection_.reset();
            Open();
            EXPECT_EQ(Rows().size(), rows);
            const std::vector<Change> changes = Changes();
            EXPECT_LE(changes.size(), rows);
            EXPECT_TRUE(!all_told || changes.size() == rows);
            for (const Change& change : changes)
                EXPECT_EQ(change.rows(), 1U);
            Close();
            if (!happened || HasFailure()) break;
        }
    }
    Open();
}

// The process or the power stops at each call: history and database agree, change by change.
TEST_F(HistoryFileTest, WhereverItStopsHistoryAndRowsAgree) {
    Close();
    for (const bool is_power_cut : {false, true}) {
        for (std::uint64_t call = 1;; ++call) {
            SCOPED_TRACE("call " + std::to_string(call));
            auto files = std::make_unique<FaultyFileSystem>();
            Create(*files);
            files->SetPlan({call, FaultKind::kStop, base::StatusCode::kIoError});
            std::size_t rows = 0;
            {
                HistoryFile history(*files, kPath, 1500);
                jet::Connection connection(*files);
                connection.UseNotes(&history);
                if (connection.Open(u"Data Source=folder/games.mdb").ok())
                    for (int i = 0; i < 8; ++i) {
                        const auto done =
                            connection.Execute(u"INSERT INTO Games (Name) VALUES ('a')");
                        if (!done.ok()) break;
                        ++rows;
                        if (i % 3 == 2 && !connection.Flush().ok()) break;
                    }
            }
            const bool happened = files->fault_happened();
            files_ =
                is_power_cut ? files->CutPower(static_cast<std::uint32_t>(call)) : files->Kill();
            limit_ = 1500;
            Open();
            const std::vector<Change> changes = Changes();
            const std::size_t there = Rows().size();
            EXPECT_TRUE(is_power_cut || there >= rows);
            EXPECT_FALSE(files_->Exists("folder/games.mdb-history.old"));
            // The oldest ones may have left it for the limit.
            if (there > 0) {
                ASSERT_FALSE(changes.empty());
                EXPECT_EQ(changes.back().number, there);
                EXPECT_EQ(UndoLast().rows, 1U);
                EXPECT_EQ(Rows().size(), there - 1);
            }
            Close();
            if (!happened || HasFailure()) break;
        }
    }
    Open();
}

// An undo is one transaction: wherever the process stops, it has happened or not, and the history
// says which.
TEST_F(HistoryFileTest, WhereverItStopsAnUndoIsThereOrNot) {
    InsertMany(40);
    RunNamed(u"Edit", u"UPDATE Games SET Points = ID, Name = NULL WHERE ID < 30");
    RunNamed(u"Purge", u"DELETE FROM Games WHERE ID > 20");
    const Content after = Rows();
    Close();
    const std::vector<std::byte> database = files_->Get(kPath);
    const std::vector<std::byte> file = files_->Get(kHistoryPath);
    Content before;
    for (std::uint64_t call = 0;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        auto files = std::make_unique<FaultyFileSystem>();
        files->Put(kPath, database);
        files->Put(kHistoryPath, file);
        files->SetPlan({call, FaultKind::kStop, base::StatusCode::kIoError});
        {
            HistoryFile history(*files, kPath);
            jet::Connection connection(*files);
            connection.UseNotes(&history);
            if (connection.Open(u"Data Source=folder/games.mdb").ok())
                static_cast<void>(PutBack(connection, history, 3, u"Undo Purge"));
            if (call == 0) before = RowsOf(connection);
        }
        const bool happened = files->fault_happened();
        files_ = files->Kill();
        Open();
        const Content rows = Rows();
        const bool is_undone = Changes().size() == 4;
        EXPECT_EQ(rows, is_undone ? before : after);
        if (is_undone)
            Undo(4);
        else
            UndoLast();
        EXPECT_EQ(Rows(), is_undone ? after : before);
        Close();
        if ((call > 0 && !happened) || HasFailure()) break;
    }
    EXPECT_EQ(before.size(), 40U);
    Open();
}

}  // namespace
}  // namespace history::test
