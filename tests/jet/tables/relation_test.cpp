// Relations made by SQL and what they keep, in new files and in files of the older version.
#include "base/unicode.h"
#include "jet/connection.h"
#include "jet/tables/storage_support.h"
#include "jet/values/conversions.h"
#include "platform/file_system.h"
#include "support/check_database.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

class RelationTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        const base::Status created = CreateDatabaseFile(*files_, path_, 45000.5, GetParam());
        ASSERT_TRUE(created.ok()) << created.message();
        Open();
    }
    void TearDown() override {
        if (!connection_.is_open()) return;
        ASSERT_TRUE(connection_.Close().ok());
        EXPECT_TRUE(test_support::DatabaseIsSound(path_));
    }

    void Open() {
        const base::Status opened =
            connection_.Open(u"Data Source=" + base::ToUtf16(path_.string()));
        ASSERT_TRUE(opened.ok()) << opened.message();
    }
    void Reopen() {
        ASSERT_TRUE(connection_.Close().ok());
        Open();
    }

    // Rows with "|" between them, fields with ","; or the number of rows touched; or the error.
    std::string Run(std::u16string_view sql) {
        std::int64_t affected = 0;
        auto rows = connection_.Execute(sql, &affected);
        if (!rows.ok()) return "#" + std::to_string(rows.status().number());
        if (!rows->is_open()) return std::to_string(affected);
        std::string text;
        for (; !rows->Eof(); static_cast<void>(rows->MoveNext())) {
            if (!text.empty()) text += "|";
            for (std::size_t i = 0; i < rows->FieldCount(); ++i) {
                const auto value = rows->Fields(i);
                text += i > 0 ? "," : "";
                text += !value.ok()        ? "<error>"
                        : value->is_null() ? "-"
                                           : base::ToUtf8(ToText(*value));
            }
        }
        return text;
    }
    void Do(std::u16string_view sql) {
        const auto done = connection_.Execute(sql);
        ASSERT_TRUE(done.ok()) << base::ToUtf8(sql) << ": " << done.status().message();
    }

    // Makers 1 to 3; games 10, 11 of maker 1, 12 of maker 2, 13 of none.
    void MakeGames(std::u16string_view rules) {
        Do(u"CREATE TABLE Makers (ID LONG CONSTRAINT PrimaryKey PRIMARY KEY, Name TEXT(40))");
        Do(u"CREATE TABLE Games (ID LONG PRIMARY KEY, Maker LONG, Title TEXT(60), "
           u"CONSTRAINT MakersGames FOREIGN KEY (Maker) REFERENCES Makers (ID) " +
           std::u16string(rules) + u")");
        for (const char16_t* row : {u"1, 'Bally'", u"2, 'Gottlieb'", u"3, 'Stern'"})
            Do(u"INSERT INTO Makers (ID, Name) VALUES (" + std::u16string(row) + u")");
        for (const char16_t* row :
             {u"10, 1, 'Fathom'", u"11, 1, 'Xenon'", u"12, 2, 'Haunted House'", u"13, NULL, 'Own'"})
            Do(u"INSERT INTO Games (ID, Maker, Title) VALUES (" + std::u16string(row) + u")");
    }
    std::string Games() { return Run(u"SELECT ID, Maker FROM Games ORDER BY ID"); }
    std::string Makers() { return Run(u"SELECT ID FROM Makers ORDER BY ID"); }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_.path() / "related.mdb";
    std::unique_ptr<FileSystem> files_ = platform::MakeFileSystem();
    Connection connection_{*files_};
};

TEST_P(RelationTest, RowWithoutTheRowItRefersToIsRefused) {
    MakeGames(u"");
    EXPECT_EQ(Run(u"INSERT INTO Games (ID, Maker) VALUES (14, 9)"), "#3201");
    EXPECT_EQ(Run(u"UPDATE Games SET Maker = 9 WHERE ID = 12"), "#3201");
    EXPECT_EQ(Run(u"UPDATE Games SET Maker = 3 WHERE ID = 12"), "1");
    EXPECT_EQ(Run(u"UPDATE Games SET Maker = NULL WHERE ID = 10"), "1");
    Reopen();
    EXPECT_EQ(Run(u"INSERT INTO Games (ID, Maker) VALUES (14, 9)"), "#3201");
    EXPECT_EQ(Games(), "10,-|11,1|12,3|13,-");
}

