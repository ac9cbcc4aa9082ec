// SELECT beyond what the program itself uses, and the use of indexes.
#include "jet/sql/sql_fixture.h"

namespace {

using test_support::SqlFixture;

class SqlSelect : public SqlFixture {
protected:
    void SetUp() override {
        Run(u"CREATE TABLE Maker (Id LONG CONSTRAINT Pk PRIMARY KEY, Name TEXT(30))");
        Run(u"CREATE TABLE Game (Nr LONG, Name TEXT(30), Maker LONG, Price CURRENCY, Made "
            u"DATETIME, "
            u"Score DOUBLE)");
        for (const std::u16string_view sql : {
                 u"INSERT INTO Maker VALUES (1, 'Bally')",
                 u"INSERT INTO Maker VALUES (2, 'Gottlieb')",
                 u"INSERT INTO Maker VALUES (3, 'Stern')",
                 u"INSERT INTO Game VALUES (1, 'Fathom', 1, 10.5, #1/2/1981#, 1)",
                 u"INSERT INTO Game VALUES (2, 'Xenon', 1, 20, #3/4/1980#, 2)",
                 u"INSERT INTO Game VALUES (3, 'Haunted House', 2, 20, #1/1/1982#, 4)",
                 u"INSERT INTO Game VALUES (4, 'unknown', NULL, NULL, NULL, NULL)",
             })
            ASSERT_EQ(Run(sql), "1");
    }
};

TEST_F(SqlSelect, ANameWithoutAnExpressionGetsANumber) {
    auto rows = connection->Execute(u"SELECT 1, Nr, 2 AS two, 3 FROM Game");
    ASSERT_TRUE(rows.ok());
    EXPECT_EQ(rows->FieldName(0), u"Expr1000");
    EXPECT_EQ(rows->FieldName(1), u"Nr");
    EXPECT_EQ(rows->FieldName(2), u"two");
    EXPECT_EQ(rows->FieldName(3), u"Expr1001");
}

// Names are equal in statements where they are equal in the catalogue: by the collation.
TEST_F(SqlSelect, NamesCompareByTheCollation) {
    Run(u"CREATE TABLE Stra\u00DFen (\u03A3igma LONG, [th] LONG)");
    EXPECT_EQ(Run(u"INSERT INTO STRASSEN (\u03C3IGMA, [\u00FE]) VALUES (1, 2)"), "1");
    EXPECT_EQ(Run(u"SELECT strassen.\u03C3igma FROM Strassen WHERE \u00DE = 2"), "1");
}

TEST_F(SqlSelect, ANameThatTwoSourcesShareIsQualified) {
    auto rows =
        connection->Execute(u"SELECT * FROM Game INNER JOIN Maker ON Game.Maker = Maker.Id");
    ASSERT_TRUE(rows.ok());
    EXPECT_EQ(rows->FieldName(1), u"Game.Name");
    EXPECT_EQ(rows->FieldName(7), u"Maker.Name");
    EXPECT_EQ(rows->FieldName(0), u"Nr");
}

TEST_F(SqlSelect, NullsSortFirstAscendingAndLastDescending) {
    EXPECT_EQ(Run(u"SELECT Nr FROM Game ORDER BY Price, Nr"), "4|1|2|3");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game ORDER BY Price DESC, Nr"), "2|3|1|4");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game ORDER BY Made DESC"), "3|1|2|4");
}

TEST_F(SqlSelect, OrderTakesPositionsAliasesAndExpressions) {
    EXPECT_EQ(Run(u"SELECT Name, Nr FROM Game ORDER BY 2 DESC"),
              "unknown,4|Haunted House,3|Xenon,2|Fathom,1");
    EXPECT_EQ(Run(u"SELECT Nr * -1 AS N FROM Game ORDER BY N"), "-4|-3|-2|-1");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game ORDER BY Len(Name), Nr DESC"), "2|1|4|3");
}

