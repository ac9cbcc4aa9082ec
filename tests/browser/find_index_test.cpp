// What is found among the tables, and the thread that prepares it.
#include "browser/find_index.h"
#include "browser/find_indexer.h"
#include "browser/tree_fixture.h"
#include "support/qt_text.h"

#include <QtTest/QSignalSpy>

namespace browser {
namespace {

using test_support::S;

bool NeverStop() {
    return false;
}

class FindIndexTest : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        AddRow(
            S(u"DisplayName, FileName, Author, Company, Year, Version, TimesPlayed, Favorite"),
            S(u"'Attack', '/t/attack.vpt', 'Zoë Brückner', 'Kugelwerk', '1979', '2.0', 3, true"));
        AddRow(
            S(u"DisplayName, FileName, Author, Year, TimesPlayed, PinMame, FileDate, LastPlayed"),
            S(u"'Bob''s Taxi', '/t/taxi.vpt', 'Ann', 'about 1985?', 0, true, '5/6/2007', "
              u"'12/31/2003 11:00:00 PM'"));
        AddRow(S(u"DisplayName, FileName, Author"), S(u"'Comet', '/gone/comet.vpt', 'Bob'"));
    }
    // The first letters of the names of the found tables.
    std::string Find(const char16_t* typed) {
        const auto tables = std::make_shared<const TableSnapshot>(Snapshot());
        const auto index = FindIndex::Make(tables, NeverStop);
        std::string letters;
        for (const std::uint32_t table : index->Find(ParseFindQuery(S(typed)), is_missing))
            letters += tables->DisplayName(table)[0].toLatin1();
        return letters;
    }
    FindIndex::IsMissing is_missing = [](std::size_t table) { return table == 2; };
};

TEST_F(FindIndexTest, AllFieldsAreSearched) {
    EXPECT_EQ(Find(u"attack"), "A");
    EXPECT_EQ(Find(u"gone"), "C");
    EXPECT_EQ(Find(u"BRUCKNER"), "A");
    EXPECT_EQ(Find(u"kugel"), "A");
    EXPECT_EQ(Find(u"1985"), "B");
    EXPECT_EQ(Find(u"2.0"), "A");
    EXPECT_EQ(Find(u"bob"), "BC");
    EXPECT_EQ(Find(u".vpt"), "ABC");
    EXPECT_EQ(Find(u"nowhere"), "");
}

TEST_F(FindIndexTest, EveryWordMustBeThere) {
    EXPECT_EQ(Find(u"bob taxi"), "B");
    EXPECT_EQ(Find(u"taxi bob"), "B");
    EXPECT_EQ(Find(u"bob attack"), "");
    EXPECT_EQ(Find(u"bob -taxi"), "C");
    EXPECT_EQ(Find(u"-bob"), "A");
    EXPECT_EQ(Find(u"\"bob's taxi\""), "B");
    EXPECT_EQ(Find(u"\"taxi bob\""), "");
}

TEST_F(FindIndexTest, AFieldIsSearchedAlone) {
    EXPECT_EQ(Find(u"author:bob"), "C");
    EXPECT_EQ(Find(u"name:bob"), "B");
    EXPECT_EQ(Find(u"name:taxi"), "B");
    EXPECT_EQ(Find(u"file:taxi"), "B");
    EXPECT_EQ(Find(u"author:taxi"), "");
    EXPECT_EQ(Find(u"-author:bob"), "AB");
    EXPECT_EQ(Find(u"company:kugelwerk"), "A");
    EXPECT_EQ(Find(u"version:2"), "A");
    EXPECT_EQ(Find(u"year:19"), "AB");
}

TEST_F(FindIndexTest, ATextDoesNotReachIntoTheNextField) {
    EXPECT_EQ(Find(u"comet/gone"), "");
    EXPECT_EQ(Find(u"\"comet /gone\""), "");
    EXPECT_EQ(Find(u"comet\x1f/gone"), "");
}

TEST_F(FindIndexTest, NumbersAreCompared) {
    EXPECT_EQ(Find(u"year:>1979"), "B");
    EXPECT_EQ(Find(u"year:>=1979"), "AB");
    EXPECT_EQ(Find(u"year:<1985"), "A");
    EXPECT_EQ(Find(u"year:1980..1989"), "B");
    EXPECT_EQ(Find(u"-year:>1979"), "AC");
    EXPECT_EQ(Find(u"times:0"), "BC");
    EXPECT_EQ(Find(u"times:>2"), "A");
}

