#include "catalogue/selection.h"

#include "catalogue/field_text.h"
#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"
#include "support/qt_text.h"

namespace catalogue {
namespace {

using test_support::S;

struct QueryCase {
    const char* name;
    const char16_t* key;
    const char16_t* comparison;
    const char16_t* value;
    const char16_t* text;
};

class FilterQueryTest : public testing::TestWithParam<QueryCase> {};

TEST_P(FilterQueryTest, IsComposed) {
    const QueryCase& query = GetParam();
    EXPECT_EQ(FilterQueryText(S(query.key), S(query.value), S(query.comparison)), S(query.text));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, FilterQueryTest,
    testing::Values(
        QueryCase{"All", u"All", u"=", u"", u"Select * from Tables"},
        QueryCase{"PinMame", u"PinMame", u"=", u"", u"Select * from Tables where pinmame = true"},
        QueryCase{"Favorites", u"Favorites", u"=", u"",
                  u"Select * from Tables where Favorite = true"},
        QueryCase{"VpOnly", u"VP Only", u"=", u"", u"Select * from Tables where pinmame = false"},
        QueryCase{"Author", u"Author", u"=", u"Bob", u"Select * from Tables Where Author = 'Bob'"},
        QueryCase{"Company", u"Company", u"<>", u"Bally",
                  u"Select * from Tables Where Company <> 'Bally'"},
        QueryCase{"YearComparesAsText", u"Year", u">", u"1990",
                  u"Select * from Tables Where Year > '1990'"},
        QueryCase{"FileDate", u"FileDate", u"<", u"1/2/2003",
                  u"Select * from Tables Where(([Tables]![FileDate]<#1/2/2003#))"},
        QueryCase{"DateAdded", u"DateAdded", u"=", u"20-Nov-26",
                  u"Select * from Tables Where(([Tables]![DateAdded]=#20-Nov-26#))"},
        QueryCase{"TimesPlayedIsANumber", u"TimesPlayed", u"=", u"0",
                  u"Select * from Tables Where TimesPlayed = 0"},
        QueryCase{"UnknownKey", u"Colour", u"=", u"red", u""}),
    [](const auto& variant) { return std::string(variant.param.name); });

TEST(OrderClauseTest, EachCaptionHasItsColumn) {
    const std::pair<const char16_t*, const char16_t*> columns[] = {
        {u"Table Name", u"DisplayName"}, {u"Year", u"Year"},
        {u"Author", u"Author"},          {u"Company", u"Company"},
        {u"Date Added", u"DateAdded"},   {u"Times Played", u"TimesPlayed"},
    };
    for (const auto& [caption, column] : columns)
        EXPECT_EQ(ComposeOrderClause(S(caption), S(u"Desc")),
                  S(u" Order By ") + S(column) + S(u" Desc"));
}

TEST(OrderClauseTest, AnUnknownCaptionHasNoColumn) {
    EXPECT_EQ(ComposeOrderClause(S(u"Size"), S(u"Asc")), S(u" Order By  Asc"));
}

TEST(FilterValuesQueryTest, TextColumnsLeaveEmptyValuesOut) {
    EXPECT_EQ(FilterValuesQuery(S(u"Author")),
              S(u"Select distinct Author from Tables Where Author <> NULL And Author <> ''"));
    EXPECT_EQ(FilterValuesQuery(S(u"DateAdded")), S(u"Select distinct DateAdded from Tables"));
}

TEST(InvalidFilterValueTest, AFileDateMustBeADate) {
    EXPECT_EQ(InvalidFilterValue(S(u"FileDate"), S(u"soon")), S(u"Please enter a valid date"));
    EXPECT_EQ(InvalidFilterValue(S(u"FileDate"), S(u"")), S(u"Please enter a valid date"));
    EXPECT_EQ(InvalidFilterValue(S(u"FileDate"), S(u"20-Nov-26")), std::nullopt);
}

TEST(InvalidFilterValueTest, TimesPlayedMustBeANumber) {
    EXPECT_EQ(InvalidFilterValue(S(u"TimesPlayed"), S(u"often")),
              S(u"Please enter a valid number"));
    EXPECT_EQ(InvalidFilterValue(S(u"TimesPlayed"), S(u"12")), std::nullopt);
}

TEST(InvalidFilterValueTest, OtherColumnsTakeAnything) {
    for (const char16_t* key : {u"Author", u"Company", u"Year", u"DateAdded"})
        EXPECT_EQ(InvalidFilterValue(S(key), S(u"soon")), std::nullopt);
}

class SelectionTest : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        Add(u"'Alpha', 'a.vpt', 'Bob', 'Bally', '1990', true, false, '1/2/2003', 0");
        Add(u"'Beta', 'b.vpt', 'bob', 'Stern', '1991', false, true, '5/6/2007 3:04:05 PM', 7");
        Add(u"'Gamma', 'c.vpt', 'O''Hara|x', '', '900', false, false, NULL, 12");
    }
    void Add(const char16_t* fields) {
        Execute(QStringLiteral("INSERT INTO Tables (DisplayName, FileName, Author, Company, Year, "
                               "PinMame, Favorite, FileDate, TimesPlayed) VALUES (") +
                S(fields) + QStringLiteral(")"));
    }
    // Display names of the selection, by name; the text of the failure when there is one.
    QString Names(const char16_t* key, const char16_t* value, const char16_t* comparison) {
        const auto query =
            ComposeFilterQuery(*connection, S(key), QuoteSqlExpr(S(value)), S(comparison));
        if (!query.ok()) return S(u"failed");
        if (*query == u"0") return S(u"0");
        jet::Recordset rows;
        const QString ordered = *query + ComposeOrderClause(S(u"Table Name"), S(u"Asc"));
        const base::Status opened = rows.Open(ordered.toStdU16String(), *connection,
                                              jet::CursorType::kKeyset, jet::LockType::kOptimistic);
        if (!opened.ok()) return QString::fromStdString(opened.message());
        QStringList names;
        for (; !rows.Eof(); rows.MoveNext().Ignore())
            names.append(FieldText(rows, u"DisplayName").value());
        return names.join(u' ');
    }
};