TEST_P(RelationTest, RowThatIsReferredToStays) {
    MakeGames(u"");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 1"), "#3200");
    EXPECT_EQ(Run(u"UPDATE Makers SET ID = 7 WHERE ID = 1"), "#3200");
    EXPECT_EQ(Run(u"UPDATE Makers SET Name = 'Midway' WHERE ID = 1"), "1");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 3"), "1");
    EXPECT_EQ(Run(u"DELETE FROM Makers"), "#3200");
    EXPECT_EQ(Makers(), "1|2");
}

TEST_P(RelationTest, DeleteIsPassedOn) {
    MakeGames(u"ON DELETE CASCADE");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 1"), "1");
    EXPECT_EQ(Games(), "12,2|13,-");
    EXPECT_EQ(Run(u"UPDATE Makers SET ID = 7 WHERE ID = 2"), "#3200");
}

TEST_P(RelationTest, ChangeOfAKeyIsPassedOn) {
    MakeGames(u"ON UPDATE CASCADE");
    EXPECT_EQ(Run(u"UPDATE Makers SET ID = 7 WHERE ID = 1"), "1");
    EXPECT_EQ(Games(), "10,7|11,7|12,2|13,-");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 7"), "#3200");
}

TEST_P(RelationTest, DeleteClearsTheReference) {
    MakeGames(u"ON UPDATE CASCADE ON DELETE SET NULL");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 1"), "1");
    EXPECT_EQ(Games(), "10,-|11,-|12,2|13,-");
    EXPECT_EQ(Run(u"UPDATE Makers SET ID = 8 WHERE ID = 2"), "1");
    EXPECT_EQ(Games(), "10,-|11,-|12,8|13,-");
}

TEST_P(RelationTest, ReferenceThatIsRequiredIsNotCleared) {
    Do(u"CREATE TABLE Makers (ID LONG PRIMARY KEY)");
    Do(u"CREATE TABLE Games (ID LONG PRIMARY KEY, Maker LONG NOT NULL "
       u"REFERENCES Makers ON DELETE SET NULL)");
    Do(u"INSERT INTO Makers (ID) VALUES (1)");
    Do(u"INSERT INTO Games (ID, Maker) VALUES (10, 1)");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 1"), "#3314");
    EXPECT_EQ(Makers(), "1");
    EXPECT_EQ(Games(), "10,1");
}

TEST_P(RelationTest, CascadesGoOnFromTableToTable) {
    MakeGames(u"ON UPDATE CASCADE ON DELETE CASCADE");
    Do(u"CREATE TABLE Scores (Game LONG, Place SHORT, Points LONG, "
       u"CONSTRAINT PrimaryKey PRIMARY KEY (Game, Place), "
       u"CONSTRAINT GamesScores FOREIGN KEY (Game) REFERENCES Games ON UPDATE CASCADE "
       u"ON DELETE CASCADE)");
    for (const char16_t* row : {u"10, 1, 500", u"10, 2, 400", u"12, 1, 900"})
        Do(u"INSERT INTO Scores (Game, Place, Points) VALUES (" + std::u16string(row) + u")");
    const auto scores = [&] { return Run(u"SELECT Game, Place FROM Scores ORDER BY Game, Place"); };
    EXPECT_EQ(Run(u"UPDATE Games SET ID = 20 WHERE ID = 10"), "1");
    EXPECT_EQ(scores(), "12,1|20,1|20,2");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 1"), "1");
    EXPECT_EQ(scores(), "12,1");
    EXPECT_EQ(Games(), "12,2|13,-");
}

TEST_P(RelationTest, CascadeThatIsRefusedFurtherDownChangesNothing) {
    MakeGames(u"ON DELETE CASCADE");
    Do(u"CREATE TABLE Scores (Game LONG REFERENCES Games (ID), Points LONG)");
    Do(u"INSERT INTO Scores (Game, Points) VALUES (11, 500)");
    EXPECT_EQ(Run(u"DELETE FROM Makers WHERE ID = 1"), "#3200");
    EXPECT_EQ(Makers(), "1|2|3");
    EXPECT_EQ(Games(), "10,1|11,1|12,2|13,-");
}

