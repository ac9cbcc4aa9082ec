// Validation rules by their texts: which values they let through.
#include "jet/sql/statements/rule_maker.h"

#include "jet/sql/sql_fixture.h"

namespace {

using jet::ColumnType;
using jet::Value;
using test_support::SqlFixture;

double Noon() {
    return jet::DaysFromCivil({2026, 11, 20, 12, 0, 0});
}

jet::TableDesign Design() {
    jet::TableDesign design;
    design.name = u"Games";
    for (const auto& [name, type] : {std::pair(u"Name", ColumnType::kText),
                                     {u"Year", ColumnType::kLong},
                                     {u"Added", ColumnType::kDate},
                                     {u"Sold", ColumnType::kLong}}) {
        jet::ColumnDesign column;
        column.name = name;
        column.type = type;
        column.size = type == ColumnType::kText ? 50 : 0;
        design.columns.push_back(column);
    }
    return design;
}

// Whether the rule, set for `column`, lets the value through.
bool Allows(std::u16string rule, std::size_t column, Value value) {
    jet::TableDesign design = Design();
    design.columns[column].validation_rule = std::move(rule);
    const auto rules = jet::sql::RuleMaker(Noon).Make(design);
    EXPECT_TRUE(rules.ok()) << rules.status().message();
    if (!rules.ok()) return false;
    std::vector<Value> row(design.columns.size());
    row[column] = std::move(value);
    const base::Status checked = (*rules)->Check(row, std::vector<bool>(row.size(), true));
    EXPECT_TRUE(checked.ok() || checked.number() == 3317) << checked.message();
    return checked.ok();
}

struct Case {
    const char16_t* rule;
    std::vector<std::int32_t> allowed;
    std::vector<std::int32_t> refused;
};

TEST(RuleMakerTest, AComparisonWithoutALeftSideMeansTheColumn) {
    const Case cases[] = {
        {u">0", {1, 99}, {0, -1}},
        {u"<>0 And <100", {1, 99, -5}, {0, 100}},
        {u">= 1980 and <= 1999 or =5", {1980, 1999, 5}, {1979, 2000}},
        {u"Between 1 And 5", {1, 5}, {0, 6}},
        {u"Not Between 1 And 5", {0, 6}, {1, 5}},
        {u"Between 1 And 5 And <>3", {1, 5}, {3}},
        {u"In (1, 2, 3)", {1, 3}, {0, 4}},
        {u"Not In (1, 2, 3)", {0, 4}, {1, 3}},
        {u"(>0 And <5) Or >10", {1, 4, 11}, {0, 5, 10}},
        {u"Not >5", {5}, {6}},
        {u"Not (>5 Or <0)", {0, 5}, {6, -1}},
        {u"<2*5+1", {10}, {11}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(base::ToUtf8(test.rule));
        for (const std::int32_t value : test.allowed)
            EXPECT_TRUE(Allows(test.rule, 1, Value::Long(value))) << value;
        for (const std::int32_t value : test.refused)
            EXPECT_FALSE(Allows(test.rule, 1, Value::Long(value))) << value;
    }
}

TEST(RuleMakerTest, AValueAloneIsWhatTheColumnEquals) {
    EXPECT_TRUE(Allows(u"\"a\" Or \"b\"", 0, Value::Text(u"B")));
    EXPECT_FALSE(Allows(u"\"a\" Or \"b\"", 0, Value::Text(u"c")));
    EXPECT_TRUE(Allows(u"5", 1, Value::Long(5)));
    EXPECT_FALSE(Allows(u"5 Or 6 Or >100", 1, Value::Long(7)));
    EXPECT_TRUE(Allows(u"5 Or 6 Or >100", 1, Value::Long(101)));
    EXPECT_FALSE(Allows(u"Not \"a\"", 0, Value::Text(u"a")));
    EXPECT_TRUE(Allows(u"Not \"a\"", 0, Value::Text(u"b")));
    EXPECT_TRUE(Allows(u"\"a\" & \"b\"", 0, Value::Text(u"ab")));
}

TEST(RuleMakerTest, LikeHasTheWildcardsOfDesigns) {
    EXPECT_TRUE(Allows(u"Like \"A*\"", 0, Value::Text(u"abc")));
    EXPECT_FALSE(Allows(u"Like \"A*\"", 0, Value::Text(u"bc")));
    EXPECT_TRUE(Allows(u"Like \"##-?[!a-c]\"", 0, Value::Text(u"12-xd")));
    EXPECT_FALSE(Allows(u"Like \"##-?[!a-c]\"", 0, Value::Text(u"1x-xd")));
    EXPECT_FALSE(Allows(u"Like \"##-?[!a-c]\"", 0, Value::Text(u"12-xb")));
    EXPECT_TRUE(Allows(u"Like \"100%[*]\"", 0, Value::Text(u"100%*")));
    EXPECT_FALSE(Allows(u"Like \"100%*\"", 0, Value::Text(u"1000")));
    EXPECT_FALSE(Allows(u"Like \"a_c\"", 0, Value::Text(u"abc")));
    EXPECT_TRUE(Allows(u"Not Like \"A*\"", 0, Value::Text(u"bc")));
    EXPECT_TRUE(Allows(u"ALike \"a_%\"", 0, Value::Text(u"abc")));
    EXPECT_TRUE(Allows(u"Like \"A\" & \"*\"", 0, Value::Text(u"abc")));
    EXPECT_FALSE(Allows(u"Like \"A\" & \"*\"", 0, Value::Text(u"b")));
}

TEST(RuleMakerTest, NullPassesUnlessItIsAskedFor) {
    EXPECT_TRUE(Allows(u">0", 1, Value::Null()));
    EXPECT_TRUE(Allows(u"Like \"A*\"", 0, Value::Null()));
    EXPECT_FALSE(Allows(u"Is Not Null", 1, Value::Null()));
    EXPECT_FALSE(Allows(u"Is Not Null And >0", 1, Value::Null()));
    EXPECT_TRUE(Allows(u">0 Or Is Null", 1, Value::Null()));
    EXPECT_TRUE(Allows(u"Is Null", 1, Value::Null()));
}

TEST(RuleMakerTest, TheColumnMayBeNamedAndFunctionsCalled) {
    EXPECT_TRUE(Allows(u"[Year] > 0", 1, Value::Long(1)));
    EXPECT_FALSE(Allows(u"[Games]![Year] > 0", 1, Value::Long(0)));
    EXPECT_FALSE(Allows(u"Len([Name]) > 2", 0, Value::Text(u"ab")));
    EXPECT_TRUE(Allows(u"IsNumeric([Name])", 0, Value::Text(u"12")));
    EXPECT_FALSE(Allows(u"IsNumeric([Name])", 0, Value::Text(u"x")));
    EXPECT_TRUE(Allows(u"<=Date()", 2, Value::DateTime(Noon() - 1)));
    EXPECT_FALSE(Allows(u"<=Date()", 2, Value::DateTime(Noon() + 1)));
    EXPECT_TRUE(Allows(u">#1/1/1980# And <#12/31/2030#", 2, Value::DateTime(Noon())));
    EXPECT_FALSE(Allows(u">#1/1/1980# And <#12/31/2030#", 2, Value::DateTime(1)));
}

TEST(RuleMakerTest, WhatIsNotUnderstoodIsAnErrorThatNamesTheRule) {
    for (const std::u16string rule :
         {u">", u"Nz([Year], 0) > 0", u"[Nobody] > 0", u"> 0 0", u"Count(*) > 0", u"",
          u"In (SELECT ID FROM Games)", u"> (SELECT Max(ID) FROM Games)", u"@@IDENTITY > 0",
          u"[Forms]![Main]![Text1] > 5", u"[Others].[Year] > 0"}) {
        jet::TableDesign design = Design();
        design.columns[1].validation_rule = rule;
        const auto rules = jet::sql::RuleMaker(Noon).Make(design);
        ASSERT_FALSE(rules.ok()) << base::ToUtf8(rule);
        EXPECT_NE(
            rules.status().message().find("'" + base::ToUtf8(rule) + "' set for 'Games.Year'"),
            std::string::npos)
            << rules.status().message();
    }
    const std::u16string deep(5000, u'(');
    jet::TableDesign design = Design();
    design.validation_rule = deep + u"1" + std::u16string(5000, u')');
    EXPECT_FALSE(jet::sql::RuleMaker(Noon).Make(design).ok());
}

class RuledTable : public SqlFixture {
protected:
    void SetUp() override {
        Run(u"CREATE TABLE Games (Name TEXT(50), [Year] LONG, Added DATETIME, Sold LONG DEFAULT "
            u"7)");
        jet::TableDesign& design = Table(u"Games").mutable_design();
        design.columns[1].validation_rule = u">1900";
        design.columns[1].validation_text = u"No such year.";
        design.columns[3].validation_rule = u">0";
        design.validation_rule = u"[Sold] < [Year] Or [Name] = 'x'";
    }
};

TEST_F(RuledTable, InsertsAreTested) {
    EXPECT_EQ(Run(u"INSERT INTO Games (Name, [Year]) VALUES ('a', 1980)"), "1");
    EXPECT_EQ(Run(u"INSERT INTO Games (Name, [Year]) VALUES ('b', 1900)"), "#3317: No such year.");
    EXPECT_EQ(Run(u"INSERT INTO Games (Sold) VALUES (0)"),
              "#3317: One or more values are prohibited by the validation rule '>0' set for "
              "'Games.Sold'. Enter a value that the expression for this field can accept.");
    EXPECT_EQ(Run(u"INSERT INTO Games (Name, [Year], Sold) VALUES ('c', 1980, 1981)"),
              "#3317: One or more values are prohibited by the validation rule '[Sold] < [Year] Or "
              "[Name] = 'x'' set for 'Games'. Enter a value that the expression for this field can "
              "accept.");
    EXPECT_EQ(Run(u"INSERT INTO Games (Name, [Year], Sold) VALUES ('x', 1980, 1981)"), "1");
    EXPECT_EQ(Run(u"SELECT Name FROM Games"), "a|x");
}

TEST_F(RuledTable, UpdatesAreTestedWholeOrNotAtAll) {
    Run(u"INSERT INTO Games (Name, [Year], Sold) VALUES ('a', 1980, 10)");
    Run(u"INSERT INTO Games (Name, [Year], Sold) VALUES ('b', 1990, 20)");
    EXPECT_EQ(Run(u"UPDATE Games SET Sold = Sold - 10"),
              "#3317: One or more values are prohibited by the validation rule '>0' set for "
              "'Games.Sold'. Enter a value that the expression for this field can accept.");
    EXPECT_EQ(Run(u"UPDATE Games SET Sold = Sold + 1975"), "#3317: One or more values are "
                                                           "prohibited by the validation rule "
                                                           "'[Sold] < [Year] Or [Name] = 'x'' set "
                                                           "for 'Games'. Enter a value that the "
                                                           "expression for this field can accept.");
    EXPECT_EQ(Run(u"SELECT Sold FROM Games"), "10|20");
    EXPECT_EQ(Run(u"UPDATE Games SET Sold = Null"), "2");
}

TEST_F(RuledTable, ADefaultIsTestedToo) {
    Table(u"Games").mutable_design().columns[3].default_value = u"=0";
    EXPECT_EQ(ErrorOf(u"INSERT INTO Games (Name) VALUES ('a')"), 3317);
    EXPECT_EQ(Run(u"INSERT INTO Games (Name, Sold) VALUES ('a', Null)"), "1");
}

TEST_F(RuledTable, AColumnThatStaysIsNotTestedAgain) {
    Run(u"INSERT INTO Games (Name, [Year], Sold) VALUES ('x', 1980, 10)");
    Table(u"Games").mutable_design().columns[1].validation_rule = u">2000";
    EXPECT_EQ(Run(u"UPDATE Games SET Sold = 11"), "1");
    EXPECT_EQ(Run(u"UPDATE Games SET [Year] = 1981"), "#3317: No such year.");
}

TEST_F(RuledTable, ARecordsetIsTestedWhenItIsUpdated) {
    Run(u"INSERT INTO Games (Name, [Year], Sold) VALUES ('x', 1980, 10)");
    jet::Recordset rows;
    ASSERT_TRUE(rows.Open(u"SELECT * FROM Games", *connection, jet::CursorType::kKeyset,
                          jet::LockType::kOptimistic)
                    .ok());
    ASSERT_TRUE(rows.SetField(u"Year", Value::Long(5)).ok());
    EXPECT_EQ(rows.Update().number(), 3317);
    rows.CancelUpdate();
    EXPECT_EQ(Run(u"SELECT [Year] FROM Games"), "1980");
}

}  // namespace
