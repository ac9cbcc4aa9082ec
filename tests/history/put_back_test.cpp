// Putting changes back, one fact each.
#include "history_fixture.h"

#include "jet/tables/automatic_change.h"

namespace history::test {
namespace {

class PutBackTest : public HistoryFixture {};

TEST_F(PutBackTest, ChangedCellsGetWhatTheyHeld) {
    InsertMany(3);
    const Content before = Rows();
    RunNamed(u"Edit", u"UPDATE Games SET Points = ID, Name = 'x', Notes = 'long', Best = TRUE");
    const PutBackResult done = UndoLast();
    EXPECT_EQ(done.rows, 3U);
    EXPECT_TRUE(done.refusals.empty());
    EXPECT_EQ(Rows(), before);
}

TEST_F(PutBackTest, DeletedRowsComeBackWithTheirKeys) {
    InsertMany(300);
    Run(u"UPDATE Games SET Notes = 'a text of ' & ID, Points = NULL WHERE ID > 100");
    const Content before = Rows();
    RunNamed(u"Purge", u"DELETE FROM Games WHERE ID < 250");
    EXPECT_EQ(UndoLast().rows, 249U);
    EXPECT_EQ(Rows(), before);
    // The next automatic number is not affected.
    Run(u"INSERT INTO Games (Name) VALUES ('new')");
    EXPECT_EQ(Rows().count(u"301"), 1U);
}

TEST_F(PutBackTest, InsertedRowsGo) {
    InsertMany(2);
    const Content before = Rows();
    InsertMany(50);
    EXPECT_EQ(UndoLast().rows, 50U);
    EXPECT_EQ(Rows(), before);
}

// Each command in the middle of its rows, and before the first.
TEST_F(PutBackTest, StoppedItLeavesEverythingAsItIs) {
    InsertMany(300);
    for (const char16_t* const sql :
         {u"UPDATE Games SET Points = Points + ID, Name = 'x'", u"DELETE FROM Games WHERE ID < 200",
          u"INSERT INTO Games (Name) SELECT Name FROM Games"}) {
        const Content first = Rows();
        RunNamed(u"Change", sql);
        const Content before = Rows();
        const std::size_t changes = Changes().size();
        for (const bool at_once : {true, false}) {
            std::stop_source stop;
            if (at_once) stop.request_stop();
            std::int64_t total_rows = 0;
            const base::RunSteps steps{[&](std::int64_t, std::int64_t total) {
                                           total_rows = total;
                                           stop.request_stop();
                                       },
                                       stop.get_token()};
            const auto done =
                PutBack(*connection_, *history_, Changes().back().number, u"Undo", {}, steps);
            EXPECT_TRUE(base::IsStopped(done.status())) << done.status().message();
            EXPECT_GE(total_rows, at_once ? 0 : 101);
            EXPECT_EQ(Rows(), before);
            EXPECT_EQ(Changes().size(), changes);
        }
        UndoLast();
        EXPECT_EQ(Rows(), first);
    }
}

TEST_F(PutBackTest, SeveralStatementsAreOneChange) {
    InsertMany(5);
    const Content before = Rows();
    {
        const jet::NamedChange named(*connection_, u"Scan");
        Run(u"INSERT INTO Games (Name) VALUES ('a')");
        Run(u"UPDATE Games SET Points = 5");
        Run(u"UPDATE Games SET Points = 6, Name = 'b' WHERE ID <> 2");
        Run(u"DELETE FROM Games WHERE ID = 3");
        Run(u"UPDATE Games SET Name = 'Game' WHERE ID = 1");
        Run(u"INSERT INTO Games (ID, Name, Points) VALUES (3, 'c', 9)");
        Run(u"INSERT INTO Games (Name) VALUES ('gone')");
        Run(u"DELETE FROM Games WHERE Name = 'gone'");
    }
    const std::vector<Change> changes = Changes();
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[1].label.name, u"Scan");
    EXPECT_EQ(changes[1].rows(), 7U);
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), before);
}