TEST_P(RelationTest, RowMayReferToItself) {
    Do(u"CREATE TABLE People (ID LONG PRIMARY KEY, Boss LONG, "
       u"CONSTRAINT Bosses FOREIGN KEY (Boss) REFERENCES People (ID))");
    const auto people = [&] { return Run(u"SELECT ID, Boss FROM People ORDER BY ID"); };
    EXPECT_EQ(Run(u"INSERT INTO People (ID, Boss) VALUES (1, 1)"), "1");
    EXPECT_EQ(Run(u"INSERT INTO People (ID, Boss) VALUES (2, 3)"), "#3201");
    EXPECT_EQ(Run(u"INSERT INTO People (ID, Boss) VALUES (2, 1)"), "1");
    EXPECT_EQ(Run(u"DELETE FROM People WHERE ID = 1"), "#3200");
    EXPECT_EQ(Run(u"DELETE FROM People WHERE ID = 2"), "1");
    EXPECT_EQ(Run(u"UPDATE People SET ID = 5 WHERE ID = 1"), "#3200");
    EXPECT_EQ(Run(u"UPDATE People SET ID = 5, Boss = 1 WHERE ID = 1"), "#3201");
    EXPECT_EQ(Run(u"UPDATE People SET ID = 5, Boss = 5 WHERE ID = 1"), "1");
    EXPECT_EQ(people(), "5,5");
    EXPECT_EQ(Run(u"DELETE FROM People WHERE ID = 5"), "1");
    EXPECT_EQ(people(), "");
}

TEST_P(RelationTest, RowThatRefersToItselfFollowsItsKey) {
    Do(u"CREATE TABLE People (ID LONG PRIMARY KEY, Boss LONG REFERENCES People (ID) "
       u"ON UPDATE CASCADE ON DELETE CASCADE)");
    const auto people = [&] { return Run(u"SELECT ID, Boss FROM People ORDER BY ID"); };
    for (const char16_t* row : {u"1, 1", u"2, 1", u"3, 2"})
        Do(u"INSERT INTO People (ID, Boss) VALUES (" + std::u16string(row) + u")");
    EXPECT_EQ(Run(u"UPDATE People SET ID = 5 WHERE ID = 1"), "1");
    EXPECT_EQ(people(), "2,5|3,2|5,5");
    EXPECT_EQ(Run(u"UPDATE People SET ID = 6, Boss = NULL WHERE ID = 5"), "1");
    EXPECT_EQ(people(), "2,6|3,2|6,-");
    EXPECT_EQ(Run(u"DELETE FROM People WHERE ID = 6"), "1");
    EXPECT_EQ(people(), "");
}

TEST_P(RelationTest, CircleOfReferencesGoesAsAWhole) {
    Do(u"CREATE TABLE People (ID LONG PRIMARY KEY, Boss LONG REFERENCES People ON DELETE CASCADE)");
    for (const char16_t* row : {u"1, NULL", u"2, 1", u"3, 2"})
        Do(u"INSERT INTO People (ID, Boss) VALUES (" + std::u16string(row) + u")");
    Do(u"UPDATE People SET Boss = 3 WHERE ID = 1");
    EXPECT_EQ(Run(u"DELETE FROM People WHERE ID = 2"), "1");
    EXPECT_EQ(Run(u"SELECT ID FROM People"), "");
}

TEST_P(RelationTest, RowsThatACascadeHasTakenAreGone) {
    Do(u"CREATE TABLE People (ID LONG PRIMARY KEY, Boss LONG REFERENCES People ON DELETE CASCADE)");
    for (const std::u16string_view row : {u"1, Null", u"2, 1", u"3, 2", u"4, Null"})
        Do(u"INSERT INTO People (ID, Boss) VALUES (" + std::u16string(row) + u")");
    EXPECT_EQ(Run(u"DELETE FROM People WHERE ID < 4"), "3");
    EXPECT_EQ(Run(u"SELECT ID FROM People"), "4");
}

