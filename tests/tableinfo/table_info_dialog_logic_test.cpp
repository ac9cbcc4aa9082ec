#include "tableinfo/table_info_dialog_logic.h"

#include "tableinfo/recorded_details.h"

#include <gtest/gtest.h>

#include <QtCore/QMap>

namespace tableinfo {
namespace {

TEST(MailAddressTest, APlainAddressGetsPrefixAndSubject) {
    EXPECT_EQ(MailAddress(QStringLiteral("a@b.org"), QStringLiteral("Attack")),
              QStringLiteral("Mailto:a@b.org?subject=Attack"));
}

TEST(MailAddressTest, AnAddressWithThePrefixGetsItASecondTime) {
    EXPECT_EQ(MailAddress(QStringLiteral("mailto:a@b.org"), QStringLiteral("Attack")),
              QStringLiteral("Mailto:mailto:a@b.org?subject=Attack"));
}

struct Site {
    const char* name;
    const char16_t* address;
    const char16_t* opened;
};

class SiteAddressTest : public testing::TestWithParam<Site> {};

TEST_P(SiteAddressTest, IsMadeComplete) {
    EXPECT_EQ(SiteAddress(QString::fromUtf16(GetParam().address)),
              QString::fromUtf16(GetParam().opened));
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, SiteAddressTest,
    testing::Values(Site{"LowerCase", u"http://b.org", u"http://b.org"},
                    Site{"UpperCase", u"HTTP://B.ORG", u"HTTP://B.ORG"},
                    Site{"MixedCase", u"hTTp://b.org/x", u"hTTp://b.org/x"},
                    Site{"WithoutScheme", u"www.b.org", u"http://www.b.org"},
                    Site{"OtherScheme", u"https://b.org", u"http://https://b.org"},
                    Site{"FileAddress", u"file:///bin/sh", u"http://file:///bin/sh"},
                    Site{"OptionOfAProgram", u"--help", u"http://--help"},
                    Site{"Empty", u"", u"http://"}),
    [](const auto& test) { return std::string(test.param.name); });

class CopyIntoDetailsTest : public testing::Test {
protected:
    void Copy() {
        CopyIntoDetails(
            texts, [this](const QString& name) { return streams.value(name); }, details);
    }

    InfoTexts texts;
    QMap<QString, QString> streams;
    RecordedDetails details;
};

TEST_F(CopyIntoDetailsTest, EveryTextGoesIntoItsFieldAndTheRulesAreSavedLast) {
    for (std::size_t i = 0; i < texts.size(); ++i)
        texts[i] = QLatin1Char('t') + QString::number(i);
    streams = {{QStringLiteral("CompanyName"), QStringLiteral("Playmatic")},
               {QStringLiteral("CompanyYear"), QStringLiteral("1977")}};
    Copy();
    EXPECT_EQ(details.steps.join(QLatin1Char(' ')),
              QStringLiteral("2=t0 4=t1 5=t2 9=t6 6=Playmatic 1=1977 Save 12=t8 SaveRules"));
}

TEST_F(CopyIntoDetailsTest, BlankTextsAreLeftOutAndTheDetailsAreSavedAllTheSame) {
    texts[0] = QStringLiteral("  ");
    texts[8] = QStringLiteral(" ");
    Copy();
    EXPECT_EQ(details.steps, QStringList{QStringLiteral("Save")});
}

TEST_F(CopyIntoDetailsTest, ALineEndIsText) {
    texts[8] = QStringLiteral("\r\n");
    Copy();
    EXPECT_EQ(details.steps.last(), QStringLiteral("SaveRules"));
}

TEST_F(CopyIntoDetailsTest, TextsAreCopiedWithTheirBlanks) {
    texts[0] = QStringLiteral(" Attack ");
    Copy();
    EXPECT_EQ(details.steps.first(), QStringLiteral("2= Attack "));
}

}  // namespace
}  // namespace tableinfo
