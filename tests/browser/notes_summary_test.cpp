#include "browser/notes_summary.h"

#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"

namespace browser {
namespace {

TEST(SummariseNotesTest, ThreeLinesAreShownWhole) {
    const QString notes = QStringLiteral("a\r\nb\r\nc");
    EXPECT_EQ(SummariseNotes(notes), notes);
}

TEST(SummariseNotesTest, AFourthLineBecomesAnEllipsis) {
    EXPECT_EQ(SummariseNotes(QStringLiteral("a\r\nb\r\nc\r\nd")), QStringLiteral("a\r\nb\r\nc..."));
}

TEST(SummariseNotesTest, ThreeEndedLinesHaveAFourthOne) {
    EXPECT_EQ(SummariseNotes(QStringLiteral("a\r\nb\r\nc\r\n")), QStringLiteral("a\r\nb\r\nc..."));
}

TEST(SummariseNotesTest, ATextOfOneLineIsShownWhole) {
    EXPECT_EQ(SummariseNotes(QStringLiteral("a")), QStringLiteral("a"));
    EXPECT_EQ(SummariseNotes(QString()), QString());
}

TEST(SummariseNotesTest, LineFeedsAloneDoNotEndALine) {
    const QString notes = QStringLiteral("a\nb\nc\nd\ne");
    EXPECT_EQ(SummariseNotes(notes), notes);
}

TEST(SummariseNotesTest, EmptyLinesCount) {
    EXPECT_EQ(SummariseNotes(QStringLiteral("\r\r\rx")), QStringLiteral("\r\r..."));
}

class NotesLookupTest : public test_support::CatalogueFixture {
protected:
    void Add(const QString& name, const QString& file, const QString& notes) {
        Execute(QStringLiteral(
                    "insert into tables (DisplayName, FileName, Notes) values ('%1', '%2', %3)")
                    .arg(catalogue::QuoteSql(name), catalogue::QuoteSql(file), notes));
    }
    QString Summary(const QString& file) {
        const auto summary = NotesSummary(*connection, file);
        EXPECT_TRUE(summary.ok()) << summary.status().message();
        return summary.value_or(QStringLiteral("<error>"));
    }
};

TEST_F(NotesLookupTest, TheNotesOfTheFileAreSummarised) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), QStringLiteral("'short'"));
    EXPECT_EQ(Summary(QStringLiteral("/a.vpt")), QStringLiteral("short"));
}

TEST_F(NotesLookupTest, NullNotesAndNoRowAreEmpty) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), QStringLiteral("null"));
    EXPECT_EQ(Summary(QStringLiteral("/a.vpt")), QString());
    EXPECT_EQ(Summary(QStringLiteral("/b.vpt")), QString());
}

TEST_F(NotesLookupTest, QuotesAndBarsInTheFileNameAreFound) {
    const QString file = QStringLiteral("/it's|a'|.vpt");
    Add(QStringLiteral("Attack"), file, QStringLiteral("'found'"));
    EXPECT_EQ(Summary(file), QStringLiteral("found"));
}

TEST_F(NotesLookupTest, AColumnIsFoundByDisplayName) {
    const QString name = QStringLiteral("Bob's | Table");
    Add(name, QStringLiteral("/a.vpt"), QStringLiteral("'n'"));
    const auto value = LookupColumn(*connection, QStringLiteral("FileName"), name);
    ASSERT_TRUE(value.ok());
    EXPECT_EQ(*value, QStringLiteral("/a.vpt"));
}

TEST_F(NotesLookupTest, ANullColumnAndAnUnknownNameAreEmpty) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), QStringLiteral("null"));
    EXPECT_EQ(*LookupColumn(*connection, QStringLiteral("Notes"), QStringLiteral("Attack")),
              QString());
    EXPECT_EQ(*LookupColumn(*connection, QStringLiteral("Notes"), QStringLiteral("None")),
              QString());
}

}  // namespace
}  // namespace browser