TEST_P(RelationTest, RowsThatACascadeHasTakenAreGoneInAJoin) {
    Do(u"CREATE TABLE People (ID LONG PRIMARY KEY, Boss LONG REFERENCES People ON DELETE CASCADE)");
    for (const std::u16string_view row : {u"1, 1", u"2, 1", u"3, 2", u"4, Null"})
        Do(u"INSERT INTO People (ID, Boss) VALUES (" + std::u16string(row) + u")");
    EXPECT_EQ(Run(u"DELETE P.* FROM People AS P INNER JOIN People AS B ON P.Boss = B.ID"), "3");
    EXPECT_EQ(Run(u"SELECT ID FROM People"), "4");
}

TEST_P(RelationTest, TablesMayCascadeIntoEachOther) {
    Do(u"CREATE TABLE Left1 (ID LONG PRIMARY KEY, Other LONG)");
    Do(u"CREATE TABLE Right1 (ID LONG PRIMARY KEY, Other LONG REFERENCES Left1 ON DELETE CASCADE)");
    Do(u"ALTER TABLE Left1 ADD CONSTRAINT Back FOREIGN KEY (Other) REFERENCES Right1 ON DELETE "
       u"CASCADE");
    Do(u"INSERT INTO Left1 (ID) VALUES (1)");
    Do(u"INSERT INTO Right1 (ID, Other) VALUES (1, 1)");
    Do(u"INSERT INTO Left1 (ID, Other) VALUES (2, 1)");
    Do(u"INSERT INTO Right1 (ID, Other) VALUES (2, 2)");
    Do(u"INSERT INTO Left1 (ID, Other) VALUES (3, 2)");
    EXPECT_EQ(Run(u"DELETE FROM Left1"), "3");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Left1"), "0");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Right1"), "0");
}

TEST_P(RelationTest, ReferencesThatACascadeClearedStayClear) {
    Do(u"CREATE TABLE People (ID LONG PRIMARY KEY, Boss LONG REFERENCES People ON DELETE SET "
       u"NULL)");
    for (const std::u16string_view row : {u"1, Null", u"2, 1", u"3, 2"})
        Do(u"INSERT INTO People (ID, Boss) VALUES (" + std::u16string(row) + u")");
    EXPECT_EQ(Run(u"DELETE FROM People WHERE ID < 3"), "2");
    EXPECT_EQ(Run(u"SELECT ID, Boss FROM People"), "3,-");
}

TEST_P(RelationTest, ValuesComputedBeforeDoNotUndoACascade) {
    Do(u"CREATE TABLE People (ID LONG PRIMARY KEY, Boss LONG REFERENCES People ON UPDATE CASCADE)");
    for (const std::u16string_view row : {u"1, Null", u"2, 1", u"3, 1"})
        Do(u"INSERT INTO People (ID, Boss) VALUES (" + std::u16string(row) + u")");
    EXPECT_EQ(Run(u"UPDATE People AS B INNER JOIN People AS P ON P.Boss = B.ID "
                  u"SET B.ID = B.ID + 10, P.Boss = B.ID"),
              "2");
    EXPECT_EQ(Run(u"SELECT ID, Boss FROM People ORDER BY ID"), "2,11|3,11|11,-");
    // Another value is meant, whatever the cascade has brought.
    EXPECT_EQ(Run(u"UPDATE People AS B INNER JOIN People AS P ON P.Boss = B.ID "
                  u"SET B.ID = B.ID + 10, P.Boss = P.ID"),
              "2");
    EXPECT_EQ(Run(u"SELECT ID, Boss FROM People ORDER BY ID"), "2,2|3,3|21,-");
}

TEST_P(RelationTest, LastOfSeveralNewValuesStays) {
    Do(u"CREATE TABLE Makers (ID LONG PRIMARY KEY, Name TEXT(20))");
    Do(u"CREATE TABLE Games (Maker LONG, Title TEXT(20))");
    Do(u"INSERT INTO Makers (ID, Name) VALUES (1, 'b')");
    for (const std::u16string_view title : {u"a", u"b"})
        Do(u"INSERT INTO Games (Maker, Title) VALUES (1, '" + std::u16string(title) + u"')");
    EXPECT_EQ(Run(u"UPDATE Makers INNER JOIN Games ON Maker = ID SET Name = Title"), "2");
    EXPECT_EQ(Run(u"SELECT Name FROM Makers"), "b");
}