TEST_F(PutBackTest, AnUndoIsUndoneLikeAnyOther) {
    InsertMany(4);
    RunNamed(u"Purge", u"DELETE FROM Games WHERE ID > 1");
    const Content purged = Rows();
    UndoLast();
    const std::vector<Change> changes = Changes();
    EXPECT_EQ(changes.back().label.undoes, changes[1].label.id);
    UndoLast();
    EXPECT_EQ(Rows(), purged);
    const UndoOrder order = OrderOf(Changes());
    EXPECT_EQ(order.undo, (std::vector<std::uint64_t>{1, 4}));
}

TEST_F(PutBackTest, WhatOthersHaveChangedStaysAndIsListed) {
    InsertMany(3);
    RunNamed(u"Edit", u"UPDATE Games SET Points = 7, Name = 'x'");
    const std::uint64_t edit = Changes().back().number;
    Run(u"UPDATE Games SET Name = 'mine' WHERE ID = 1");
    Run(u"DELETE FROM Games WHERE ID = 3");
    const PutBackResult done = Undo(edit);
    EXPECT_EQ(Rows(), (Content{{u"1", {u"mine", u"1", u"", u"False"}},
                               {u"2", {u"Game", u"1", u"", u"False"}}}));
    ASSERT_EQ(done.refusals.size(), 3U);
    EXPECT_EQ(done.refusals[0].reason, u"The row is no longer there.");
    EXPECT_EQ(done.refusals[2],
              (Refusal{u"Games", u"ID 1", u"Name", u"mine", u"Game", u"It was changed since."}));
}

TEST_F(PutBackTest, AKeyThatIsUsedAgainIsRefused) {
    InsertMany(2);
    RunNamed(u"Purge", u"DELETE FROM Games");
    const std::uint64_t purge = Changes().back().number;
    Run(u"INSERT INTO Games (ID, Name) VALUES (2, 'other')");
    const PutBackResult done = Undo(purge);
    EXPECT_EQ(Rows()[u"2"][0], u"other");
    EXPECT_EQ(Rows()[u"1"][0], u"Game");
    ASSERT_EQ(done.refusals.size(), 1U);
    EXPECT_EQ(done.refusals[0].row, u"ID 2");
    EXPECT_FALSE(done.refusals[0].reason.empty());
}

TEST_F(PutBackTest, AnInsertedRowThatWasChangedStays) {
    InsertMany(3);
    const std::uint64_t insert = Changes().back().number;
    Run(u"UPDATE Games SET Points = 9 WHERE ID = 2");
    const PutBackResult done = Undo(insert);
    EXPECT_EQ(Rows().size(), 1U);
    ASSERT_EQ(done.refusals.size(), 1U);
    EXPECT_EQ(done.refusals[0].field, u"Points");
    EXPECT_EQ(done.refusals[0].now, u"9");
}

TEST_F(PutBackTest, AnUndoThatPutsNothingBackIsAnUndo) {
    InsertMany(1);
    RunNamed(u"Edit", u"UPDATE Games SET Points = 7");
    Run(u"UPDATE Games SET Points = 8");
    const std::vector<Change> before = Changes();
    EXPECT_EQ(Undo(before[1].number).refusals.size(), 1U);
    const UndoOrder order = OrderOf(Changes());
    EXPECT_EQ(order.undo, (std::vector<std::uint64_t>{1, 3}));
}

TEST_F(PutBackTest, OneFieldOrOneRowCanBePutBack) {
    InsertMany(2);
    RunNamed(u"Edit", u"UPDATE Games SET Points = 7, Name = 'x'");
    const std::uint64_t edit = Changes().back().number;
    Undo(edit, {.row = 1, .column = 2});
    EXPECT_EQ(Rows()[u"2"], (std::vector<std::u16string>{u"x", u"1", u"", u"False"}));
    EXPECT_EQ(Rows()[u"1"], (std::vector<std::u16string>{u"x", u"7", u"", u"False"}));
    EXPECT_EQ(Changes().back().label.undoes, 0U);
    Undo(edit, {.row = 1, .column = {}});
    EXPECT_EQ(Rows()[u"2"], (std::vector<std::u16string>{u"Game", u"1", u"", u"False"}));
}

TEST_F(PutBackTest, KeysThatChangedGoBack) {
    InsertMany(3);
    const Content before = Rows();
    RunNamed(u"Edit", u"UPDATE Games SET ID = ID + 10, Name = 'moved'");
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), before);
}

