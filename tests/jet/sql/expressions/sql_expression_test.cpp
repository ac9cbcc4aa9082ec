// Values of expressions, as a SELECT without a table gives them.
#include "jet/sql/sql_fixture.h"

namespace {

using test_support::SqlFixture;

struct Case {
    const char16_t* expression;
    const char* expected;
};
void PrintTo(const Case& c, std::ostream* out) {
    *out << base::ToUtf8(c.expression);
}

class SqlExpression : public SqlFixture, public testing::WithParamInterface<Case> {};

TEST_P(SqlExpression, HasItsValue) {
    EXPECT_EQ(Run(std::u16string(u"SELECT ") + GetParam().expression), GetParam().expected);
}

const Case kOperators[] = {
    {u"1 + 2 * 3", "7"},
    {u"(1 + 2) * 3", "9"},
    {u"2 ^ 3 ^ 2", "64"},
    {u"-2 ^ 2", "-4"},
    {u"7 \\ 2", "3"},
    {u"7 Mod 4", "3"},
    {u"-7 Mod 4", "-3"},
    {u"7 / 2", "3.5"},
    {u"10 - 3 - 2", "5"},
    {u"2147483647 + 1", "2147483648"},
    {u"-2147483648 \\ 1", "-2147483648"},
    {u"-2147483648 Mod 10", "-8"},
    {u"-2147483648 Mod -1", "0"},
    {u"100 Mod -2147483648", "100"},
    {u"7.5 \\ 2.5", "4"},
    {u"6.5 Mod 4", "2"},
    {u"CCur(1.5) * 1.00001", "1.500015"},
    {u"CCur(1.5) * CSng(0.00001) < 0.0001", "-1"},
    {u"CCur(1.5) * '0.00001' < 0.0001", "-1"},
    {u"CCur(1.5) * CCur(0.0001)", "0.0002"},
    {u"CCur(1.0001) * 3", "3.0003"},
    {u"CCur(1) + 0.00004", "1"},
    {u"CCur(1) + CSng(0.25)", "1.25"},
    {u"0.5 - CCur(1)", "-0.5"},
    {u"CCur('922337203685477.5807') - 0.0001", "922337203685477.5806"},
    {u"CCur(1) / 3 > 0.33333", "-1"},
    {u"CCur(1) + #2026-11-20#", "11/21/2026"},
    {u"'a' & 'b' = 'ab'", "-1"},
    {u"'a' & 1 + 2 & Null", "a3"},
    {u"'a' + 'b'", "ab"},
    {u"'a' + Null", "<null>"},
    {u"'1' + 2", "3"},
    {u"True & False", "-10"},
    {u"#11/20/2026# & ''", "11/20/2026"},
    {u"#2026-11-20# + 1", "11/21/2026"},
    {u"#2026-11-20# - #2026-11-10#", "10"},
    {u"&H1F", "31"},
    {u"'x' &Hex(255)", "xFF"},
    {u".5 + 1e2", "100.5"},
    {u"'it''s'", "it's"},
    {u"\"say \"\"hi\"\"\"", "say \"hi\""},
    {u"True", "-1"},
    {u"Yes = True And No = False And On = -1 And Off = 0", "-1"},
    {u"Not True", "0"},
    {u"1 = 1 And 2 > 1 Or 1 = 2", "-1"},
    {u"True Xor True", "0"},
    {u"False Imp Null", "-1"},
    {u"True Eqv False", "0"},
};
INSTANTIATE_TEST_SUITE_P(Operators, SqlExpression, testing::ValuesIn(kOperators));

const Case kNulls[] = {
    {u"Null", "<null>"},
    {u"1 = Null", "<null>"},
    {u"Null = Null", "<null>"},
    {u"4 <> Null", "-1"},
    {u"(4 <> Null)", "-1"},
    {u"Null <> 4", "<null>"},
    {u"Null <> Null", "0"},
    {u"Not Null", "<null>"},
    {u"True Or Null", "-1"},
    {u"Null Or True", "-1"},
    {u"False Or Null", "<null>"},
    {u"False And Null", "0"},
    {u"Null And False", "0"},
    {u"True And Null", "<null>"},
    {u"Null Is Null", "-1"},
    {u"'' Is Null", "0"},
    {u"'' Is Not Null", "-1"},
    {u"IsNull(Null)", "-1"},
    {u"IsNull('')", "0"},
    {u"Null In (1, 2)", "<null>"},
    {u"1 In (2, Null)", "<null>"},
    {u"1 In (1, Null)", "-1"},
    {u"1 Between Null And 2", "<null>"},
    {u"5 Between Null And 2", "<null>"},
    {u"1 Between 2 And Null", "<null>"},
    {u"5 Not Between Null And 2", "<null>"},
    {u"Null Between 1 And 2", "<null>"},
    {u"Null & Null", "<null>"},
    {u"Null & Null & Null", "<null>"},
    {u"Null & ''", ""},
    {u"(Null & Null) & 'a'", "a"},
    {u"Null & 'a'", "a"},
    {u"Null + 1", "<null>"},
    {u"Left(Null, 1)", "<null>"},
    {u"Null Like '%'", "<null>"},
};
INSTANTIATE_TEST_SUITE_P(Nulls, SqlExpression, testing::ValuesIn(kNulls));

const Case kComparisons[] = {
    {u"'abc' = 'ABC'", "-1"},
    {u"'abc ' = 'abc'", "-1"},
    {u"'Attack' < 'bally'", "-1"},
    {u"'co-op' = 'coop'", "0"},
    {u"'caf\u00e9' = 'cafe'", "0"},
    {u"'caf\u00e9' > 'cafe'", "-1"},
    {u"'caf\u00e9' < 'caff'", "-1"},
    {u"'10' < '9'", "-1"},
    {u"10 < 9", "0"},
    {u"'5' = 5", "-1"},
    {u"2 Between 1 And 3", "-1"},
    {u"2 Not Between 1 And 3", "0"},
    {u"'b' In ('A', 'B')", "-1"},
    {u"'b' Not In ('A', 'C')", "-1"},
    {u"#11/20/2026 10:00# > #11/20/2026#", "-1"},
    {u"#11/20/2026# = '20-Nov-26'", "-1"},
    {u"#11/20/2026# = ''", "<null>"},
    {u"'' = #11/20/2026#", "<null>"},
    {u"#11/20/2026# <> 'soon'", "<null>"},
    {u"True = -1", "-1"},
    {u"True = 'yes'", "-1"},
    {u"CCur('0.1') + CCur('0.2') = CCur('0.3')", "-1"},
    {u"'Firepower' Like 'fire%'", "-1"},
    {u"'Firepower' Like '%PO_er'", "-1"},
    {u"'Firepower' Like 'fire*'", "0"},
    {u"'a*' Like 'a*'", "-1"},
    {u"'b1' Like '[a-c][0-9]'", "-1"},
    {u"'d1' Like '[a-c]%'", "0"},
    {u"'d1' Like '[^a-c]%'", "-1"},
    {u"'d1' Not Like 'x%'", "-1"},
    {u"'' Like '%'", "-1"},
    {u"'abcabcabd' Like '%abd'", "-1"},
    {u"'\u00c9' Like '\u00e9'", "-1"},
};
INSTANTIATE_TEST_SUITE_P(Comparisons, SqlExpression, testing::ValuesIn(kComparisons));

const Case kTextFunctions[] = {
    {u"'O' & chr(39) & 'Brien'", "O'Brien"},
    {u"Chr(34) & Chr$(124)", "\"|"},
    {u"Chr(128)", "\u20ac"},
    {u"Asc('A')", "65"},
    {u"Asc(Chr(150))", "150"},
    {u"ChrW(8364)", "\u20ac"},
    {u"AscW('\u20ac')", "8364"},
    {u"Len('abc')", "3"},
    {u"Len(12)", "2"},
    {u"Left('abc', 2)", "ab"},
    {u"Left$('abc', 9)", "abc"},
    {u"Right('abc', 2)", "bc"},
    {u"Mid('abcdef', 2, 3)", "bcd"},
    {u"Mid('abc', 9)", ""},
    {u"InStr('abcabc', 'C')", "3"},
    {u"InStr(4, 'abcabc', 'c')", "6"},
    {u"InStr(1, 'abc', 'C', 0)", "0"},
    {u"InStrRev('abcabc', 'b')", "5"},
    {u"InStrRev('abc', '')", "3"},
    {u"InStrRev('abc', '', 2)", "2"},
    {u"InStrRev('', '')", "0"},
    {u"InStrRev('', 'a')", "0"},
    {u"InStrRev('abcabc', 'b', 4)", "2"},
    {u"InStrRev('abcabc', 'b', -1)", "5"},
    {u"InStrRev('abcabc', 'B', -1, 0)", "0"},
    {u"InStr('abc', '')", "1"},
    {u"InStr(3, 'abc', '')", "3"},
    {u"InStr(4, 'abc', 'c')", "0"},
    {u"LCase('\u00c4B') & UCase('\u00e4b')", "\u00e4b\u00c4B"},
    {u"'[' & Trim('  a b ') & ']'", "[a b]"},
    {u"'[' & LTrim('  a ') & ']'", "[a ]"},
    {u"'[' & RTrim('  a ') & ']'", "[  a]"},
    {u"Space(3) & 'x'", "   x"},
    {u"String(3, 'ab')", "aaa"},
    {u"String(2, 65)", "AA"},
    {u"StrComp('a', 'A')", "0"},
    {u"StrComp('a', 'A', 0)", "1"},
    {u"StrComp('a', 'b')", "-1"},
    {u"StrConv('hello wORLD', 3)", "Hello World"},
    {u"Replace('aXbxc', 'x', '--')", "a--b--c"},
    {u"Replace('abc', '', 'x')", "abc"},
    {u"Val('12abc')", "12"},
    {u"Val(' 1 2.5e1x')", "125"},
    {u"Val('x')", "0"},
    {u"Str(5) & Str(-5)", " 5-5"},
    {u"Str(.5)", " .5"},
    {u"Str(-.5)", "-.5"},
    {u"Str(10.5)", " 10.5"},
    {u"Str(0)", " 0"},
    {u"Hex(255) & Oct(8)", "FF10"},
    {u"Hex(-1)", "FFFFFFFF"},
};
INSTANTIATE_TEST_SUITE_P(TextFunctions, SqlExpression, testing::ValuesIn(kTextFunctions));

const Case kDateFunctions[] = {
    {u"Now()", "11/20/2026 3:04:05 PM"},
    {u"Date()", "11/20/2026"},
    {u"Time()", "3:04:05 PM"},
    {u"Format(Now(),'mm/dd/yyyy hh:nn:ss')", "11/20/2026 15:04:05"},
    {u"Format(#2026-11-20#, 'Medium Date')", "20-Nov-26"},
    {u"Format(Null, 'Medium Date')", ""},
    {u"Format('x', 'Fixed')", "x"},
    {u"Year(#1/2/2003#) & Month('1/2/2003') & Day(#1/2/2003#)", "200312"},
    {u"Hour(#15:04:05#) & Minute(#15:04:05#) & Second(#15:04:05#)", "1545"},
    {u"Weekday(#2026-11-20#)", "6"},
    {u"Weekday(#2026-11-20#, 2)", "5"},
    {u"DateSerial(2026, 13, 1)", "1/1/2027"},
    {u"DateSerial(2026, 3, 0)", "2/28/2026"},
    {u"DateSerial(29, 1, 1)", "1/1/2029"},
    {u"TimeSerial(1, 90, 0)", "2:30:00 AM"},
    {u"DateValue('11/20/2026 10:00')", "11/20/2026"},
    {u"TimeValue('11/20/2026 10:00')", "10:00:00 AM"},
    {u"DateAdd('m', 1, #1/31/2026#)", "2/28/2026"},
    {u"DateAdd('yyyy', -1, #2/29/2024#)", "2/28/2023"},
    {u"DateAdd('h', 25, #1/1/2026#)", "1/2/2026 1:00:00 AM"},
    {u"DateAdd('ww', 1, #1/1/2026#)", "1/8/2026"},
    {u"DateDiff('d', #1/1/2026#, #3/1/2026#)", "59"},
    {u"DateDiff('m', #1/31/2026#, #2/1/2026#)", "1"},
    {u"DateDiff('yyyy', #12/31/2025#, #1/1/2026#)", "1"},
    {u"DateDiff('n', #10:00:59#, #10:01:00#)", "1"},
    {u"DateDiff('ww', #11/21/2026#, #11/22/2026#)", "1"},
    {u"DatePart('q', #11/20/2026#)", "4"},
    {u"DatePart('y', #2/1/2026#)", "32"},
    {u"DatePart('ww', #11/20/2026#)", "47"},
    {u"CDate('20-Nov-26')", "11/20/2026"},
    {u"CDate(46000)", "12/9/2025"},
};
INSTANTIATE_TEST_SUITE_P(DateFunctions, SqlExpression, testing::ValuesIn(kDateFunctions));

const Case kNumberFunctions[] = {
    {u"CInt(2.5) & CInt(3.5)", "24"},
    {u"CLng('12')", "12"},
    {u"CDbl('1.5')", "1.5"},
    {u"CSng(1) / 3", "0.333333333333333"},
    {u"CCur(1.23456)", "1.2346"},
    {u"CBool('Yes')", "-1"},
    {u"CByte(200)", "200"},
    {u"CStr(True)", "True"},
    {u"CStr(1.5)", "1.5"},
    {u"CVar('x')", "x"},
    {u"Abs(-5)", "5"},
    {u"Int(-1.5) & Fix(-1.5)", "-2-1"},
    {u"Round(2.5) & Round(3.5) & Round(1.255, 2)", "241.25"},
    {u"Sgn(-3) & Sgn(0) & Sgn(2)", "-101"},
    {u"Sqr(9)", "3"},
    {u"Exp(0) + Log(1) + Sin(0) + Cos(0) + Tan(0) + Atn(0)", "2"},
    {u"Rnd() < 1", "-1"},
    {u"Rnd(0) = Rnd(0)", "-1"},
    {u"Partition(42, 0, 99, 10)", " 40: 49"},
    {u"Partition(-1, 0, 99, 10)", "   : -1"},
    {u"IIf(1 = 1, 'yes', 1 / 0)", "yes"},
    {u"IIf(Null, 'yes', 'no')", "no"},
    {u"Choose(2, 'a', 'b')", "b"},
    {u"Choose(3, 'a', 'b')", "<null>"},
    {u"Switch(1 = 2, 'a', 1 = 1, 'b')", "b"},
    {u"IsNumeric('12') & IsNumeric('x') & IsNumeric(Null)", "-100"},
    {u"IsDate('11/20/2026') & IsDate('x')", "-10"},
    {u"IsEmpty(Null)", "0"},
    {u"Format(1234.5, 'Standard')", "1,234.50"},
    {u"Format(1234.5, 'Fixed')", "1234.50"},
    {u"Format(-1234.5, 'Currency')", "($1,234.50)"},
    {u"Format(.255, 'Percent')", "25.50%"},
    {u"Format(12345, 'Scientific')", "1.23E+04"},
    {u"Format(9999, 'Scientific')", "1.00E+04"},
    {u"Format(5E-324, '0.0E+0')", "4.9E-324"},
    {u"Len(Format(1E300, String(200, '%') & '0'))", "509"},
    {u"Format(2, 'Yes/No') & Format(0, 'True/False')", "YesFalse"},
    {u"Format(7, '000')", "007"},
    {u"Format(1234567, '#,##0')", "1,234,567"},
    {u"Format(1.5, '0.00')", "1.50"},
    {u"Format(.5, '#.##')", ".5"},
    {u"Format(5, '\"Nr. \"0')", "Nr. 5"},
    {u"Format(0, '0;-0;\"none\"')", "none"},
    {u"Format(12, 'General Number')", "12"},
    {u"Format(12)", "12"},
};
INSTANTIATE_TEST_SUITE_P(NumberFunctions, SqlExpression, testing::ValuesIn(kNumberFunctions));

struct ErrorCase {
    const char16_t* sql;
    int number;
    const char* message = nullptr;
};
void PrintTo(const ErrorCase& c, std::ostream* out) {
    *out << base::ToUtf8(c.sql);
}

class SqlError : public SqlFixture, public testing::WithParamInterface<ErrorCase> {
protected:
    SqlError() { Run(u"CREATE TABLE T (A INT, B TEXT(10), D DATE)"); }
};

TEST_P(SqlError, HasItsNumberAndText) {
    const auto result = connection->Execute(GetParam().sql);
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.status().number(), GetParam().number);
    if (GetParam().message != nullptr) {
        EXPECT_EQ(result.status().message(), GetParam().message);
    }
}