TEST_P(RelationTest, KeysOfTwoColumnsGoTogether) {
    Do(u"CREATE TABLE Makers (City TEXT(20), No SHORT, "
       u"CONSTRAINT PrimaryKey PRIMARY KEY (City, No))");
    Do(u"INSERT INTO Makers (City, No) VALUES ('Chicago', 1)");
    // Named in the other order than the key has them.
    Do(u"CREATE TABLE Games (ID LONG, N SHORT, C TEXT(20), CONSTRAINT MakersGames "
       u"FOREIGN KEY (N, C) REFERENCES Makers (No, City) ON UPDATE CASCADE)");
    EXPECT_EQ(Run(u"INSERT INTO Games (ID, C, N) VALUES (1, 'CHICAGO', 1)"), "1");
    EXPECT_EQ(Run(u"INSERT INTO Games (ID, C, N) VALUES (2, 'Chicago', 2)"), "#3201");
    EXPECT_EQ(Run(u"INSERT INTO Games (ID, C, N) VALUES (3, 'Chicago', NULL)"), "1");
    EXPECT_EQ(Run(u"INSERT INTO Games (ID, C, N) VALUES (4, NULL, 9)"), "1");
    EXPECT_EQ(Run(u"UPDATE Makers SET No = 5"), "1");
    EXPECT_EQ(Run(u"SELECT ID, C, N FROM Games ORDER BY ID"), "1,Chicago,5|3,Chicago,-|4,-,9");
}

TEST_P(RelationTest, AnotherSpellingOfAKeyLeavesRowsRelated) {
    Do(u"CREATE TABLE Makers (Name TEXT(20) PRIMARY KEY)");
    Do(u"INSERT INTO Makers (Name) VALUES ('bally')");
    Do(u"CREATE TABLE Games (Title TEXT(20), Maker TEXT(10) REFERENCES Makers (Name))");
    Do(u"INSERT INTO Games (Title, Maker) VALUES ('Fathom', 'BALLY')");
    EXPECT_EQ(Run(u"UPDATE Makers SET Name = 'Bally'"), "1");
    EXPECT_EQ(Run(u"UPDATE Makers SET Name = 'Midway'"), "#3200");
    EXPECT_EQ(Run(u"SELECT Maker FROM Games"), "BALLY");
}

TEST_P(RelationTest, CascadeKeepsTheRulesOfTheReferringColumn) {
    Do(u"CREATE TABLE Makers (Name TEXT(20) PRIMARY KEY)");
    Do(u"INSERT INTO Makers (Name) VALUES ('bally')");
    Do(u"CREATE TABLE Games (Maker TEXT(10) REFERENCES Makers (Name) ON UPDATE CASCADE)");
    Do(u"INSERT INTO Games (Maker) VALUES ('BALLY')");
    EXPECT_EQ(Run(u"UPDATE Makers SET Name = 'A name too long for it'"), "#3163");
    EXPECT_EQ(Run(u"UPDATE Makers SET Name = 'Long for the other'"), "#3163");
    EXPECT_EQ(Run(u"UPDATE Makers SET Name = 'Bally'"), "1");
    EXPECT_EQ(Run(u"SELECT Maker FROM Games"), "Bally");
}

TEST_P(RelationTest, RowsThatReferToNothingForbidARelation) {
    MakeGames(u"");
    Do(u"ALTER TABLE Games DROP CONSTRAINT MakersGames");
    Do(u"INSERT INTO Games (ID, Maker) VALUES (14, 9)");
    EXPECT_EQ(Run(u"ALTER TABLE Games ADD CONSTRAINT Again FOREIGN KEY (Maker) REFERENCES Makers"),
              "#3201");
    Do(u"DELETE FROM Games WHERE ID = 14");
    Do(u"ALTER TABLE Games ADD CONSTRAINT Again FOREIGN KEY (Maker) REFERENCES Makers");
    EXPECT_EQ(Run(u"INSERT INTO Games (ID, Maker) VALUES (14, 9)"), "#3201");
}

