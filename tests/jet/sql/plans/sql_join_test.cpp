// Joins: what they give, and how few rows they touch for it.
#include "jet/sql/sql_fixture.h"

#include <random>

namespace {

using test_support::SqlFixture;

std::u16string Digits(int number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

class SqlJoin : public SqlFixture {
protected:
    void SetUp() override {
        Run(u"CREATE TABLE Maker (Id LONG, Name TEXT(30), Country TEXT(20))");
        Run(u"CREATE TABLE Game (Nr LONG, Title TEXT(30), MakerId LONG, Price MONEY)");
        Run(u"CREATE TABLE Score (GameNr LONG, Points LONG)");
        for (const std::u16string_view row :
             {u"1, 'Bally', 'US'", u"2, 'Zaccaria', 'IT'", u"3, 'Nobody', Null"})
            Run(u"INSERT INTO Maker VALUES (" + std::u16string(row) + u")");
        for (const std::u16string_view row : {u"10, 'Fathom', 1, 10", u"20, 'Xenon', 1, 20",
                                              u"30, 'Farfalla', 2, 5", u"40, 'Orphan', Null, Null"})
            Run(u"INSERT INTO Game VALUES (" + std::u16string(row) + u")");
        for (const std::u16string_view row : {u"10, 100", u"10, 50", u"30, 70", u"99, 1"})
            Run(u"INSERT INTO Score VALUES (" + std::u16string(row) + u")");
    }

    // A table of one column, I: 0, 1, ...
    void MakeNumbers(std::u16string_view name, int count) {
        Run(u"CREATE TABLE " + std::u16string(name) + u" (I LONG)");
        auto& rows = Table(name).rows();
        for (int i = 0; i < count; ++i)
            rows[{1U + static_cast<std::uint32_t>(i) / 200, static_cast<std::uint8_t>(i % 200)}] = {
                jet::Value::Long(i)};
    }
};

TEST_F(SqlJoin, CommasJoinUnderTheConditions) {
    EXPECT_EQ(Run(u"SELECT Title, Name FROM Game, Maker WHERE MakerId = Id"),
              "Fathom,Bally|Xenon,Bally|Farfalla,Zaccaria");
    EXPECT_EQ(Run(u"SELECT Title, Name FROM Maker, Game WHERE MakerId = Id"),
              "Fathom,Bally|Xenon,Bally|Farfalla,Zaccaria");
    EXPECT_EQ(Run(u"SELECT Name, Title, Points FROM Maker, Game, Score WHERE MakerId = Id And "
                  u"GameNr = Nr And Points > 60"),
              "Bally,Fathom,100|Zaccaria,Farfalla,70");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Maker, Game, Score"), "48");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Maker, Game, Score WHERE 1 = 0"), "0");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Maker, Game WHERE Null"), "0");
}

// The rows come as if the tables had been joined from left to right.
TEST_F(SqlJoin, OrderIsTheWrittenOneWhateverIsJoinedFirst) {
    EXPECT_EQ(Run(u"SELECT Nr, Id, Points FROM Game, Maker, Score WHERE Id = 2 And Points > 60"),
              "10,2,100|10,2,70|20,2,100|20,2,70|30,2,100|30,2,70|40,2,100|40,2,70");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker RIGHT JOIN Game ON Id = MakerId"),
              "1,10|1,20|2,30|<null>,40");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Id = MakerId"),
              "1,10|1,20|2,30|3,<null>");
}

TEST_F(SqlJoin, ConditionsOnWhatMayBeMissing) {
    // Of ON: they decide what is a partner.
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Id = MakerId And Price > 8"),
              "1,10|1,20|2,<null>|3,<null>");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Id = MakerId And Country = 'IT'"),
              "1,<null>|2,30|3,<null>");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Id = MakerId And 1 = 0"),
              "1,<null>|2,<null>|3,<null>");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Price > 8"),
              "1,10|1,20|2,10|2,20|3,10|3,20");
    // Of WHERE: they decide what is kept.
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Id = MakerId WHERE Price > 8"),
              "1,10|1,20");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Id = MakerId WHERE Nr Is Null"),
              "3,<null>");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker LEFT JOIN Game ON Id = MakerId WHERE Country = 'US'"),
              "1,10|1,20");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker RIGHT JOIN Game ON Id = MakerId WHERE Country = 'US'"),
              "1,10|1,20");
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Maker RIGHT JOIN Game ON Id = MakerId WHERE Nr > 20"),
              "2,30|<null>,40");
}

