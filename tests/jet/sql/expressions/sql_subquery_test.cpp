// Subqueries, SELECT INTO, and changes over joined tables.
#include "jet/sql/sql_fixture.h"

namespace {

using test_support::SqlFixture;

class Subqueries : public SqlFixture {
protected:
    void SetUp() override {
        Run(u"CREATE TABLE Maker (Id LONG PRIMARY KEY, Name TEXT(30), Country TEXT(20))");
        Run(u"CREATE TABLE Game (Id COUNTER PRIMARY KEY, Title TEXT(30), MakerId LONG, [Year] "
            u"LONG, "
            u"Price MONEY)");
        for (const std::u16string_view row :
             {u"1, 'Bally', 'US'", u"2, 'Zaccaria', 'IT'", u"3, 'Nobody', Null"})
            Run(u"INSERT INTO Maker VALUES (" + std::u16string(row) + u")");
        for (const std::u16string_view row :
             {u"'Fathom', 1, 1981, 10", u"'Xenon', 1, 1980, 20", u"'Farfalla', 2, 1983, 5",
              u"'Orphan', Null, 1990, Null"})
            Run(u"INSERT INTO Game (Title, MakerId, [Year], Price) VALUES (" + std::u16string(row) +
                u")");
    }
};

TEST_F(Subqueries, OfOneValueStandForIt) {
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE [Year] = (SELECT Max([Year]) FROM Game)"),
              "Orphan");
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE Price > (SELECT Avg(Price) FROM Game)"), "Xenon");
    EXPECT_EQ(Run(u"SELECT (SELECT Name FROM Maker WHERE Id = 2) & '!'"), "Zaccaria!");
    EXPECT_EQ(Run(u"SELECT (SELECT Name FROM Maker WHERE Id = 99)"), "<null>");
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE Id = (SELECT Min(Id) FROM Game) + 1"), "Xenon");
    EXPECT_EQ(ErrorOf(u"SELECT (SELECT Name FROM Maker)"), 3354);
    EXPECT_EQ(ErrorOf(u"SELECT (SELECT Id, Name FROM Maker)"), 3306);
    EXPECT_EQ(ErrorOf(u"SELECT Title FROM Game WHERE Id In (SELECT * FROM Maker)"), 3306);
}

TEST_F(Subqueries, InAListOfRows) {
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE MakerId In (SELECT Id FROM Maker WHERE Country = "
                  u"'us')"),
              "Fathom|Xenon");
    EXPECT_EQ(
        Run(u"SELECT Name FROM Maker WHERE Id Not In (SELECT MakerId FROM Game WHERE MakerId Is "
            u"Not Null)"),
        "Nobody");
    // A Null in the list leaves every denial open.
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE Id Not In (SELECT MakerId FROM Game)"), "");
    EXPECT_EQ(
        Run(u"SELECT Title FROM Game WHERE MakerId Not In (SELECT Id FROM Maker WHERE Id > 99)"),
        "Fathom|Xenon|Farfalla|Orphan");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE Name In (SELECT UCase(Name) FROM Maker)"),
              "Bally|Zaccaria|Nobody");
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE Price In (SELECT 5 UNION SELECT 20)"),
              "Xenon|Farfalla");
    EXPECT_EQ(ErrorOf(u"SELECT Title FROM Game WHERE Id In (SELECT Title FROM Game)"), 3464);
}

TEST_F(Subqueries, ExistsAsksForRows) {
    EXPECT_EQ(
        Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT * FROM Game WHERE MakerId = Maker.Id)"),
        "Bally|Zaccaria");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE Not Exists (SELECT 1 FROM Game WHERE MakerId = "
                  u"Maker.Id And [Year] > 1982)"),
              "Bally|Nobody");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Maker WHERE EXISTS (SELECT * FROM Game)"), "3");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Maker WHERE EXISTS (SELECT TOP 0 Id FROM Game)"), "0");
    // Without a group there is always one row.
    EXPECT_EQ(
        Run(u"SELECT Count(*) FROM Maker WHERE EXISTS (SELECT Max(Id) FROM Game WHERE Id > 99)"),
        "3");
}