TEST_F(SqlSelect, TopBringsTiesAlong) {
    EXPECT_EQ(Run(u"SELECT TOP 1 Nr FROM Game ORDER BY Price DESC"), "2|3");
    EXPECT_EQ(Run(u"SELECT TOP 2 Nr FROM Game ORDER BY Nr"), "1|2");
    EXPECT_EQ(Run(u"SELECT TOP 50 PERCENT Nr FROM Game ORDER BY Nr DESC"), "4|3");
    EXPECT_EQ(Run(u"SELECT TOP 3 Nr FROM Game"), "1|2|3");
    EXPECT_EQ(Run(u"SELECT TOP 0 Nr FROM Game"), "");
    EXPECT_EQ(Run(u"SELECT DISTINCT TOP 2 Price FROM Game"), "<null>|10.5");
}

TEST_F(SqlSelect, DistinctSortsByAllColumns) {
    EXPECT_EQ(Run(u"SELECT DISTINCT Maker, Price FROM Game"), "<null>,<null>|1,10.5|1,20|2,20");
    EXPECT_EQ(Run(u"SELECT DISTINCT Price FROM Game ORDER BY Price DESC"), "20|10.5|<null>");
}

TEST_F(SqlSelect, AggregatesIgnoreNulls) {
    EXPECT_EQ(Run(u"SELECT Count(*), Count(Price), Sum(Price), Min(Name), Max(Made) FROM Game"),
              "4,3,50.5,Fathom,1/1/1982");
    EXPECT_EQ(Run(u"SELECT Avg(Score), First(Name), Last(Name) FROM Game"),
              "2.33333333333333,Fathom,unknown");
    EXPECT_EQ(Run(u"SELECT Var(Score), VarP(Score), StDevP(Nr) FROM Game"),
              "2.33333333333333,1.55555555555556,1.11803398874989");
}

TEST_F(SqlSelect, AggregatesOverNoRows) {
    EXPECT_EQ(Run(u"SELECT Count(*), Sum(Price), Max(Name), Avg(Nr) FROM Game WHERE Nr > 9"),
              "0,<null>,<null>,<null>");
    EXPECT_EQ(Run(u"SELECT Maker, Count(*) FROM Game WHERE Nr > 9 GROUP BY Maker"), "");
}

TEST_F(SqlSelect, GroupsComeSorted) {
    EXPECT_EQ(Run(u"SELECT Maker, Count(*), Sum(Price) FROM Game GROUP BY Maker"),
              "<null>,1,<null>|1,2,30.5|2,1,20");
    EXPECT_EQ(Run(u"SELECT Maker FROM Game GROUP BY Maker HAVING Count(*) > 1"), "1");
    EXPECT_EQ(Run(u"SELECT Year(Made) - 1980 AS Y, Count(*) FROM Game GROUP BY Year(Made) ORDER BY "
                  u"Count(*), Year(Made) DESC"),
              "2,1|1,1|0,1|<null>,1");
}

TEST_F(SqlSelect, AnAggregateInTheOrderAloneMakesOneGroup) {
    EXPECT_EQ(Run(u"SELECT 7 FROM Game ORDER BY Count(*)"), "7");
    EXPECT_EQ(Run(u"SELECT 7 FROM Game WHERE Exists (SELECT 1 FROM Game WHERE Nr > 99 ORDER BY "
                  u"Count(*)) GROUP BY 7"),
              "7");
    EXPECT_EQ(ErrorOf(u"SELECT Name FROM Game ORDER BY Count(*)"), 3122);
}

TEST_F(SqlSelect, GroupingIgnoresCase) {
    Run(u"INSERT INTO Game (Nr, Name) VALUES (5, 'FATHOM')");
    EXPECT_EQ(Run(u"SELECT Name, Count(*) FROM Game WHERE Name = 'fathom' GROUP BY Name"),
              "Fathom,2");
}

