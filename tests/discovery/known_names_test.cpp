#include "discovery/known_names.h"

#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"

namespace discovery {
namespace {

class KnownNamesTest : public test_support::CatalogueFixture {
protected:
    void AddRow(const QString& path) {
        Execute(QStringLiteral("Insert into Tables (FileName) Values ('%1')")
                    .arg(catalogue::QuoteSql(path)));
    }
    static bool Contains(KnownNames& names, const QString& path) {
        const auto known = names.Contains(path);
        EXPECT_TRUE(known.ok()) << known.status().message();
        return known.value_or(false);
    }
    static QString Number(int i) { return QStringLiteral("/tables/Table %1.vpt").arg(i); }
};

TEST_F(KnownNamesTest, NamesAreTheSameThatTheDatabaseTakesForTheSame) {
    AddRow(QStringLiteral("/tables/It's an \u00E4ttack.vpt"));
    KnownNames names(*connection);
    EXPECT_TRUE(Contains(names, QStringLiteral("/Tables/IT'S AN \u00C4TTACK.VPT")));
    EXPECT_FALSE(Contains(names, QStringLiteral("/tables/It's an attack.vpt")));
}

TEST_F(KnownNamesTest, AllQuestionsOfAScanAreOneWalkThroughTheTable) {
    for (int i = 0; i < 50; ++i)
        AddRow(Number(i));
    Execute(QStringLiteral("DROP INDEX FileName ON Tables"));
    CountWalks();
    KnownNames names(*connection);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(Contains(names, Number(i)), i < 50) << i;
    EXPECT_EQ(walks.all(), 1);
}

TEST_F(KnownNamesTest, RowsThatTheScanItselfStoresAreNoReasonToReadAgain) {
    CountWalks();
    KnownNames names(*connection);
    for (int i = 0; i < 50; ++i) {
        EXPECT_FALSE(Contains(names, Number(i)));
        AddRow(Number(i));
        names.NoteStored(Number(i));
        EXPECT_TRUE(Contains(names, Number(i)));
    }
    EXPECT_EQ(walks.all(), 1);
}

TEST_F(KnownNamesTest, ARefusedRowIsNeitherKnownNorAReasonToReadAgain) {
    CountWalks();
    KnownNames names(*connection);
    const QString name = Number(1);
    EXPECT_FALSE(Contains(names, name));
    const QString too_long(60, u'x');
    const auto refused =
        connection->Execute(QStringLiteral("Insert into Tables (FileName, CRC) Values ('%1', '%2')")
                                .arg(name, too_long)
                                .toStdU16String());
    ASSERT_FALSE(refused.ok());
    names.NoteRefused();
    EXPECT_FALSE(Contains(names, name));
    EXPECT_EQ(walks.all(), 1);
}

TEST_F(KnownNamesTest, WhatChangesTheCatalogueMeanwhileIsSeen) {
    KnownNames names(*connection);
    EXPECT_FALSE(Contains(names, Number(1)));
    AddRow(Number(1));
    EXPECT_TRUE(Contains(names, Number(1)));
    Execute(QStringLiteral("Delete from Tables"));
    EXPECT_FALSE(Contains(names, Number(1)));
    AddRow(Number(2));
    AddRow(Number(3));
    names.NoteStored(Number(3));
    EXPECT_TRUE(Contains(names, Number(2)));
}

TEST_F(KnownNamesTest, ANameThatSqlMayReadInItsOwnWayIsAskedForInSql) {
    const QString bar = QStringLiteral("/tables/a | b.vpt");
    const QString lines = QStringLiteral("/tables/a\nb.vpt");
    KnownNames names(*connection);
    EXPECT_FALSE(Contains(names, bar));
    AddRow(bar);
    AddRow(lines);
    EXPECT_TRUE(Contains(names, bar));
    EXPECT_TRUE(Contains(names, lines));
}

// A column of this kind may hold more than the key of a text does.
TEST_F(KnownNamesTest, NamesTooLongForAKeyAreComparedByTheDatabase) {
    Execute(QStringLiteral("DROP INDEX FileName ON Tables"));
    Execute(QStringLiteral("ALTER TABLE Tables ALTER COLUMN FileName MEMO"));
    const QString start = QStringLiteral("/tables/") + QString(260, u'x');
    AddRow(start + QStringLiteral("one.vpt"));
    AddRow(Number(1));
    KnownNames names(*connection);
    EXPECT_TRUE(Contains(names, start + QStringLiteral("ONE.vpt")));
    EXPECT_FALSE(Contains(names, start + QStringLiteral("two.vpt")));
    EXPECT_TRUE(Contains(names, Number(1)));
    EXPECT_FALSE(Contains(names, Number(2)));
}

TEST_F(KnownNamesTest, AQuestionThatFailsIsAFailure) {
    Execute(QStringLiteral("DROP INDEX FileName ON Tables"));
    Execute(QStringLiteral("ALTER TABLE Tables DROP COLUMN FileName"));
    KnownNames names(*connection);
    EXPECT_FALSE(names.Contains(Number(1)).ok());
    connection->Close().Ignore();
    EXPECT_FALSE(names.Contains(Number(1)).ok());
}

}  // namespace
}  // namespace discovery
