#include "maintenance/match_index.h"

#include "catalogue/quoting.h"
#include "maintenance/launcher_statements.h"
#include "support/catalogue_fixture.h"

namespace maintenance {
namespace {

class MatchIndexTest : public test_support::CatalogueFixture {
protected:
    void AddRow(const QString& name, const QString& crc) {
        Execute(QStringLiteral("insert into Tables (DisplayName, CRC, DateAdded) values "
                               "('%1', '%2', #1/2/2003#)")
                    .arg(catalogue::QuoteSql(name), catalogue::QuoteSql(crc)));
    }
    std::int64_t RowsInDatabase(MatchColumn column, const QString& key) {
        auto rows = connection->Execute(MatchQuery(column, key, {}).toStdU16String());
        EXPECT_TRUE(rows.ok());
        std::int64_t count = 0;
        for (; !rows->Eof(); ++count)
            rows->MoveNext().Ignore();
        return count;
    }
};

TEST_F(MatchIndexTest, AnswersAsTheDatabaseDoes) {
    const QStringList texts = {
        QStringLiteral("Abc"),         QStringLiteral("aBC"),      QStringLiteral("abc "),
        QStringLiteral(" abc"),        QStringLiteral("\u00E4bc"), QStringLiteral("\u00C4BC"),
        QStringLiteral("stra\u00DFe"), QStringLiteral("strasse"),  QStringLiteral("co-op"),
        QStringLiteral("coop"),        QStringLiteral("1A2B3C4D"), QStringLiteral("0")};
    for (const QString& text : texts)
        AddRow(text + u'n', text);
    const MatchIndex index(*connection, {});
    QStringList keys = texts;
    keys << QString() << QStringLiteral("missing") << QStringLiteral("ABC  ")
         << QStringLiteral("1a2b3c4d");
    for (const QString& key : std::as_const(keys)) {
        ASSERT_TRUE(index.CanAnswer(key));
        EXPECT_EQ(index.ByChecksum(key).count, RowsInDatabase(MatchColumn::kChecksum, key))
            << key.toStdString();
        EXPECT_EQ(index.ByDisplayName(key + u'n').count,
                  RowsInDatabase(MatchColumn::kDisplayName, key + u'n'))
            << key.toStdString();
    }
}

TEST_F(MatchIndexTest, NamesTheRowWhenThereIsOneOnly) {
    AddRow(QStringLiteral("a"), QStringLiteral("AB"));
    AddRow(QStringLiteral("b"), QStringLiteral("CD"));
    AddRow(QStringLiteral("c"), QStringLiteral("cd"));
    const MatchIndex index(*connection, {});
    EXPECT_EQ(index.ByChecksum(QStringLiteral("ab")).id, 1);
    EXPECT_EQ(index.ByChecksum(QStringLiteral("CD")).count, 2);
    EXPECT_EQ(index.ByChecksum(QStringLiteral("CD")).id, std::nullopt);
}

TEST_F(MatchIndexTest, RowsWithoutAValueAreNotFound) {
    Execute(QStringLiteral("insert into Tables (FileName) values ('x')"));
    const MatchIndex index(*connection, {});
    EXPECT_EQ(index.ByChecksum(QString()).count, 0);
    EXPECT_EQ(index.ByDisplayName(QString()).count, 0);
}

TEST_F(MatchIndexTest, LeavesRowsOutsideTheDateOut) {
    AddRow(QStringLiteral("a"), QStringLiteral("AB"));
    EXPECT_EQ(MatchIndex(*connection, DateCondition(QStringLiteral("1/1/2003")))
                  .ByChecksum(QStringLiteral("AB"))
                  .count,
              1);
    EXPECT_EQ(MatchIndex(*connection, DateCondition(QStringLiteral("1/2/2003")))
                  .ByChecksum(QStringLiteral("AB"))
                  .count,
              0);
}

TEST_F(MatchIndexTest, AsksTheDatabaseForKeysThatAreNoPlainText) {
    const MatchIndex index(*connection, {});
    EXPECT_TRUE(index.CanAnswer(QStringLiteral("plain")));
    EXPECT_FALSE(index.CanAnswer(QStringLiteral("it's")));
    EXPECT_FALSE(index.CanAnswer(QStringLiteral("a|b")));
    EXPECT_FALSE(index.CanAnswer(QStringLiteral("a\tb")));
    EXPECT_FALSE(index.CanAnswer(QString(256, u'x')));
}

TEST_F(MatchIndexTest, AnswersNothingWhenItCouldNotBeBuilt) {
    const MatchIndex index(*connection, QStringLiteral(" AND nonsense ="));
    EXPECT_FALSE(index.CanAnswer(QStringLiteral("plain")));
}

}  // namespace
}  // namespace maintenance
