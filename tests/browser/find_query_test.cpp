// What is typed into the Find field, and how texts are compared.
#include "browser/find_fold.h"
#include "browser/find_query.h"
#include "support/qt_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace browser {
namespace {

using test_support::S;

std::string Text(const FindTerm& term) {
    return (term.excluded ? "-" : "") + term.text +
           (term.field ? "@" + std::to_string(static_cast<int>(*term.field)) : "");
}

// The texts of a query that has nothing else: "-" before excluded ones, "@field" behind.
std::vector<std::string> Texts(const char16_t* typed) {
    std::vector<std::string> texts;
    const FindQuery query = ParseFindQuery(S(typed));
    EXPECT_EQ(query.not_understood.toStdString(), "");
    for (const FindTerm& term : query.terms)
        texts.push_back(Text(term));
    return texts;
}

using Strings = std::vector<std::string>;

// The only term of a query.
FindTerm Only(const char16_t* typed) {
    const FindQuery query = ParseFindQuery(S(typed));
    EXPECT_EQ(query.terms.size(), 1U) << S(typed).toStdString();
    return query.terms.empty() ? FindTerm() : query.terms[0];
}

// "from to"; an open end is "-".
std::string Range(const char16_t* typed) {
    const FindRange range = Only(typed).range;
    const auto word = [](double value) {
        return std::isinf(value) ? std::string("-") : std::to_string(static_cast<long long>(value));
    };
    return word(range.from) + " " + word(range.to);
}

bool AsksForNothing(const char16_t* typed) {
    const FindQuery query = ParseFindQuery(S(typed));
    return query.terms.empty() && query.not_understood.isEmpty() && !query.asks_for_something();
}

std::string NotUnderstood(const char16_t* typed) {
    const FindQuery query = ParseFindQuery(S(typed));
    EXPECT_FALSE(query.asks_for_something());
    return query.not_understood.toStdString();
}

TEST(FindFoldTest, CaseAndAccentsDoNotCount) {
    EXPECT_EQ(Folded(u"TAXI 2"), "taxi 2");
    EXPECT_EQ(Folded(u"Zoë BRÜCKNER"), "zoe bruckner");
    EXPECT_EQ(Folded(u"Zoe\u0308"), "zoe");
    EXPECT_EQ(Folded(u"Søren Łódź Æon"), "soren lodz aeon");
    EXPECT_EQ(Folded(u"Straße"), "strasse");
    EXPECT_EQ(Folded(u"ΣΊΣΥΦΟΣ"), Folded(u"σίσυφος"));
    EXPECT_EQ(Folded(u"ЁЛКА"), Folded(u"елка"));
    EXPECT_EQ(Folded(u"\uFF34axi"), "taxi");  // full width
}

TEST(FindFoldTest, NoControlCharacterIsLeft) {
    EXPECT_EQ(Folded(u"a\tb\nc\x1f"
                     u"d\x7f"),
              "a b c d ");
    EXPECT_EQ(Folded(u"é\x1f\u0085é"), "e  e");
    EXPECT_EQ(Folded({}), "");
}

TEST(FindFoldTest, HalfASurrogatePairIsNoMistake) {
    const std::string folded = Folded(QStringView(u"a\xd800"
                                                  u"b"));
    EXPECT_EQ(folded.front(), 'a');
    EXPECT_EQ(folded.back(), 'b');
}

TEST(FindQueryTest, WordsAreAllWanted) {
    EXPECT_EQ(Texts(u"taxi"), Strings({"taxi"}));
    EXPECT_EQ(Texts(u"  Black   KNIGHT "), Strings({"black", "knight"}));
    EXPECT_TRUE(AsksForNothing(u""));
    EXPECT_TRUE(AsksForNothing(u"   "));
}

TEST(FindQueryTest, QuotesKeepSpaces) {
    EXPECT_EQ(Texts(u"\"black knight\" 2"), Strings({"black knight", "2"}));
    EXPECT_EQ(Texts(u"author:\"Some One\""), Strings({"some one@2"}));
    EXPECT_EQ(Texts(u"\"not closed yet"), Strings({"not closed yet"}));
    EXPECT_EQ(Texts(u"5\"ball"), Strings({"5\"ball"}));
    EXPECT_EQ(Texts(u"\"-word\" \"is:missing\""), Strings({"-word", "is:missing"}));
    EXPECT_TRUE(AsksForNothing(u"\""));
    EXPECT_TRUE(AsksForNothing(u"\"\""));
}

TEST(FindQueryTest, AMinusExcludes) {
    EXPECT_EQ(Texts(u"-taxi"), Strings({"-taxi"}));
    EXPECT_TRUE(Only(u"-\"two words\"").excluded);
    EXPECT_TRUE(Only(u"-author:bob").excluded);
    EXPECT_TRUE(Only(u"-is:missing").excluded);
    EXPECT_FALSE(Only(u"x-ray").excluded);
    EXPECT_TRUE(AsksForNothing(u"-"));
}

TEST(FindQueryTest, ANameAndAColonChooseTheField) {
    EXPECT_EQ(Texts(u"name:a file:b author:c company:d year:19 version:f"),
              Strings({"a@0", "b@1", "c@2", "d@3", "19@4", "f@5"}));
    EXPECT_EQ(Texts(u"AUTHOR:Bob"), Strings({"bob@2"}));
    EXPECT_TRUE(AsksForNothing(u"author:"));
    EXPECT_TRUE(AsksForNothing(u"author:\"\""));
}

TEST(FindQueryTest, AnUnknownNameIsAWord) {
    EXPECT_EQ(Texts(u"C:\\Tables http://x"), Strings({"c:\\tables", "http://x"}));
    EXPECT_EQ(Texts(u"-c:x"), Strings({"-c:x"}));
    EXPECT_EQ(Texts(u":x"), Strings({":x"}));
}

TEST(FindQueryTest, NumbersAreCompared) {
    EXPECT_EQ(Only(u"year:>1980").number, FindNumber::kYear);
    EXPECT_EQ(Range(u"year:>1980"), "1981 -");
    EXPECT_EQ(Range(u"year:>=1980"), "1980 -");
    EXPECT_EQ(Range(u"year:<1980"), "- 1980");
    EXPECT_EQ(Range(u"year:<=1980"), "- 1981");
    EXPECT_EQ(Range(u"year:=1980"), "1980 1981");
    EXPECT_EQ(Range(u"year:1980..1989"), "1980 1990");
    EXPECT_EQ(Only(u"times:3").number, FindNumber::kTimesPlayed);
    EXPECT_EQ(Range(u"times:3"), "3 4");
    EXPECT_EQ(Range(u"year:9..1"), "9 2");  // holds for nothing
}

TEST(FindQueryTest, AYearThatIsNotComparedIsAText) {
    EXPECT_EQ(Texts(u"year:198"), Strings({"198@4"}));
}

TEST(FindQueryTest, DatesAreRanges) {
    EXPECT_EQ(Only(u"played:2003").date, FindDate::kLastPlayed);
    EXPECT_EQ(Only(u"added:2003").date, FindDate::kDateAdded);
    EXPECT_EQ(Only(u"filedate:2003").date, FindDate::kFileDate);
    EXPECT_EQ(Range(u"added:2003"), "37622 37987");
    EXPECT_EQ(Range(u"added:2003-12"), "37956 37987");
    EXPECT_EQ(Range(u"added:2003-12-31"), "37986 37987");
    EXPECT_EQ(Range(u"added:12/31/2003"), "37986 37987");
    EXPECT_EQ(Range(u"added:>2003"), "37987 -");
    EXPECT_EQ(Range(u"added:<=2003-12-31"), "- 37987");
    EXPECT_EQ(Range(u"added:2003..2003-12"), "37622 37987");
}

TEST(FindQueryTest, FlagsHaveTheirNames) {
    EXPECT_EQ(Only(u"is:missing").flag, FindFlag::kMissing);
    EXPECT_EQ(Only(u"is:favourite").flag, FindFlag::kFavourite);
    EXPECT_EQ(Only(u"IS:Favorite").flag, FindFlag::kFavourite);
    EXPECT_EQ(Only(u"is:pinmame").flag, FindFlag::kPinMame);
    EXPECT_EQ(Only(u"is:played").flag, FindFlag::kPlayed);
    EXPECT_EQ(Only(u"is:unplayed").flag, FindFlag::kUnplayed);
    EXPECT_TRUE(ParseFindQuery(u"taxi is:missing").Asks(FindFlag::kMissing));
    EXPECT_FALSE(ParseFindQuery(u"taxi is:played").Asks(FindFlag::kMissing));
}

TEST(FindQueryTest, WhatIsNotFinishedAsksForNothing) {
    for (const char16_t* typed : {u"is:", u"is:m", u"is:missin", u"year:>", u"year:>=",
                                  u"year:1980.", u"year:1980..", u"times:", u"added:", u"added:<"})
        EXPECT_TRUE(AsksForNothing(typed)) << S(typed).toStdString();
}

TEST(FindQueryTest, WhatCannotBeUnderstoodIsTold) {
    EXPECT_EQ(NotUnderstood(u"taxi is:gone"), "is:gone");
    EXPECT_EQ(NotUnderstood(u"year:>x"), "year:>x");
    EXPECT_EQ(NotUnderstood(u"-year:>x"), "-year:>x");
    EXPECT_EQ(NotUnderstood(u"times:3x"), "times:3x");
    EXPECT_EQ(NotUnderstood(u"times:-3"), "times:-3");
    EXPECT_EQ(NotUnderstood(u"times:99999999999999999999"), "times:99999999999999999999");
    EXPECT_EQ(NotUnderstood(u"added:2003-13"), "added:2003-13");
    EXPECT_EQ(NotUnderstood(u"added:2003-02-30"), "added:2003-02-30");
    EXPECT_EQ(NotUnderstood(u"added:1/2"), "added:1/2");
    EXPECT_EQ(NotUnderstood(u"added:2003-1-2-3"), "added:2003-1-2-3");
    EXPECT_EQ(NotUnderstood(u"added:33"), "added:33");
    EXPECT_EQ(NotUnderstood(u"is:gone is:lost"), "is:gone");
}

TEST(FindQueryTest, ALongTextIsCut) {
    EXPECT_EQ(ParseFindQuery(QString(100'000, u'x')).terms.at(0).text.size(),
              static_cast<std::size_t>(FindQuery::kMaxLength));
    EXPECT_EQ(ParseFindQuery(QString(400, u'x').replace(QLatin1String("x"), QLatin1String("a ")))
                  .terms.size(),
              FindQuery::kMaxTerms);
}

TEST(FindQueryTest, AnythingCanBeTyped) {
    std::mt19937 random(5);
    const QString letters = S(u"a\"-:>=<. \t/x1289isyearadded\xd800\xdc00\u0000");
    for (int i = 0; i < 20'000; ++i) {
        QString typed;
        for (std::size_t length = random() % 24; length > 0; --length)
            typed +=
                letters[static_cast<qsizetype>(random() % static_cast<unsigned>(letters.size()))];
        const FindQuery query = ParseFindQuery(typed);
        for (const FindTerm& term : query.terms)
            ASSERT_EQ((term.text.empty() ? 0 : 1) + (term.number ? 1 : 0) + (term.date ? 1 : 0) +
                          (term.flag ? 1 : 0),
                      1)
                << typed.toStdString();
    }
}

TEST(FindQueryTest, PartsAreAddedAndTakenAway) {
    EXPECT_EQ(WithPart({}, S(u"is:missing")), S(u"is:missing "));
    EXPECT_EQ(WithPart(S(u"taxi "), S(u"is:missing")), S(u"taxi is:missing "));
    EXPECT_TRUE(HasPart(S(u"taxi IS:missing x"), S(u"is:missing")));
    EXPECT_FALSE(HasPart(S(u"taxi \"is:missing\""), S(u"is:missing")));
    EXPECT_FALSE(HasPart(S(u"-is:missing"), S(u"is:missing")));
    EXPECT_EQ(WithoutPart(S(u"a is:missing \"b c\" is:missing"), S(u"is:missing")),
              S(u"a \"b c\" "));
}

}  // namespace
}  // namespace browser