TEST_F(SqlJoin, OuterJoinsNest) {
    EXPECT_EQ(Run(u"SELECT Id, Nr, Points FROM (Maker LEFT JOIN Game ON Id = MakerId) LEFT JOIN "
                  u"Score ON Nr = GameNr"),
              "1,10,100|1,10,50|1,20,<null>|2,30,70|3,<null>,<null>");
    EXPECT_EQ(Run(u"SELECT Id, Nr, Points FROM Maker LEFT JOIN (Game INNER JOIN Score ON Nr = "
                  u"GameNr) ON Id = MakerId WHERE Id > 1"),
              "2,30,70|3,<null>,<null>");
    EXPECT_EQ(Run(u"SELECT Id, Nr, Points FROM Score, Maker LEFT JOIN Game ON Id = MakerId WHERE "
                  u"Nr = GameNr And Points <> 50"),
              "1,10,100|2,30,70");
    EXPECT_EQ(ErrorOf(u"SELECT Id FROM Score, Maker LEFT JOIN Game ON Id = Points"), 3296);
    EXPECT_EQ(ErrorOf(u"SELECT Id FROM Score LEFT JOIN (Maker INNER JOIN Game ON Id = Points) ON "
                      u"Nr = GameNr"),
              3296);
    EXPECT_EQ(Run(u"SELECT Id, Nr FROM Score, Maker INNER JOIN Game ON Nr = GameNr WHERE Id = 1"),
              "1,10|1,10|1,30");
}

// A condition that cannot be computed for some row fails only where the others hold.
TEST_F(SqlJoin, RowsThatNeverMatchDoNotFail) {
    Run(u"INSERT INTO Game VALUES (0, 'Zero', 9, 0)");
    EXPECT_EQ(Run(u"SELECT Title FROM Maker, Game WHERE MakerId = Id And 100 \\ Nr > 4"),
              "Fathom|Xenon");
    EXPECT_EQ(Run(u"SELECT Title FROM Maker, Game WHERE 100 \\ Nr > 4 And MakerId = Id"),
              "Fathom|Xenon");
    EXPECT_EQ(Run(u"SELECT Title FROM Maker, Game WHERE Id = 100 \\ Nr - 9 And Nr > 0"), "Fathom");
    EXPECT_EQ(ErrorOf(u"SELECT Title FROM Maker, Game WHERE Id = 100 \\ Nr - 9"), 11);
    EXPECT_EQ(ErrorOf(u"SELECT Title FROM Maker, Game WHERE MakerId = Id + 6 And 100 \\ Nr > 4"),
              11);
    EXPECT_EQ(Run(u"SELECT Title FROM Maker LEFT JOIN Game ON MakerId = Id And 100 \\ Nr > 4"),
              "Fathom|Xenon|<null>|<null>");
    EXPECT_EQ(
        ErrorOf(u"SELECT Title FROM Maker LEFT JOIN Game ON MakerId = Id + 6 And 1 \\ Nr = 0"), 11);
}