TEST_F(SqlSelect, Joins) {
    EXPECT_EQ(Run(u"SELECT Nr, Maker.Name FROM Game INNER JOIN Maker ON Game.Maker = Maker.Id "
                  u"ORDER BY Nr"),
              "1,Bally|2,Bally|3,Gottlieb");
    EXPECT_EQ(
        Run(u"SELECT Nr, M.Name FROM Game AS G LEFT JOIN Maker AS M ON G.Maker = M.Id ORDER BY Nr"),
        "1,Bally|2,Bally|3,Gottlieb|4,<null>");
    EXPECT_EQ(Run(u"SELECT M.Name, Nr FROM Game G RIGHT OUTER JOIN Maker M ON G.Maker = M.Id ORDER "
                  u"BY M.Id, Nr"),
              "Bally,1|Bally,2|Gottlieb,3|Stern,<null>");
    EXPECT_EQ(Run(u"SELECT Nr, M.Id FROM Game, Maker AS M WHERE Game.Maker = M.Id AND Nr > 1 ORDER "
                  u"BY Nr"),
              "2,1|3,2");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Game, Maker"), "12");
    EXPECT_EQ(Run(u"SELECT A.Nr, B.Nr FROM Game A INNER JOIN Game B ON A.Price = B.Price AND A.Nr "
                  u"< B.Nr"),
              "2,3");
    EXPECT_EQ(Run(u"SELECT G.Nr, C.Id FROM (Game G INNER JOIN Maker M ON G.Maker = M.Id) LEFT JOIN "
                  u"Maker C ON C.Id = M.Id + 1 ORDER BY G.Nr"),
              "1,2|2,2|3,3");
}

TEST_F(SqlSelect, UnionRemovesDuplicatesAndSorts) {
    EXPECT_EQ(Run(u"SELECT Maker FROM Game UNION SELECT Id FROM Maker"), "<null>|1|2|3");
    EXPECT_EQ(Run(u"SELECT Maker AS M FROM Game UNION ALL SELECT Id FROM Maker ORDER BY M DESC"),
              "3|2|2|1|1|1|<null>");
}

TEST_F(SqlSelect, UnionAllBehindAUnionKeepsItsDuplicates) {
    EXPECT_EQ(
        Run(u"SELECT 3 UNION ALL SELECT 1 UNION SELECT 1 UNION ALL SELECT 3 UNION ALL SELECT 3"),
        "1|3|3|3");
    EXPECT_EQ(Run(u"SELECT 3 UNION ALL SELECT 1 UNION ALL SELECT 3"), "3|1|3");
    EXPECT_EQ(Run(u"SELECT 'b' UNION SELECT 'B' UNION SELECT 'a'"), "a|b");
}

// Sorting again after each part would take hours.
TEST_F(SqlSelect, UnionOfAThousandParts) {
    Run(u"CREATE TABLE N (I LONG)");
    for (int i = 0; i < 100; ++i)
        Table(u"N").rows()[{1, static_cast<std::uint8_t>(i)}] = {jet::Value::Long(i)};
    std::u16string sql = u"SELECT I FROM N";
    for (int part = 1; part < 1000; ++part) {
        const std::string offset = std::to_string(part * 50);
        sql += u" UNION SELECT I + " + std::u16string(offset.begin(), offset.end()) + u" FROM N";
    }
    auto rows = connection->Execute(sql);
    ASSERT_TRUE(rows.ok()) << rows.status().message();
    for (int i = 0; i < 999 * 50 + 100; ++i, static_cast<void>(rows->MoveNext()))
        ASSERT_EQ(jet::ToInteger(*rows->Fields(std::size_t{0})), i);
    EXPECT_TRUE(rows->Eof());
}