TEST_F(PutBackTest, NamesThatHaveChangedPlacesGoBack) {
    Run(u"CREATE UNIQUE INDEX ByName ON Games (Name)");
    Run(u"INSERT INTO Games (Name) VALUES ('a')");
    Run(u"INSERT INTO Games (Name) VALUES ('b')");
    const Content before = Rows();
    {
        const jet::NamedChange named(*connection_, u"Edit");
        Run(u"DELETE FROM Games WHERE ID = 1");
        Run(u"INSERT INTO Games (Name) VALUES ('a')");
        Run(u"UPDATE Games SET Name = 'c' WHERE ID = 2");
        Run(u"INSERT INTO Games (Name) VALUES ('b')");
    }
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), before);
}

TEST_F(PutBackTest, WhatAUniqueIndexRefusesIsListed) {
    InsertMany(2);
    Run(u"UPDATE Games SET Name = 'n' & ID");
    Run(u"CREATE UNIQUE INDEX ByName ON Games (Name)");
    RunNamed(u"Edit", u"UPDATE Games SET Name = 'x' & ID");
    const std::uint64_t edit = Changes().back().number;
    Run(u"INSERT INTO Games (Name) VALUES ('n1')");
    const PutBackResult done = Undo(edit);
    EXPECT_EQ(Rows()[u"1"][0], u"x1");
    EXPECT_EQ(Rows()[u"2"][0], u"n2");
    ASSERT_EQ(done.refusals.size(), 1U);
    EXPECT_EQ(done.refusals[0].row, u"ID 1");
}

class RelatedRowsTest : public PutBackTest {
protected:
    void SetUp() override {
        PutBackTest::SetUp();
        Run(u"CREATE TABLE Scores (ID COUNTER PRIMARY KEY, Game LONG, CONSTRAINT OfGame FOREIGN "
            u"KEY (Game) "
            u"REFERENCES Games (ID) ON UPDATE CASCADE ON DELETE CASCADE)");
        InsertMany(3);
        Run(u"INSERT INTO Scores (Game) VALUES (1)");
        Run(u"INSERT INTO Scores (Game) VALUES (2)");
        Run(u"INSERT INTO Scores (Game) VALUES (2)");
    }
};

TEST_F(RelatedRowsTest, CascadesOfADeletionComeBack) {
    const Content games = Rows();
    const Content scores = Rows(u"Scores");
    RunNamed(u"Purge", u"DELETE FROM Games WHERE ID < 3");
    EXPECT_TRUE(Rows(u"Scores").empty());
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), games);
    EXPECT_EQ(Rows(u"Scores"), scores);
}

TEST_F(RelatedRowsTest, RowsDeletedBeforeTheirParentComeBack) {
    const Content scores = Rows(u"Scores");
    {
        const jet::NamedChange named(*connection_, u"Purge");
        Run(u"DELETE FROM Scores");
        Run(u"DELETE FROM Games");
    }
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(u"Scores"), scores);
    EXPECT_EQ(Rows().size(), 3U);
}

TEST_F(RelatedRowsTest, CascadesOfANewKeyGoBack) {
    const Content games = Rows();
    const Content scores = Rows(u"Scores");
    RunNamed(u"Edit", u"UPDATE Games SET ID = 20 WHERE ID = 2");
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), games);
    EXPECT_EQ(Rows(u"Scores"), scores);
}

TEST_F(RelatedRowsTest, RowsOfOthersAreNotDraggedAlong) {
    RunNamed(u"New", u"INSERT INTO Games (ID, Name) VALUES (9, 'new')");
    const std::uint64_t insert = Changes().back().number;
    Run(u"INSERT INTO Scores (Game) VALUES (9)");
    const Content scores = Rows(u"Scores");
    EXPECT_EQ(Undo(insert).refusals.size(), 1U);
    EXPECT_EQ(Rows(u"Scores"), scores);
    EXPECT_EQ(Rows().count(u"9"), 1U);
    RunNamed(u"Edit", u"UPDATE Games SET ID = 30 WHERE ID = 3");
    const std::uint64_t edit = Changes().back().number;
    Run(u"INSERT INTO Scores (Game) VALUES (30)");
    const Content more = Rows(u"Scores");
    EXPECT_EQ(Undo(edit).refusals.size(), 1U);
    EXPECT_EQ(Rows(u"Scores"), more);
}