TEST_F(FindIndexTest, DatesAreCompared) {
    EXPECT_EQ(Find(u"filedate:2007-05"), "B");
    EXPECT_EQ(Find(u"filedate:>2007"), "");
    EXPECT_EQ(Find(u"played:2003-12-31"), "B");
    EXPECT_EQ(Find(u"played:>=2004"), "");
    EXPECT_EQ(Find(u"-filedate:2007"), "AC");
}

TEST_F(FindIndexTest, FlagsAreAsked) {
    EXPECT_EQ(Find(u"is:favourite"), "A");
    EXPECT_EQ(Find(u"is:pinmame"), "B");
    EXPECT_EQ(Find(u"is:played"), "A");
    EXPECT_EQ(Find(u"is:unplayed"), "BC");
    EXPECT_EQ(Find(u"is:missing"), "C");
    EXPECT_EQ(Find(u"-is:missing is:unplayed"), "B");
}

TEST_F(FindIndexTest, AnEmptyQuestionFindsNothing) {
    EXPECT_EQ(Find(u""), "");
    EXPECT_EQ(Find(u"author:"), "");
    EXPECT_EQ(Find(u"bob is:gone"), "");
}

// Texts over many blocks of memory: each table is found at its place.
TEST_F(FindIndexTest, EveryOneOfManyTablesIsFound) {
    constexpr int kTables = 3000;
    const QString padding(250, u'x');
    for (int i = 0; i < kTables; ++i)
        AddRow(S(u"DisplayName, FileName, Author"),
               QStringLiteral("'Z%1', '%2', '%2'").arg(i, 5, 10, QLatin1Char('0')).arg(padding));
    const auto tables = std::make_shared<const TableSnapshot>(Snapshot());
    const auto index = FindIndex::Make(tables, NeverStop);
    for (int i = 0; i < kTables; ++i) {
        const QString name = QStringLiteral("z%1").arg(i, 5, 10, QLatin1Char('0'));
        const auto found = index->Find(ParseFindQuery(name), is_missing);
        ASSERT_EQ(found, std::vector<std::uint32_t>({static_cast<std::uint32_t>(i) + 3}));
    }
    EXPECT_EQ(index->Find(ParseFindQuery(padding), is_missing).size(), std::size_t{kTables});
}

TEST_F(FindIndexTest, TheWorkCanBeStopped) {
    const auto tables = std::make_shared<const TableSnapshot>(Snapshot());
    int asked = 0;
    EXPECT_EQ(FindIndex::Make(tables, [&] { return ++asked == 2; }), nullptr);
    EXPECT_EQ(asked, 2);
}

TEST_F(FindIndexTest, AnEmptyTreeHasNothing) {
    const auto index = FindIndex::Make(std::make_shared<const TableSnapshot>(), NeverStop);
    EXPECT_TRUE(index->Find(ParseFindQuery(u"x"), is_missing).empty());
    EXPECT_TRUE(index->Find(ParseFindQuery(u"-x"), is_missing).empty());
}

TEST_F(FindIndexTest, TheIndexComesByASignal) {
    FindIndexer indexer;
    QSignalSpy ready(&indexer, &FindIndexer::Ready);
    indexer.Make(std::make_shared<const TableSnapshot>(Snapshot()));
    EXPECT_TRUE(indexer.is_at_work());
    EXPECT_EQ(indexer.index(), nullptr);
    ASSERT_TRUE(ready.wait(20'000));
    ASSERT_NE(indexer.index(), nullptr);
    EXPECT_EQ(indexer.index()->Find(ParseFindQuery(u"comet"), is_missing).size(), 1U);
    indexer.Forget();
    EXPECT_EQ(indexer.index(), nullptr);
}

TEST_F(FindIndexTest, OnlyTheLastOrderCounts) {
    FindIndexer indexer;
    QSignalSpy ready(&indexer, &FindIndexer::Ready);
    const auto tables = std::make_shared<const TableSnapshot>(Snapshot());
    for (int i = 0; i < 50; ++i)
        indexer.Make(tables);
    indexer.Make(std::make_shared<const TableSnapshot>());
    ASSERT_TRUE(ready.wait(20'000));
    EXPECT_TRUE(indexer.index()->Find(ParseFindQuery(u"comet"), is_missing).empty());
    indexer.Make(tables);
    indexer.Forget();
    QCoreApplication::processEvents();
    EXPECT_EQ(ready.count(), 1);
}

}  // namespace
}  // namespace browser
