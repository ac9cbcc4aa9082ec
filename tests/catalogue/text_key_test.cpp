#include "catalogue/text_key.h"

#include "catalogue/quoting.h"
#include "platform/text_view.h"
#include "support/catalogue_fixture.h"

namespace catalogue {
namespace {

class TextKeyTest : public test_support::CatalogueFixture {
protected:
    bool DatabaseFinds(const QString& stored, const QString& asked) {
        Execute(QStringLiteral("Delete from Tables"));
        Execute(
            QStringLiteral("Insert into Tables (FileName) Values ('%1')").arg(QuoteSql(stored)));
        return Scalar(QStringLiteral("Select FileName from Tables where filename = '%1'")
                          .arg(QuoteSql(asked))) != QStringLiteral("<none>");
    }
};

TEST_F(TextKeyTest, KeysAreEqualWhereTheDatabaseFindsTheText) {
    const QStringList texts = {QStringLiteral("/t/Abc.vpt"),
                               QStringLiteral("/T/aBC.VPT"),
                               QStringLiteral("/t/abc.vpt "),
                               QStringLiteral(u"/t/\u00E4bc.vpt"),
                               QStringLiteral(u"/t/\u00C4BC.vpt"),
                               QStringLiteral("/t/a-bc.vpt"),
                               QStringLiteral("/t/it's.vpt"),
                               QStringLiteral("/t/its.vpt"),
                               QStringLiteral(u"/t/\u4E2D.vpt"),
                               QString(QStringLiteral("/t/") + QChar(0xDCFF)),
                               QString(QStringLiteral("/t/") + QChar(0xDCFE)),
                               QStringLiteral(u"/t/\u00DF.vpt"),
                               QStringLiteral("/t/ss.vpt")};
    for (const QString& stored : texts)
        for (const QString& asked : texts)
            EXPECT_EQ(TextKey(platform::View(stored)) == TextKey(platform::View(asked)),
                      DatabaseFinds(stored, asked))
                << stored.toStdString() << " and " << asked.toStdString();
}

TEST_F(TextKeyTest, ATextOfMoreThan255CharactersHasNone) {
    EXPECT_TRUE(HasTextKey(std::u16string(255, u'a')));
    EXPECT_FALSE(HasTextKey(std::u16string(256, u'a')));
}

TEST_F(TextKeyTest, BarsAndControlCharactersAreNotPlain) {
    EXPECT_TRUE(IsPlainInSql(QStringLiteral("It's a table")));
    EXPECT_TRUE(IsPlainInSql({}));
    EXPECT_FALSE(IsPlainInSql(QStringLiteral("a|b")));
    EXPECT_FALSE(IsPlainInSql(QStringLiteral("a\nb")));
}

}  // namespace
}  // namespace catalogue
