#include "browser/tree_query.h"

#include "browser/tree_fixture.h"
#include "catalogue/field_text.h"
#include "support/qt_text.h"

namespace browser {
namespace {

using test_support::S;

Selection All() {
    Selection selection;
    selection.filter_key = S(u"All");
    selection.order_caption = S(u"Table Name");
    selection.direction = S(u"Asc");
    return selection;
}

Selection ByValue(const char16_t* key, const char16_t* comparison, const char16_t* value) {
    Selection selection = All();
    selection.filter_key = S(key);
    selection.comparison = S(comparison);
    selection.filter_value = S(value);
    selection.takes_value = true;
    return selection;
}

class TreeQueryTest : public TreeFixture {
protected:
    QStringList Names(const Selection& selection) {
        auto rows = OpenSelection(*connection, selection);
        if (!rows.ok()) return {S(u"<error>")};
        if (!*rows) return {S(u"<none>")};
        QStringList names;
        for (; !(*rows)->Eof(); (*rows)->MoveNext().Ignore())
            names.append(catalogue::FieldText(**rows, u"DisplayName").value());
        return names;
    }
};

TEST_F(TreeQueryTest, RowsComeInTheChosenOrder) {
    for (const char16_t* name : {u"b", u"C", u"a"})
        AddTable(S(name));
    Selection selection = All();
    EXPECT_EQ(Names(selection), QStringList({S(u"a"), S(u"b"), S(u"C")}));
    selection.direction = S(u"Desc");
    EXPECT_EQ(Names(selection), QStringList({S(u"C"), S(u"b"), S(u"a")}));
}

TEST_F(TreeQueryTest, ANumberColumnIsOrderedAsNumbers) {
    AddRow(S(u"DisplayName, TimesPlayed"), S(u"'ten', 10"));
    AddRow(S(u"DisplayName, TimesPlayed"), S(u"'nine', 9"));
    Selection selection = All();
    selection.order_caption = S(u"Times Played");
    EXPECT_EQ(Names(selection), QStringList({S(u"nine"), S(u"ten")}));
}

TEST_F(TreeQueryTest, NothingThatMatchesIsNotAnError) {
    EXPECT_EQ(Names(All()), QStringList({S(u"<none>")}));
}

TEST_F(TreeQueryTest, AnUnknownOrderIsAnError) {
    AddTable(S(u"a"));
    Selection selection = All();
    selection.order_caption = S(u"Size");
    EXPECT_EQ(Names(selection), QStringList({S(u"<error>")}));
}

TEST_F(TreeQueryTest, AValueWithAQuoteFindsItsRow) {
    AddRow(S(u"DisplayName, Author"), S(u"'t', 'O''Hara'"));
    EXPECT_EQ(Names(ByValue(u"Author", u"=", u"O'Hara")), QStringList({S(u"t")}));
}

TEST_F(TreeQueryTest, AQuoteInAValueIsNeverDoubled) {
    AddRow(S(u"DisplayName, Author"), S(u"'t', 'O''Hara | Sons'"));
    const auto sql =
        catalogue::SelectionSql(*connection, ByValue(u"Author", u"=", u"O'Hara | Sons"));
    ASSERT_TRUE(sql.ok() && *sql);
    EXPECT_EQ((*sql)->toStdString(),
              "Select * from Tables Where Author = 'O' & chr(39) & 'Hara ' & chr(124) & ' Sons'"
              " Order By DisplayName Asc");
}

TEST_F(TreeQueryTest, TheCountIsKnownAtTheLastRow) {
    for (const char16_t* name : {u"a", u"b", u"c"})
        AddTable(S(name));
    auto rows = OpenSelection(*connection, All());
    ASSERT_TRUE(rows.ok() && *rows);
    ASSERT_TRUE((*rows)->MoveLast().ok());
    EXPECT_EQ((*rows)->RecordCount(), 3);
}

TEST(WrongValueTest, OnlyAShownValueIsLookedAt) {
    Selection selection = ByValue(u"FileDate", u"=", u"soon");
    EXPECT_EQ(WrongValue(selection), S(u"Please enter a valid date"));
    selection.takes_value = false;
    EXPECT_EQ(WrongValue(selection), std::nullopt);
}

TEST(CountTextTest, EndsInTwoBlanks) {
    EXPECT_EQ(CountText(12), S(u"12 Tables in list.  "));
    EXPECT_EQ(CountText(100'000), S(u"100000 Tables in list.  "));
}

TEST(RootTextTest, NamesTheComparisonWhenThereIsOne) {
    EXPECT_EQ(RootText(S(u"VPinMAME"), All()), S(u"VPinMAME"));
    EXPECT_EQ(RootText(S(u"Author"), ByValue(u"Author", u"=", u"Bob")), S(u"Author = Bob"));
}

}  // namespace
}  // namespace browser