TEST_F(SqlJoin, ValuesOfTwoKindsAreConverted) {
    Run(u"CREATE TABLE Words (Word TEXT(20), Day DATETIME)");
    Run(u"INSERT INTO Words VALUES ('10', #1/1/2000 10:00:00#)");
    Run(u"INSERT INTO Words VALUES (' 30 ', #1/2/2000#)");
    EXPECT_EQ(Run(u"SELECT Title FROM Game, Words WHERE Nr = Word"), "Fathom|Farfalla");
    EXPECT_EQ(Run(u"SELECT Title FROM Game INNER JOIN Words ON Word = Nr"), "Fathom|Farfalla");
    EXPECT_EQ(Run(u"SELECT Title FROM Game, Words WHERE Price = Word"), "Fathom");
    Run(u"INSERT INTO Words VALUES ('x', Null)");
    EXPECT_EQ(ErrorOf(u"SELECT Title FROM Game, Words WHERE Nr = Word"), 3464);
    EXPECT_EQ(Run(u"SELECT X.Word FROM Words AS X, Words AS Y WHERE X.Day = Y.Day + 0"), "10| 30 ");
    EXPECT_EQ(Run(u"SELECT X.Word FROM Words AS X, Words AS Y WHERE X.Word = UCase(Y.Word)"),
              "10| 30 |x");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM Words AS X, Words AS Y WHERE X.Word & '' = Y.Word And "
                  u"X.Day = Y.Day"),
              "2");
}

// Written one behind the other they have 8,000,000,000 combinations.
TEST_F(SqlJoin, StartsWhereAConditionNarrows) {
    MakeNumbers(u"A", 2000);
    MakeNumbers(u"B", 2000);
    MakeNumbers(u"C", 2000);
    EXPECT_EQ(Run(u"SELECT A.I, B.I, C.I FROM A, B, C WHERE A.I = C.I And C.I = B.I And B.I = 7"),
              "7,7,7");
    EXPECT_EQ(Run(u"SELECT A.I, B.I, C.I FROM A, B, C WHERE B.I In (3, 4) And A.I + C.I = 5 And "
                  u"C.I = B.I - 3"),
              "4,4,1|5,3,0");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM A, B, C WHERE A.I < 3 And B.I < 4 And C.I < 5"), "60");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM A INNER JOIN B ON A.I + 1 = B.I * 2"), "1000");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM A, B WHERE A.I < B.I And A.I < 100 And B.I < 100"),
              "4950");
}

TEST_F(SqlJoin, ReadsATableThroughItsIndex) {
    MakeNumbers(u"A", 1000);
    MakeNumbers(u"B", 1000);
    Run(u"CREATE INDEX ByI ON A (I)");
    const int scans = Table(u"A").scans();
    EXPECT_EQ(Run(u"SELECT A.I, B.I FROM A, B WHERE A.I In (9, 5) And B.I = A.I + 1"), "5,6|9,10");
    EXPECT_EQ(Table(u"A").scans(), scans);
    EXPECT_EQ(Table(u"A").ranges(), 2);
}

TEST_F(SqlJoin, InsideASubqueryReadsItsTablesOnce) {
    MakeNumbers(u"A", 300);
    MakeNumbers(u"B", 300);
    MakeNumbers(u"C", 300);
    for (const std::u16string_view joined :
         {u"FROM B, C WHERE B.I = C.I And C.I = A.I * 2",
          u"FROM B, C WHERE A.I * 2 = B.I And C.I = B.I",
          u"FROM B INNER JOIN C ON B.I = C.I WHERE B.I = A.I * 2",
          u"FROM B LEFT JOIN C ON B.I = C.I WHERE B.I = A.I * 2 And C.I Is Not Null"}) {
        const int b = Table(u"B").scans();
        const int c = Table(u"C").scans();
        EXPECT_EQ(
            Run(u"SELECT Count(*) FROM A WHERE EXISTS (SELECT * " + std::u16string(joined) + u")"),
            "150")
            << base::ToUtf8(joined);
        EXPECT_EQ(Table(u"B").scans() - b, 1) << base::ToUtf8(joined);
        EXPECT_EQ(Table(u"C").scans() - c, 1) << base::ToUtf8(joined);
    }
    EXPECT_EQ(Run(u"SELECT Sum(I) FROM A WHERE I = (SELECT Count(*) FROM B, C WHERE B.I < A.I And "
                  u"C.I = 1)"),
              "44850");
    // Each statement reads them anew.
    Run(u"DELETE FROM C WHERE I < 10");
    EXPECT_EQ(Run(u"SELECT Count(*) FROM A WHERE EXISTS (SELECT * FROM B, C WHERE B.I = C.I And "
                  u"C.I = A.I * 2)"),
              "145");
}