const ErrorCase kErrors[] = {
    {u"", 3129,
     "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'."},
    {u"Selct 1", 3129},
    {u"SELECT A FROM T; SELECT 1", 3142, "Characters found after end of SQL statement."},
    {u"SELECT A FROM", 3131, "Syntax error in FROM clause."},
    {u"SELECT FROM T", 3141},
    {u"SELECT A B FROM T", 3075},
    {u"SELECT A FROM T WHERE", 3145, "Syntax error in WHERE clause."},
    {u"SELECT A FROM T WHERE A 1", 3075,
     "Syntax error (missing operator) in query expression 'SELECT A FROM T WHERE A 1'."},
    {u"SELECT A FROM T WHERE B = 'x", 3075, "Syntax error in string in query expression ''x'."},
    {u"SELECT A FROM T WHERE D = #13/32/2026#", 3075,
     "Syntax error in date in query expression '#13/32/2026#'."},
    {u"SELECT A FROM T WHERE D > ##", 3075},
    {u"SELECT A FROM T WHERE TimesPlayed = ", 3075},
    {u"SELECT A FROM T ORDER BY", 3138, "Syntax error in ORDER BY clause."},
    {u"SELECT A FROM T ORDER BY  Asc", 3138},
    {u"SELECT A FROM T ORDER BY 7", 3138},
    {u"SELECT A FROM Nowhere", 3078,
     "The Microsoft Jet database engine cannot find the input table or query 'Nowhere'. Make sure "
     "it exists and that its name is spelled correctly."},
    {u"SELECT X FROM T", 3061, "No value given for one or more required parameters."},
    {u"SELECT A FROM T WHERE X = 1", 3061},
    {u"SELECT A FROM T WHERE Nope!A = 1", 3061},
    {u"SELECT A FROM T WHERE A = ?", 3061},
    {u"UPDATE T SET X = 1", 3061},
    {u"SELECT *", 3067},
    {u"SELECT Nz(A) FROM T", 3085, "Undefined function 'Nz' in expression."},
    {u"SELECT Left(B) FROM T", 3075,
     "Wrong number of arguments used with function in query expression 'Left'."},
    {u"SELECT T.A FROM T, T AS U ORDER BY A", 3079},
    {u"SELECT DISTINCT A FROM T ORDER BY B", 3093, "ORDER BY clause (B) conflicts with DISTINCT."},
    {u"SELECT A, Count(*) FROM T", 3122},
    {u"SELECT A FROM T WHERE Count(*) > 1", 3096},
    {u"SELECT Sum(Sum(A)) FROM T", 3095},
    {u"SELECT A FROM T UNION SELECT A, B FROM T", 3307},
    {u"INSERT T (A) VALUES (1)", 3134, "Syntax error in INSERT INTO statement."},
    {u"INSERT INTO T (A) VALUES (1, 2)", 3346},
    {u"INSERT INTO T (Nope) VALUES (1)", 3127},
    {u"INSERT INTO Nowhere (A) VALUES (1)", 3192, "Could not find output table 'Nowhere'."},
    {u"INSERT INTO T (A, A) VALUES (1, 2)", 3063},
    {u"INSERT INTO T (A) VALUES ('x')", 3464, "Data type mismatch in criteria expression."},
    {u"INSERT INTO T (D) VALUES ('')", 3464},
    {u"INSERT INTO T (A) VALUES (3000000000)", 3349},
    {u"INSERT INTO T (B) VALUES ('12345678901')", 3163},
    {u"UPDATE T A = 1", 3144, "Syntax error in UPDATE statement."},
    {u"DELETE T", 3131},
    {u"CREATE VIEW V", 3290},
    {u"CREATE TABLE T2 (A WIDGET)", 3292, "Syntax error in field definition."},
    {u"CREATE TABLE T (A INT)", 3010, "Table 'T' already exists."},
    {u"CREATE TABLE T2 (A INT, a INT)", 3380},
    {u"CREATE TABLE T2 (A TEXT(256))", 3292},
    {u"CREATE INDEX I T (A)", 3291},
    {u"CREATE INDEX I ON T (X)", 3381},
    {u"CREATE INDEX I ON Nowhere (X)", 3376},
    {u"ALTER TABLE T RENAME A", 3293, "Syntax error in ALTER TABLE statement."},
    {u"ALTER TABLE T ADD A INT", 3380, "Field 'A' already exists in table 'T'."},
    {u"ALTER TABLE T ALTER COLUMN X INT", 3381},
    {u"ALTER TABLE T DROP COLUMN X", 3381},
    {u"ALTER TABLE Nowhere ADD A INT", 3376, "Table 'Nowhere' does not exist."},
    {u"DROP TABLE Nowhere", 3376},
    {u"DROP INDEX X ON T", 3372, "No such index 'X' on table 'T'."},
    {u"SELECT 1 / 0", 11, "Division by zero"},
    {u"SELECT 1 Mod 0", 11},
    {u"SELECT 1 Mod 0.4", 11},
    {u"SELECT -2147483648 \\ -1", 6},
    {u"SELECT 2147483648 \\ 1", 6},
    {u"SELECT 1 Mod -2147483649", 6},
    {u"SELECT CCur(1) + 1e15", 6},
    {u"SELECT CCur('922337203685477') + 1", 6},
    {u"SELECT CCur('900000000000000') * 2", 6},
    {u"SELECT 1e300 * 1e300", 6, "Overflow"},
    {u"SELECT 'x' + 1", 3464},
    {u"SELECT 5 = 'x'", 3464},
    {u"SELECT Chr(-1)", 3001},
    {u"SELECT Space(2000000000)", 3071},
    {u"SELECT CInt(40000)", 6},
    {u"SELECT (1", 3075},
    {u"SELECT 1 +", 3075},
    {u"SELECT [A", 3075},
    {u"SELECT 1 | 2", 3075},
    {u"SELECT 12abc", 3075},
};
INSTANTIATE_TEST_SUITE_P(Statements, SqlError, testing::ValuesIn(kErrors));