// Texts are compared as a whole; 255 characters count where they are sorted.
TEST_F(SqlSelect, LongTextsThatBeginAlikeAreDifferent) {
    Run(u"CREATE TABLE Notes (Id LONG, Story MEMO)");
    const std::u16string head(255, u'x');
    const std::u16string a = u"'" + head + u"a'";
    const std::u16string b = u"'" + head + u"B'";
    Run(u"INSERT INTO Notes VALUES (1, " + a + u")");
    Run(u"INSERT INTO Notes VALUES (2, " + b + u")");
    Run(u"INSERT INTO Notes VALUES (3, '" + head + u"')");
    for (const bool indexed : {false, true}) {
        if (indexed) Run(u"CREATE INDEX ByStory ON Notes (Story)");
        EXPECT_EQ(Run(u"SELECT Id FROM Notes WHERE Story = " + a), "1");
        EXPECT_EQ(Run(u"SELECT Id FROM Notes WHERE Story <> " + a), "2|3");
        EXPECT_EQ(Run(u"SELECT Id FROM Notes WHERE Story > " + a), "2");
        EXPECT_EQ(Run(u"SELECT Id FROM Notes WHERE Story < " + b), "1|3");
        EXPECT_EQ(Run(u"SELECT Id FROM Notes WHERE Story In (" + b + u", 'y')"), "2");
        EXPECT_EQ(Run(u"SELECT Id FROM Notes WHERE Story In (" + b +
                      u", '1', '2', '3', '4', '5', '6', '7', '8', '9')"),
                  "2");
        EXPECT_EQ(
            Run(u"SELECT Id FROM Notes WHERE Story In (SELECT Story FROM Notes WHERE Id = 2)"),
            "2");
        EXPECT_EQ(Run(u"SELECT X.Id, Y.Id FROM Notes AS X INNER JOIN Notes AS Y "
                      u"ON X.Story = Y.Story"),
                  "1,1|2,2|3,3");
    }
    EXPECT_EQ(Run(u"SELECT StrComp(" + a + u", " + b + u")"), "-1");
    EXPECT_EQ(Run(u"SELECT StrComp(" + b + u", '" + head + u"b')"), "0");
    EXPECT_EQ(Run(u"SELECT " + a + u" = " + b), "0");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Notes GROUP BY Story"), "3");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Notes WHERE Id In (SELECT Min(Id) FROM Notes GROUP BY "
                  u"Story)"),
              "1");
    EXPECT_EQ(Run(u"UPDATE Notes SET Story = " + b + u" WHERE Story <> " + b), "2");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Notes WHERE Story = " + b), "3");
}

TEST_F(SqlSelect, ListsOfOneKindAreLookedUp) {
    const std::u16string list = u" (1, -2, 3.5, 4, 5, 6, 7, 8, 9, 20)";
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Nr In" + list), "1|4");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE -2 * Nr Not In" + list), "2|3|4");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Price In" + list), "2|3");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Price Not In" + list), "1");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Nr Not In (1, 2, 3, 5, 6, 7, 8, 9, Null)"), "");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Nr In (1, 2, 5, 6, 7, 8, 9, 10, Null)"), "1|2");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Name In ('XENON', 'a', 'b', 'c', 'd', 'e', 'f', "
                  u"'g', 'fathom ')"),
              "1|2");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Made In (#3/4/1980#, #1/1/2000#, #1/2/2000#, "
                  u"#1/3/2000#, #1/4/2000#, #1/5/2000#, #1/6/2000#, #1/7/2000#, #1/8/2000#)"),
              "2");
    // Values of another kind are compared one by one, with the conversions of a comparison.
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE '4' In" + list), "1|2|3|4");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Nr In ('1', '2', 3, 5, 6, 7, 8, 9, 10)"), "1|2|3");
    EXPECT_EQ(ErrorOf(u"SELECT Nr FROM Game WHERE Name In" + list), 3464);
}

TEST_F(SqlSelect, LongListsKeepTheIndex) {
    Run(u"CREATE TABLE N (I LONG)");
    Run(u"CREATE INDEX ByI ON N (I)");
    auto& rows = Table(u"N").rows();
    for (int i = 0; i < 20000; ++i)
        rows[{1U + static_cast<std::uint32_t>(i) / 200, static_cast<std::uint8_t>(i % 200)}] = {
            jet::Value::Long(i)};
    const auto list_of = [](int items) {
        std::u16string list;
        for (int i = 0; i < items; ++i) {
            const std::string number = std::to_string(7 * i);
            list += (i > 0 ? u"," : u"") + std::u16string(number.begin(), number.end());
        }
        return list;
    };
    const int before = Table(u"N").ranges();
    EXPECT_EQ(Run(u"SELECT Count(*) FROM N WHERE I In (" + list_of(5000) + u")"), "2858");
    EXPECT_EQ(Table(u"N").ranges() - before, 5000);
    // Beyond half of the rows a walk over all of them is no slower; each is looked up.
    EXPECT_EQ(Run(u"SELECT Count(*) FROM N WHERE I In (" + list_of(15000) + u")"), "2858");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM N WHERE I + 0 In (" + list_of(15000) + u")"), "2858");
    EXPECT_EQ(Table(u"N").ranges() - before, 5000);
}