TEST_F(Subqueries, AreComparedWithAnyAndAll) {
    EXPECT_EQ(
        Run(u"SELECT Title FROM Game WHERE [Year] > ALL (SELECT [Year] FROM Game WHERE MakerId = "
            u"1)"),
        "Farfalla|Orphan");
    EXPECT_EQ(
        Run(u"SELECT Title FROM Game WHERE [Year] < ANY (SELECT [Year] FROM Game WHERE MakerId = "
            u"1)"),
        "Xenon");
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE [Year] = SOME (SELECT 1980 FROM Maker)"), "Xenon");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Game WHERE Id > ALL (SELECT Id FROM Maker WHERE Id > 9)"),
              "4");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Game WHERE Id > ANY (SELECT Id FROM Maker WHERE Id > 9)"),
              "0");
    // The Null among the prices decides nothing by itself.
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE Price >= ALL (SELECT Price FROM Game)"), "");
    EXPECT_EQ(Run(u"SELECT Title FROM Game WHERE Price > ANY (SELECT Price FROM Game)"),
              "Fathom|Xenon");
}

TEST_F(Subqueries, SeeTheRowAroundThem) {
    EXPECT_EQ(
        Run(u"SELECT Name, (SELECT Count(*) FROM Game WHERE MakerId = Maker.Id) AS Games FROM "
            u"Maker ORDER BY Name"),
        "Bally,2|Nobody,0|Zaccaria,1");
    EXPECT_EQ(Run(u"SELECT Title FROM Game AS G WHERE [Year] = (SELECT Min([Year]) FROM Game WHERE "
                  u"MakerId = G.MakerId)"),
              "Xenon|Farfalla");
    // Two statements away.
    EXPECT_EQ(
        Run(u"SELECT Name FROM Maker AS M WHERE EXISTS (SELECT * FROM Game AS G WHERE G.MakerId = "
            u"M.Id And Price = (SELECT Max(Price) FROM Game WHERE MakerId = M.Id And Id >= G.Id "
            u"And Country = 'US'))"),
        "Bally");
    EXPECT_EQ(
        Run(u"SELECT Maker.Name, Game.Title FROM Maker INNER JOIN Game ON Maker.Id = Game.MakerId "
            u"WHERE Price = (SELECT Max(Price) FROM Game AS O WHERE O.MakerId = Maker.Id)"),
        "Bally,Xenon|Zaccaria,Farfalla");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker ORDER BY (SELECT Count(*) FROM Game WHERE MakerId = "
                  u"Maker.Id) DESC, Name"),
              "Bally|Zaccaria|Nobody");
    EXPECT_EQ(
        Run(u"SELECT MakerId, (SELECT Name FROM Maker WHERE Id = MakerId) FROM Game GROUP BY "
            u"MakerId HAVING Count(*) > (SELECT Count(*) - 2 FROM Maker WHERE Id >= MakerId - 1)"),
        "<null>,<null>|1,Bally");
    EXPECT_EQ(ErrorOf(u"SELECT Count(*), (SELECT Name FROM Maker WHERE Id = MakerId) FROM Game"),
              3122);
    EXPECT_EQ(ErrorOf(u"SELECT Name FROM Maker WHERE EXISTS (SELECT * FROM Game WHERE Nobody = 1)"),
              3061);
    EXPECT_EQ(ErrorOf(u"SELECT Name FROM Maker WHERE EXISTS (SELECT * FROM Nowhere)"), 3078);
}

TEST_F(Subqueries, WrittenTwiceAreTheSame) {
    const std::u16string name = u"(SELECT Name FROM Maker WHERE Id = Game.MakerId)";
    const std::u16string same = u"(select NAME from maker where id = game.makerid)";
    EXPECT_EQ(Run(u"SELECT DISTINCT " + name + u" FROM Game ORDER BY " + same + u" DESC"),
              "Zaccaria|Bally|<null>");
    EXPECT_EQ(Run(u"SELECT " + name + u", Count(*) FROM Game GROUP BY " + same),
              "<null>,1|Bally,2|Zaccaria,1");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Game GROUP BY " + name + u" HAVING " + same +
                  u" = 'Bally' ORDER BY " + name),
              "2");
    for (const std::u16string_view other :
         {u"(SELECT Country FROM Maker WHERE Id = Game.MakerId)",
          u"(SELECT Name FROM Maker WHERE Id = Game.Id)",
          u"(SELECT DISTINCT Name FROM Maker WHERE Id = Game.MakerId)",
          u"(SELECT TOP 1 Name FROM Maker WHERE Id = Game.MakerId)",
          u"(SELECT Name FROM Maker AS M WHERE Id = Game.MakerId)",
          u"(SELECT Name FROM Maker WHERE Id = Game.MakerId GROUP BY Name)",
          u"(SELECT Name FROM Maker WHERE Id = Game.MakerId ORDER BY Id)",
          u"(SELECT Name FROM Maker WHERE Id = Game.MakerId UNION SELECT 'x' FROM Maker WHERE "
          u"Id = 9)"}) {
        EXPECT_EQ(
            ErrorOf(u"SELECT DISTINCT " + name + u" FROM Game ORDER BY " + std::u16string(other)),
            3093)
            << base::ToUtf8(other);
    }
    EXPECT_EQ(ErrorOf(u"SELECT " + name +
                      u" FROM Game GROUP BY Id, "
                      u"(SELECT Country FROM Maker WHERE Id = Game.MakerId)"),
              3122);
}