TEST_F(SqlError, DeepParenthesesAreRefused) {
    std::u16string sql = u"SELECT ";
    sql += std::u16string(5000, u'(') + u"1" + std::u16string(5000, u')');
    EXPECT_EQ(ErrorOf(sql), 3360);
    std::u16string nots = u"SELECT ";
    for (int i = 0; i < 5000; ++i)
        nots += u"NOT ";
    EXPECT_EQ(ErrorOf(nots + u"1"), 3360);
    EXPECT_EQ(ErrorOf(u"SELECT " + std::u16string(5000, u'-') + u"1"), 3360);
    std::u16string tests = u"SELECT 1";
    for (int i = 0; i < 5000; ++i)
        tests += u" IS NULL";
    EXPECT_EQ(ErrorOf(tests), 3360);
    EXPECT_EQ(ErrorOf(u"SELECT 1 FROM " + std::u16string(5000, u'(')), 3360);
}

TEST_F(SqlError, HundredLevelsPass) {
    const auto nested = [](std::size_t levels, std::u16string_view open) {
        std::u16string sql = u"SELECT ";
        for (std::size_t i = 0; i < levels; ++i)
            sql += open;
        return sql + u"1" + (open.back() == u'(' ? std::u16string(levels, u')') : std::u16string());
    };
    for (const std::u16string_view open : {u"(", u"Abs(", u"1 In (", u"- "}) {
        EXPECT_NE(Run(nested(100, open)).substr(0, 1), "#") << base::ToUtf8(open);
        EXPECT_EQ(ErrorOf(nested(101, open)), 3360) << base::ToUtf8(open);
    }
    EXPECT_EQ(Run(u"SELECT " + std::u16string(50, u'(') + u"- 1 + " + std::u16string(50, u'(') +
                  u"3" + std::u16string(100, u')')),
              "2");
}