TEST_F(SqlSelect, InsertFromASelectOfTheSameTable) {
    EXPECT_EQ(Run(u"INSERT INTO Game (Nr, Name) SELECT Nr + 10, Name FROM Game"), "4");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Game"), "8");
    EXPECT_EQ(Run(u"INSERT INTO Maker SELECT Id + 10, Name & '!' FROM Maker WHERE Id = 1"), "1");
    EXPECT_EQ(Run(u"SELECT Name FROM Maker WHERE Id = 11"), "Bally!");
    EXPECT_EQ(ErrorOf(u"INSERT INTO Maker SELECT Id FROM Maker"), 3346);
}

TEST_F(SqlSelect, AnInsertThatFailsInItsMiddleInsertsNothing) {
    EXPECT_EQ(
        ErrorOf(u"INSERT INTO Maker SELECT Nr, Name FROM Game WHERE Nr >= 3 ORDER BY Nr DESC"),
        3022);
    EXPECT_EQ(Run(u"SELECT Id FROM Maker"), "1|2|3");
}

TEST_F(SqlSelect, UpdatesReadTheValuesFromBefore) {
    Run(u"UPDATE Game SET Nr = Score, Score = Nr WHERE Nr = 3");
    EXPECT_EQ(Run(u"SELECT Nr, Score FROM Game WHERE Name LIKE 'haunted%'"), "4,3");
}

TEST_F(SqlSelect, NamesInBracketsAndOtherSpellings) {
    Run(u"CREATE TABLE [My Table] ([A B] INT, [Select] INT)");
    EXPECT_EQ(Run(u"INSERT INTO [My Table] ([A B], [Select]) VALUES (1, 2)"), "1");
    EXPECT_EQ(Run(u"SELECT [a b] + [My Table]![select] FROM `My Table`"), "3");
    EXPECT_EQ(Run(u"SELECT [My Table].Select FROM [My Table]"), "2");
    EXPECT_EQ(Run(u"DELETE * FROM [My Table];"), "1");
}

TEST_F(SqlSelect, DropsTakeThingsAway) {
    EXPECT_EQ(Run(u"ALTER TABLE Game DROP COLUMN Score"), "0");
    EXPECT_EQ(ErrorOf(u"SELECT Score FROM Game"), 3061);
    EXPECT_EQ(Run(u"DROP INDEX Pk ON Maker"), "0");
    EXPECT_EQ(Run(u"DROP TABLE Maker"), "0");
    EXPECT_EQ(ErrorOf(u"SELECT * FROM Maker"), 3078);
}

TEST_F(SqlSelect, TablesAreMadeWithAllTheirRules) {
    ASSERT_EQ(Run(u"CREATE TABLE T (A AUTOINCREMENT(1, 1), B CHAR(3) NOT NULL WITH COMPRESSION, C "
                  u"DECIMAL(10, 2) DEFAULT -1.5, D TEXT DEFAULT 'x' & 'y', E BINARY(8), F GUID, "
                  u"CONSTRAINT U UNIQUE (B, C), PRIMARY KEY (A))"),
              "#3290: Syntax error in CREATE TABLE statement.");
    ASSERT_EQ(Run(u"CREATE TABLE T (A AUTOINCREMENT(1, 1), B CHAR(3) NOT NULL WITH COMPRESSION, C "
                  u"DECIMAL(10, 2) DEFAULT -1.5, D TEXT DEFAULT ('x' & 'y'), E BINARY(8), F GUID, "
                  u"CONSTRAINT U UNIQUE (B, C DESC), PRIMARY KEY (A))"),
              "0");
    const jet::TableDesign& design = Table(u"T").design();
    EXPECT_TRUE(design.columns[0].autonumber);
    EXPECT_TRUE(design.columns[1].required && design.columns[1].compressed &&
                design.columns[1].fixed_text);
    EXPECT_EQ(design.columns[2].precision, 10);
    EXPECT_EQ(design.columns[3].type, jet::ColumnType::kMemo);
    EXPECT_EQ(design.columns[4].size, 8);
    ASSERT_EQ(design.indexes.size(), 2U);
    EXPECT_TRUE(design.indexes[0].unique && !design.indexes[0].columns[1].ascending);
    EXPECT_TRUE(design.indexes[1].primary && design.indexes[1].required);
    EXPECT_EQ(Run(u"INSERT INTO T (B) VALUES ('a')"), "1");
    EXPECT_EQ(Run(u"SELECT A, B, C, D FROM T"), "1,a  ,-1.5,xy");
    EXPECT_EQ(ErrorOf(u"INSERT INTO T (A) VALUES (7)"), 3314);
}