// An answer that is only asked for a row stops at the first one.
TEST_F(Subqueries, ExistsComputesNoAnswer) {
    for (const std::u16string_view what :
         {u"TOP 1 *", u"DISTINCT Title", u"TOP 50 PERCENT Title", u"1 / 0", u"DISTINCT 1 / 0",
          u"TOP 3 1 / 0", u"Count(1 / 0)"})
        EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT " + std::u16string(what) +
                      u" FROM Game WHERE MakerId = 1)"),
                  "Bally|Zaccaria|Nobody")
            << base::ToUtf8(what);
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT TOP 1 * FROM Game WHERE MakerId = "
                  u"Maker.Id ORDER BY Title)"),
              "Bally|Zaccaria");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT DISTINCT Title FROM Game WHERE "
                  u"MakerId = Maker.Id)"),
              "Bally|Zaccaria");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT MakerId FROM Game WHERE MakerId = "
                  u"Maker.Id GROUP BY MakerId)"),
              "Bally|Zaccaria");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT MakerId FROM Game WHERE MakerId = "
                  u"Maker.Id GROUP BY MakerId HAVING Count(*) > 1)"),
              "Bally");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT Sum(Id) FROM Game WHERE MakerId = "
                  u"99)"),
              "Bally|Zaccaria|Nobody");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT TOP 0 * FROM Game)"), "");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT TOP 0 PERCENT * FROM Game)"), "");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT Id FROM Game WHERE Id = 99 UNION "
                  u"SELECT 1 / 0 FROM Game WHERE MakerId = Maker.Id)"),
              "Bally|Zaccaria");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT 1)"), "Bally|Zaccaria|Nobody");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT 1 WHERE Maker.Id = 2)"),
              "Zaccaria");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE EXISTS (SELECT 1 / 0 FROM Game, Maker AS M WHERE "
                  u"MakerId = M.Id AND M.Id = Maker.Id)"),
              "Bally|Zaccaria");
}

TEST_F(Subqueries, UseIndexesInsideAndOutside) {
    const auto ranges = [&](std::u16string_view table, std::u16string_view sql) {
        const int before = Table(table).ranges();
        EXPECT_NE(Run(sql).substr(0, 1), "#");
        return Table(table).ranges() - before;
    };
    EXPECT_EQ(ranges(u"Maker",
                     u"SELECT Title FROM Game WHERE EXISTS (SELECT * FROM Maker WHERE Id = "
                     u"MakerId)"),
              3);  // Null is equal to nothing
    EXPECT_EQ(ranges(u"Game", u"SELECT Title FROM Game WHERE Id = (SELECT Max(Id) FROM Maker)"), 1);
    EXPECT_EQ(ranges(u"Game", u"SELECT Title FROM Game WHERE Id In (SELECT Id FROM Maker)"), 3);
}

TEST_F(Subqueries, ChooseTheRowsOfChanges) {
    EXPECT_EQ(
        Run(u"UPDATE Game SET Price = 1 WHERE MakerId In (SELECT Id FROM Maker WHERE Country = "
            u"'IT')"),
        "1");
    EXPECT_EQ(
        Run(u"DELETE FROM Maker WHERE Not Exists (SELECT * FROM Game WHERE MakerId = Maker.Id)"),
        "1");
    // The rows are found before the first of them goes.
    EXPECT_EQ(Run(u"DELETE FROM Game WHERE Id > (SELECT Min(Id) FROM Game)"), "3");
    EXPECT_EQ(Run(u"SELECT Title FROM Game"), "Fathom");
    EXPECT_EQ(ErrorOf(u"UPDATE Game SET Price = (SELECT Max(Price) FROM Game)"), 3073);
    EXPECT_EQ(
        Run(u"INSERT INTO Game (Title, [Year]) VALUES ('New', (SELECT Max([Year]) + 1 FROM Game))"),
        "1");
    EXPECT_EQ(Run(u"SELECT [Year] FROM Game WHERE Title = 'New'"), "1982");
}