// Any join against the combinations of all rows with the conditions tested on each.
TEST_F(SqlJoin, AnswersAsAllCombinationsDo) {
    constexpr unsigned kSeed = 20261121;
    std::mt19937 random(kSeed);
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    for (const std::u16string_view table : {u"P", u"Q", u"R"}) {
        Run(u"CREATE TABLE " + std::u16string(table) + u" (N LONG, M LONG, T TEXT(10))");
        for (int i = 0; i < 7; ++i) {
            const auto number = [&] {
                return below(5) == 0 ? u"Null" : Digits(static_cast<int>(below(4)));
            };
            Run(u"INSERT INTO " + std::u16string(table) + u" VALUES (" + number() + u", " +
                number() + u", '" + number() + u"')");
        }
    }
    Run(u"CREATE INDEX ByN ON Q (N)");
    const auto side = [&](std::u16string_view tables) {
        const std::u16string table(1, tables[below(tables.size())]);
        static const char16_t* const kForms[] = {u"#.N",       u"#.M", u"#.N + 1",
                                                 u"#.N + #.M", u"#.T", u"Len(#.T)"};
        std::u16string form = kForms[below(std::size(kForms))];
        for (std::size_t at = form.find(u'#'); at != form.npos; at = form.find(u'#'))
            form.replace(at, 1, table);
        return form;
    };
    const auto condition = [&](std::u16string_view tables) {
        static const char16_t* const kJoinOperators[] = {u" = ", u" = ", u" = ", u" < ", u" <> "};
        std::u16string test = side(tables) + u" & ''" + kJoinOperators[below(5)];
        if (below(3) == 0) return test + u"'" + Digits(static_cast<int>(below(4))) + u"'";
        return test + side(tables) + u" & ''";
    };
    const auto conditions = [&](std::u16string_view tables) {
        std::u16string all = condition(tables);
        for (std::size_t i = below(3); i > 0; --i)
            all += (below(4) == 0 ? u" Or " : u" And ") + condition(tables);
        return all;
    };
    int rows = 0;
    for (int i = 0; i < 100; ++i) {
        const std::u16string on1 = conditions(u"PQ");
        const std::u16string on2 = conditions(u"PQR");
        const std::u16string where = conditions(u"PQR");
        const std::u16string outputs = u"SELECT P.N, P.M, P.T, Q.N, Q.M, Q.T, R.N, R.M, R.T FROM ";
        // IIf hides a condition from whoever would test it sooner.
        const std::string expected = Run(outputs + u"P, Q, R WHERE IIf((" + on1 + u") And (" + on2 +
                                         u") And (" + where + u"), True, False)");
        ASSERT_EQ(
            Run(outputs + u"P, Q, R WHERE (" + on1 + u") And (" + on2 + u") And (" + where + u")"),
            expected)
            << "seed " << kSeed << ": " << base::ToUtf8(on1 + u"; " + on2 + u"; " + where);
        ASSERT_EQ(Run(outputs + u"(P INNER JOIN Q ON " + on1 + u") INNER JOIN R ON " + on2 +
                      u" WHERE " + where),
                  expected)
            << "seed " << kSeed << ": " << base::ToUtf8(on1 + u"; " + on2 + u"; " + where);
        const std::string outer =
            Run(outputs + u"(P LEFT JOIN Q ON IIf(" + on1 + u", True, False)) LEFT JOIN R ON IIf(" +
                on2 + u", True, False) WHERE IIf(" + where + u", True, False)");
        ASSERT_EQ(Run(outputs + u"(P LEFT JOIN Q ON " + on1 + u") LEFT JOIN R ON " + on2 +
                      u" WHERE " + where),
                  outer)
            << "seed " << kSeed << ": " << base::ToUtf8(on1 + u"; " + on2 + u"; " + where);
        rows += static_cast<int>(std::ranges::count(expected, '|'));
    }
    EXPECT_GT(rows, 300);
}

}  // namespace