TEST_F(SelectionTest, FixedFiltersSelectByTheirFlags) {
    EXPECT_EQ(Names(u"All", u"", u"="), S(u"Alpha Beta Gamma"));
    EXPECT_EQ(Names(u"PinMame", u"", u"="), S(u"Alpha"));
    EXPECT_EQ(Names(u"Favorites", u"", u"="), S(u"Beta"));
    EXPECT_EQ(Names(u"VP Only", u"", u"="), S(u"Beta Gamma"));
}

TEST_F(SelectionTest, TextsCompareWithoutRegardToCase) {
    EXPECT_EQ(Names(u"Author", u"BOB", u"="), S(u"Alpha Beta"));
}

TEST_F(SelectionTest, YearsCompareAsText) {
    EXPECT_EQ(Names(u"Year", u"1990", u">"), S(u"Beta Gamma"));
}

TEST_F(SelectionTest, AnApostropheAndABarFindTheirRow) {
    EXPECT_EQ(Names(u"Author", u"O'Hara|x", u"="), S(u"Gamma"));
}

TEST_F(SelectionTest, DatesCompareToTheSecond) {
    EXPECT_EQ(Names(u"FileDate", u"5/6/2007 3:04:05 PM", u"="), S(u"Beta"));
    EXPECT_EQ(Names(u"FileDate", u"2-Jan-03", u"="), S(u"Alpha"));
    EXPECT_EQ(Names(u"FileDate", u"1/1/2004", u">"), S(u"Beta"));
    EXPECT_EQ(Names(u"FileDate", u"1/1/2004", u"<>"), S(u"Alpha Beta"));
}

TEST_F(SelectionTest, NeverPlayedTablesAreFound) {
    EXPECT_EQ(Names(u"TimesPlayed", u"0", u"="), S(u"Alpha"));
    EXPECT_EQ(Names(u"TimesPlayed", u"6", u">"), S(u"Beta Gamma"));
}

TEST_F(SelectionTest, NoMatchIsTheTextZero) {
    EXPECT_EQ(Names(u"Author", u"nobody", u"="), S(u"0"));
}

TEST_F(SelectionTest, AnImpossibleQueryIsAnError) {
    EXPECT_EQ(Names(u"TimesPlayed", u"often", u"="), S(u"failed"));
    EXPECT_EQ(Names(u"DateAdded", u"some day", u"="), S(u"failed"));
    EXPECT_EQ(Names(u"Colour", u"red", u"="), S(u"failed"));
}

TEST_F(SelectionTest, ValuesComeOutSortedOnceEach) {
    const auto authors = FilterValues(*connection, S(u"Author"));
    ASSERT_TRUE(authors.ok()) << authors.status().message();
    ASSERT_EQ(authors->size(), 2);  // one spelling of Bob
    EXPECT_EQ(authors->at(0).toLower(), S(u"bob"));
    EXPECT_EQ(authors->at(1), S(u"O'Hara|x"));
}

TEST_F(SelectionTest, EmptyTextsAreNoValues) {
    EXPECT_EQ(FilterValues(*connection, S(u"Company")).value_or({}),
              QStringList({S(u"Bally"), S(u"Stern")}));
}

TEST_F(SelectionTest, ANullDateIsAnEmptyValueAndComesFirst) {
    EXPECT_EQ(FilterValues(*connection, S(u"FileDate")).value_or({}),
              QStringList({S(u""), S(u"1/2/2003"), S(u"5/6/2007 3:04:05 PM")}));
}

TEST_F(SelectionTest, NumbersAreSortedAsNumbers) {
    EXPECT_EQ(FilterValues(*connection, S(u"TimesPlayed")).value_or({}),
              QStringList({S(u"0"), S(u"7"), S(u"12")}));
}

}  // namespace
}  // namespace catalogue