TEST_F(Subqueries, AreAnsweredAnewByEachStatement) {
    jet::Recordset rows;
    ASSERT_TRUE(rows.Open(u"SELECT Name, (SELECT Count(*) FROM Game) AS Games FROM Maker",
                          *connection, jet::CursorType::kKeyset, jet::LockType::kOptimistic)
                    .ok());
    EXPECT_EQ(test_support::Shown(*rows.Fields(u"Games")), "4");
    Run(u"DELETE FROM Game WHERE Id = 1");
    ASSERT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(test_support::Shown(*rows.Fields(u"Games")), "3");
}

TEST_F(Subqueries, NestOnlySoDeep) {
    const auto nested = [](std::size_t depth) {
        std::u16string sql = u"SELECT 1";
        for (std::size_t i = 0; i < depth; ++i)
            sql = u"SELECT (" + sql + u")";
        return sql;
    };
    EXPECT_EQ(Run(nested(30)), "1");
    EXPECT_EQ(ErrorOf(nested(200)), 3360);
    EXPECT_EQ(ErrorOf(nested(20000)), 3360);
    std::u16string exists = u"SELECT Id FROM Maker";
    for (int i = 0; i < 5000; ++i)
        exists = u"SELECT Id FROM Maker WHERE Exists (" + exists + u")";
    EXPECT_EQ(ErrorOf(exists), 3360);
    // Runs of nested ones multiply: 3 to the power of 20.
    std::u16string many = u"SELECT Id FROM Maker AS M20 WHERE Id > M19.Id + 9";
    for (int i = 19; i >= 0; --i) {
        const std::string level = std::to_string(i);
        const std::u16string name = u"M" + std::u16string(level.begin(), level.end());
        const std::string before = std::to_string(i - 1);
        const std::u16string outer = u"M" + std::u16string(before.begin(), before.end());
        many = u"SELECT Id FROM Maker AS " + name + u" WHERE " +
               (i > 0 ? name + u".Id + " + outer + u".Id > 0 And " : std::u16string()) +
               u"Not Exists (" + many + u") And Id = 99";
    }
    const std::string answer = Run(many);
    EXPECT_TRUE(answer.empty() || answer.substr(0, 5) == "#3360") << answer;
}

TEST_F(Subqueries, HaveNoPlaceWhereTextIsWrong) {
    for (const std::u16string_view sql :
         {u"SELECT (SELECT 1", u"SELECT (SELECT 1 FROM", u"SELECT 1 WHERE Exists SELECT 1",
          u"SELECT 1 WHERE 1 In (SELECT 1 FROM Maker ORDER BY 1;)", u"SELECT 1 WHERE 1 > ALL 5",
          u"SELECT (SELECT 1 INTO X FROM Maker)", u"SELECT 1 WHERE ANY (SELECT 1)"})
        EXPECT_EQ(Run(sql).substr(0, 2), "#3") << base::ToUtf8(sql);
    EXPECT_EQ(Run(u"SELECT (SELECT TOP 1 Name FROM Maker ORDER BY Name DESC)"), "Zaccaria");
}

TEST_F(Subqueries, MakeATableOfRows) {
    EXPECT_EQ(Run(u"SELECT Title, [Year] AS Made, Price * 2 AS Twice, Len(Title) AS Size, MakerId "
                  u"Is Null "
                  u"AS Lost INTO Copy FROM Game WHERE [Year] > 1980"),
              "3");
    EXPECT_EQ(Run(u"SELECT * FROM Copy"),
              "Fathom,1981,20,6,0|Farfalla,1983,10,8,0|Orphan,1990,<null>,6,-1");
    const jet::TableDesign& design = Table(u"Copy").design();
    EXPECT_EQ(design.columns[0].type, jet::ColumnType::kText);
    EXPECT_EQ(design.columns[0].size, 30);
    EXPECT_EQ(design.columns[1].type, jet::ColumnType::kLong);
    EXPECT_EQ(design.columns[2].type, jet::ColumnType::kMoney);
    EXPECT_EQ(design.columns[4].type, jet::ColumnType::kShort);
    EXPECT_EQ(Run(u"SELECT Id INTO Ids FROM Game WHERE Id < 0"), "0");
    EXPECT_FALSE(Table(u"Ids").design().columns[0].autonumber);
    EXPECT_EQ(ErrorOf(u"SELECT * INTO Copy FROM Game"), 3010);
    EXPECT_EQ(ErrorOf(u"SELECT * INTO Other FROM Game UNION SELECT * FROM Game"), 3141);
    EXPECT_EQ(
        Run(u"SELECT Maker.Name, Game.Title INTO Joined FROM Maker LEFT JOIN Game ON Maker.Id = "
            u"Game.MakerId"),
        "4");
    jet::Recordset rows;
    EXPECT_EQ(rows.Open(u"SELECT * INTO Fifth FROM Game", *connection,
                        jet::CursorType::kForwardOnly, jet::LockType::kReadOnly)
                  .number(),
              3219);
    memory->set_read_only(true);
    EXPECT_EQ(ErrorOf(u"SELECT * INTO Sixth FROM Game"), 3027);
}

