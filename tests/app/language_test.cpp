#include "app/language.h"

#include "app/texts.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>

namespace app {
namespace {

// The language "eo" is compiled into this program.
class LanguageTest : public testing::Test {
protected:
    void TearDown() override {
        for (QTranslator* const translator : application_.findChildren<QTranslator*>())
            delete translator;  // which removes it
    }

    int argc_ = 1;
    char name_[6] = "tests";
    char* argv_[2] = {name_, nullptr};
    QCoreApplication application_{argc_, argv_};
};

QString Looking() {
    return AppTexts::tr("Looking for new tables...");
}

TEST_F(LanguageTest, WithoutOneTheTextsAreThoseOfTheCode) {
    EXPECT_EQ(Looking(), QStringLiteral("Looking for new tables..."));
    EXPECT_EQ(AppTexts::tr("%n new tables", nullptr, 3), QStringLiteral("3 new tables"));
}

TEST_F(LanguageTest, TheFirstThatIsThereIsUsed) {
    EXPECT_EQ(UseLanguage({QStringLiteral("xx"), QStringLiteral("eo")}), QStringLiteral("eo"));
    EXPECT_EQ(Looking(), QStringLiteral("Sercxas novajn tabulojn..."));
    EXPECT_EQ(AppTexts::tr("%n new tables", nullptr, 3), QStringLiteral("3 novaj tabuloj"));
    EXPECT_EQ(AppTexts::tr("There is nothing to undo"), QStringLiteral("There is nothing to undo"));
}

TEST_F(LanguageTest, EnglishIsALanguageToo) {
    for (const char* const english : {"en", "en-US", "C"}) {
        EXPECT_EQ(UseLanguage({QString::fromLatin1(english), QStringLiteral("eo")}), QString());
        EXPECT_EQ(Looking(), QStringLiteral("Looking for new tables..."));
    }
}

TEST_F(LanguageTest, WhatIsNotThereChangesNothing) {
    EXPECT_EQ(UseLanguage({QStringLiteral("xx-YY"), QStringLiteral("../eo"), QString()}),
              QString());
    EXPECT_EQ(UseLanguage({}), QString());
    EXPECT_EQ(Looking(), QStringLiteral("Looking for new tables..."));
}

}  // namespace
}  // namespace app