TEST_F(SqlSelect, DefaultsAreChangedAndTaken) {
    Run(u"ALTER TABLE Game ALTER COLUMN Score SET DEFAULT 7");
    Run(u"INSERT INTO Game (Nr) VALUES (9)");
    Run(u"ALTER TABLE Game ALTER Score DROP DEFAULT");
    Run(u"INSERT INTO Game (Nr) VALUES (10)");
    EXPECT_EQ(Run(u"SELECT Score FROM Game WHERE Nr >= 9"), "7|<null>");
}

class SqlIndex : public SqlSelect {
protected:
    void SetUp() override {
        SqlSelect::SetUp();
        Run(u"CREATE INDEX ByMaker ON Game (Maker, Name DESC)");
        Run(u"CREATE INDEX ByName ON Game (Name)");
        Run(u"CREATE INDEX ByMade ON Game (Made)");
        Run(u"CREATE INDEX ByPrice ON Game (Price) WITH IGNORE NULL");
    }
    // The answer, and whether an index was walked for it.
    std::string Indexed(std::u16string_view sql) {
        const int before = Table(u"Game").ranges();
        const std::string rows = Run(sql);
        return Table(u"Game").ranges() > before ? rows : "scan: " + rows;
    }
};

TEST_F(SqlIndex, Equality) {
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Name = 'XENON'"), "2");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE 'xenon' = Name AND Nr = 2"), "2");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Made = #3/4/1980#"), "2");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Price = 20"), "2|3");
}

TEST_F(SqlIndex, Ranges) {
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Name > 'fathom' AND Name < 'y'"), "3|4|2");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Name Between 'f' And 'i'"), "1|3");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Price <= 10.5"), "1");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Made >= #1/1/1981#"), "1|3");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Maker = 1.5"), "");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Maker > 1.5"), "3");
}

TEST_F(SqlIndex, LeadingColumnsOfACompositeIndex) {
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Maker = 1 AND Name > 'g'"), "2");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Maker = 1 AND Name <= 'fathom'"), "1");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Maker = 1"), "2|1");
}

TEST_F(SqlIndex, ANullIsNeverInARange) {
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Maker < 5"), "2|1|3");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Maker = NULL"), "");
    EXPECT_EQ(Run(u"SELECT Nr FROM Game WHERE Maker <> NULL"), "1|2|3");
}

TEST_F(SqlIndex, OrdersByAnIndexInBothDirections) {
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game ORDER BY Name"), "1|3|4|2");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game ORDER BY Name DESC"), "2|4|3|1");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game ORDER BY Maker, Name DESC"), "4|2|1|3");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game ORDER BY Maker DESC, Name"), "3|1|2|4");
}

TEST_F(SqlIndex, AnIndexWithoutItsNullsOrdersNothing) {
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game ORDER BY Price"), "scan: 4|1|2|3");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game ORDER BY Maker, Name"), "scan: 4|1|2|3");
}

TEST_F(SqlIndex, OtherConditionsScan) {
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Name = 'Xenon' OR Nr = 1"), "scan: 1|2");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Not Name = 'Xenon'"), "scan: 1|3|4");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Name <> 'Xenon'"), "scan: 1|3|4");
    EXPECT_EQ(Indexed(u"SELECT Nr FROM Game WHERE Name & '' = 'Xenon'"), "scan: 2");
}

TEST_F(SqlIndex, UpdatingTheColumnThatIsWalkedEndsAndReachesEachRowOnce) {
    EXPECT_EQ(Run(u"UPDATE Game SET Maker = Maker + 1 WHERE Maker > 0"), "3");
    EXPECT_EQ(Run(u"SELECT Nr, Maker FROM Game ORDER BY Nr"), "1,2|2,2|3,3|4,<null>");
}

}  // namespace