TEST_P(RelationTest, RelationThatMakesNoSenseIsRefused) {
    MakeGames(u"");
    const std::u16string add = u"ALTER TABLE Games ADD CONSTRAINT New FOREIGN KEY ";
    EXPECT_EQ(Run(add + u"(Maker) REFERENCES Makers (Name)"), "#3368");
    EXPECT_EQ(Run(add + u"(Title) REFERENCES Makers (Name)"), "#3366");
    EXPECT_EQ(Run(add + u"(Maker, Title) REFERENCES Makers (ID)"), "#3368");
    EXPECT_EQ(Run(add + u"(Made) REFERENCES Makers (ID)"), "#3381");
    EXPECT_EQ(Run(add + u"(Maker) REFERENCES Nobody (ID)"), "#3078");
    EXPECT_EQ(Run(add + u"(Maker) REFERENCES Makers (ID) ON UPDATE SET NULL"), "#3292");
    EXPECT_EQ(Run(u"ALTER TABLE Games ADD CONSTRAINT MakersGames FOREIGN KEY (ID) "
                  u"REFERENCES Makers (ID)"),
              "#3012");
    EXPECT_EQ(Run(u"CREATE TABLE More (ID LONG REFERENCES Nobody)"), "#3078");
    EXPECT_EQ(Run(u"SELECT * FROM More"), "#3078");
}

TEST_P(RelationTest, TableInARelationIsNotDropped) {
    MakeGames(u"");
    EXPECT_EQ(Run(u"DROP TABLE Makers"), "#3281");
    EXPECT_EQ(Run(u"DROP TABLE Games"), "#3281");
    EXPECT_EQ(Run(u"DROP INDEX PrimaryKey ON Makers"), "#3281");
    EXPECT_EQ(Run(u"DROP INDEX MakersGames ON Games"), "#3281");
    EXPECT_EQ(Run(u"ALTER TABLE Games DROP COLUMN Maker"), "#3280");
    EXPECT_EQ(Run(u"ALTER TABLE Makers DROP CONSTRAINT MakersGames"), "#3372");
    Do(u"ALTER TABLE Games DROP CONSTRAINT MakersGames");
    Do(u"INSERT INTO Games (ID, Maker) VALUES (14, 9)");
    Do(u"DROP TABLE Makers");
    Do(u"ALTER TABLE Games DROP COLUMN Maker");
    Do(u"DROP TABLE Games");
}

TEST_P(RelationTest, RelationsWithoutANameGetOneEach) {
    Do(u"CREATE TABLE Makers (ID LONG PRIMARY KEY)");
    Do(u"CREATE TABLE Games (Maker LONG REFERENCES Makers, Seller LONG REFERENCES Makers (ID))");
    EXPECT_EQ(Run(u"INSERT INTO Games (Maker) VALUES (1)"), "#3201");
    EXPECT_EQ(Run(u"INSERT INTO Games (Seller) VALUES (1)"), "#3201");
    Do(u"ALTER TABLE Games DROP CONSTRAINT MakersGames, MakersGames1");
    EXPECT_EQ(Run(u"INSERT INTO Games (Maker, Seller) VALUES (1, 2)"), "1");
}

TEST_P(RelationTest, OtherProgramsReadTheRelation) {
    ASSERT_TRUE(HasTool("mdb-export")) << "mdbtools are not installed";
    MakeGames(u"ON UPDATE CASCADE ON DELETE CASCADE");
    ASSERT_TRUE(connection_.Flush().ok());
    const auto rows = ExportedRows(path_, "MSysRelationships");
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->size(), 1U);
    const TextRow expected = {"MakersGames", "4352", "1", "0", "Games", "Maker", "Makers", "ID"};
    EXPECT_EQ((*rows)[0], expected);
    bool listed = false;
    const auto objects = ExportedRows(path_, "MSysObjects");
    ASSERT_TRUE(objects);
    for (const TextRow& object : *objects)
        if (object[2] == "MakersGames") {
            EXPECT_EQ(object[1], "251658243");
            EXPECT_EQ(object[3], "8");
            EXPECT_LT(std::stoll(object[0].value_or("0")), 0);
            listed = true;
        }
    EXPECT_TRUE(listed);
}

INSTANTIATE_TEST_SUITE_P(Versions, RelationTest, testing::Values(4, 3), [](const auto& version) {
    return version.param == 4 ? std::string("NewFile") : std::string("OlderFile");
});

}  // namespace
}  // namespace jet::test