TEST_F(Subqueries, UpdatesReachOverJoins) {
    EXPECT_EQ(Run(u"UPDATE Game INNER JOIN Maker ON Game.MakerId = Maker.Id SET Game.Title = "
                  u"Maker.Name & "
                  u"' ' & Title, Price = Price + 1 WHERE Country = 'US'"),
              "2");
    EXPECT_EQ(Run(u"SELECT Title, Price FROM Game"),
              "Bally Fathom,11|Bally Xenon,21|Farfalla,5|Orphan,<null>");
    // Both sides at once; values are those of before the statement.
    EXPECT_EQ(
        Run(u"UPDATE Game INNER JOIN Maker ON Game.MakerId = Maker.Id SET Game.[Year] = Maker.Id, "
            u"Maker.Country = Game.[Year] WHERE Maker.Id = 2"),
        "1");
    EXPECT_EQ(Run(u"SELECT Country FROM Maker WHERE Id = 2"), "1983");
    EXPECT_EQ(Run(u"SELECT [Year] FROM Game WHERE MakerId = 2"), "2");
    // No row, nothing set.
    EXPECT_EQ(Run(u"UPDATE Game LEFT JOIN Maker ON Game.MakerId = Maker.Id SET Maker.Country = "
                  u"'X', Price "
                  u"= 0 WHERE Title = 'Orphan'"),
              "1");
    EXPECT_EQ(Run(u"SELECT Price FROM Game WHERE Title = 'Orphan'"), "0");
    EXPECT_EQ(
        Run(u"UPDATE Game, Maker SET Price = 7 WHERE Game.MakerId = Maker.Id And Maker.Id = 1"),
        "2");
    EXPECT_EQ(ErrorOf(u"UPDATE Game INNER JOIN Maker ON Game.MakerId = Maker.Id SET Id = 5"), 3079);
    EXPECT_EQ(ErrorOf(u"UPDATE Game INNER JOIN Maker SET Price = 5"), 3131);
    EXPECT_EQ(Run(u"UPDATE Game AS G SET G.Price = 8 WHERE G.Id = 1"), "1");
    memory->set_read_only(true);
    EXPECT_EQ(ErrorOf(u"UPDATE Game, Maker SET Price = 7"), 3073);
}

TEST_F(Subqueries, DeletesReachOverJoins) {
    EXPECT_EQ(ErrorOf(u"DELETE FROM Game INNER JOIN Maker ON Game.MakerId = Maker.Id"), 3128);
    EXPECT_EQ(ErrorOf(u"DELETE * FROM Game INNER JOIN Maker ON Game.MakerId = Maker.Id"), 3128);
    EXPECT_EQ(ErrorOf(u"DELETE Other.* FROM Game INNER JOIN Maker ON Game.MakerId = Maker.Id"),
              3078);
    EXPECT_EQ(ErrorOf(u"DELETE Other.* FROM Game"), 3078);
    // Each row goes once, however often it was met.
    EXPECT_EQ(
        Run(u"DELETE Maker.* FROM Maker INNER JOIN Game ON Game.MakerId = Maker.Id WHERE Country = "
            u"'US'"),
        "1");
    EXPECT_EQ(
        Run(u"DELETE DISTINCTROW G.* FROM Game AS G LEFT JOIN Maker ON G.MakerId = Maker.Id WHERE "
            u"Maker.Id Is Null"),
        "3");
    EXPECT_EQ(Run(u"SELECT Title FROM Game"), "Farfalla");
    EXPECT_EQ(Run(u"DELETE Game.* FROM Game"), "1");
}

}  // namespace