TEST_F(SqlError, HundredSubqueriesPass) {
    const auto nested = [](std::size_t levels) {
        std::u16string sql = u"SELECT ";
        for (std::size_t i = 0; i < levels; ++i)
            sql += u"(SELECT ";
        return sql + u"1" + std::u16string(levels, u')');
    };
    EXPECT_EQ(Run(nested(100)), "1");
    EXPECT_EQ(ErrorOf(nested(101)), 3360);
}

TEST_F(SqlError, TestsOfTestsInParenthesesAreRefusedInTime) {
    std::u16string sql = u"1";
    for (int i = 0; i < 99; ++i) {
        sql = u"(" + sql + u")";
        for (int test = 0; test < 99; ++test)
            sql += u" Is Null";
    }
    EXPECT_EQ(ErrorOf(u"SELECT " + sql), 3360);
}

TEST_F(SqlError, LongChainsAreNoNesting) {
    std::u16string sql = u"SELECT 0";
    for (int i = 0; i < 20000; ++i)
        sql += u" + 1";
    EXPECT_EQ(Run(sql), "20000");
    sql = u"SELECT Len('a'";
    for (int i = 0; i < 20000; ++i)
        sql += u" & chr(39) & 'a'";
    EXPECT_EQ(Run(sql + u")"), "40001");
}

TEST_F(SqlError, EnormousTextsAreRefused) {
    EXPECT_EQ(ErrorOf(u"SELECT '" + std::u16string(17U << 20, u'x') + u"'"), 3360);
}

TEST_F(SqlError, TextsThatGrowBeyondMeasureAreRefused) {
    EXPECT_EQ(ErrorOf(u"SELECT Space(16000000) & Space(16000000)"), 3071);
    EXPECT_EQ(ErrorOf(u"SELECT Replace(Space(100000), ' ', Space(100000))"), 3071);
}

}  // namespace