TEST_F(RelatedRowsTest, InsertedRowsGoBeforeTheirParent) {
    const Content games = Rows();
    const Content scores = Rows(u"Scores");
    {
        const jet::NamedChange named(*connection_, u"New");
        Run(u"INSERT INTO Games (ID, Name) VALUES (9, 'new')");
        Run(u"INSERT INTO Scores (Game) VALUES (9)");
        Run(u"UPDATE Scores SET Game = 9 WHERE ID = 1");
    }
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), games);
    EXPECT_EQ(Rows(u"Scores"), scores);
}

TEST_F(PutBackTest, WithoutAKeyRowsAreFoundByAllTheyHold) {
    Run(u"CREATE TABLE Words (Word TEXT(20), Times LONG)");
    for (const auto* row : {u"'a', 1", u"'b', 1", u"'c', 1", u"'c', 1"})
        Run(u"INSERT INTO Words VALUES (" + std::u16string(row) + u")");
    RunNamed(u"Edit", u"UPDATE Words SET Times = 2 WHERE Word <> 'b'");
    RunNamed(u"Edit", u"UPDATE Words SET Times = 3 WHERE Word = 'a'");
    RunNamed(u"Purge", u"DELETE FROM Words WHERE Word = 'b'");
    const std::vector<Change> changes = Changes();
    const std::size_t last = changes.size() - 1;
    Undo(changes[last].number);
    EXPECT_EQ(Rows(u"Words").count(u"b"), 1U);
    EXPECT_EQ(Undo(changes[last - 2].number).refusals.size(), 1U);  // 'a' has changed since
    EXPECT_EQ(Rows(u"Words")[u"c"], (std::vector<std::u16string>{u"1"}));
    EXPECT_EQ(Rows(u"Words")[u"a"], (std::vector<std::u16string>{u"3"}));
}

TEST_F(PutBackTest, ColumnsThatAreGoneAreListed) {
    InsertMany(2);
    RunNamed(u"Edit", u"UPDATE Games SET Points = 7, Name = 'x'");
    const std::uint64_t edit = Changes().back().number;
    RunNamed(u"Purge", u"DELETE FROM Games WHERE ID = 2");
    const std::uint64_t purge = Changes().back().number;
    Run(u"ALTER TABLE Games DROP COLUMN Points");
    EXPECT_TRUE(Undo(purge).refusals.empty());
    const PutBackResult done = Undo(edit);
    EXPECT_EQ(Rows()[u"1"][0], u"Game");
    EXPECT_EQ(Rows()[u"2"][0], u"Game");
    ASSERT_EQ(done.refusals.size(), 2U);
    EXPECT_EQ(done.refusals[0].field, u"Points");
    Run(u"DROP TABLE Games");
    EXPECT_EQ(Undo(purge).refusals.size(), 1U);
}

TEST_F(PutBackTest, AChangeThatIsNotThereIsNotFound) {
    InsertMany(1);
    EXPECT_EQ(PutBack(*connection_, *history_, 99, u"Undo").status().code(),
              base::StatusCode::kNotFound);
}

// As the start of the program dates new rows: undone with what it follows, never by itself.
TEST_F(PutBackTest, WhatTheProgramDoesByItselfBelongsToTheChangeBefore) {
    InsertMany(1);
    const Content before = Rows();
    InsertMany(3);
    const auto stamp = [this] {
        const jet::NamedChange named(*connection_, u"Stamp", jet::kAutomaticChange);
        Run(u"UPDATE Games SET Notes = 'stamped' WHERE Notes IS NULL AND ID > 1");
    };
    stamp();
    const Content after = Rows();
    ASSERT_EQ(Changes().size(), 2U);
    EXPECT_EQ(Changes().back().rows(), 3U);
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), before);
    stamp();
    EXPECT_EQ(OrderOf(Changes()).redo.size(), 1U);
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), after);
    Reopen();
    EXPECT_EQ(Changes().size(), 4U);
}

TEST_F(PutBackTest, HistorySurvivesARestart) {
    InsertMany(4);
    const Content before = Rows();
    RunNamed(u"Purge", u"DELETE FROM Games");
    Reopen();
    EXPECT_TRUE(UndoLast().refusals.empty());
    EXPECT_EQ(Rows(), before);
}

}  // namespace
}  // namespace history::test
