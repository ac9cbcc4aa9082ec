#include "browser/main_window_settings.h"

#include "support/fakes.h"

#include <gtest/gtest.h>

namespace browser {
namespace {

class MainWindowSettingsTest : public testing::Test {
protected:
    void Store(const QString& key, const QString& value) {
        store.values[QStringLiteral("TAVOLO/GENERAL/") + key] = value;
    }
    QString Stored(const QString& key) const {
        return store.values.value(QStringLiteral("TAVOLO/GENERAL/") + key,
                                  QStringLiteral("<missing>"));
    }

    test_support::FakeSettings store;
};

TEST_F(MainWindowSettingsTest, MissingValuesAreTheDefaults) {
    const MainWindowSettings settings = ReadSettings(store);
    EXPECT_EQ(settings, MainWindowSettings{});
    EXPECT_EQ(settings.width_twips, 9570);
    EXPECT_EQ(settings.height_twips, 6885);
    EXPECT_EQ(settings.direction, QStringLiteral("Asc"));
    EXPECT_EQ(settings.order_by, QStringLiteral("Table Name"));
    EXPECT_EQ(settings.filter, QStringLiteral("All"));
    EXPECT_EQ(settings.comparison, QStringLiteral("="));
    EXPECT_EQ(settings.sub, QString());
    EXPECT_FALSE(settings.sound);
    EXPECT_FALSE(settings.minimise);
}

TEST_F(MainWindowSettingsTest, WhatIsWrittenIsReadAgain) {
    MainWindowSettings settings;
    settings.window_state = WindowState::kMinimised;
    settings.width_twips = 12000;
    settings.height_twips = 9000;
    settings.direction = QStringLiteral("Desc");
    settings.order_by = QStringLiteral("Year");
    settings.last_play = 700'000'002;
    settings.filter = QStringLiteral("Author");
    settings.sub = QStringLiteral("Bob O'Brien|x");
    settings.comparison = QStringLiteral("<>");
    settings.sound = true;
    settings.minimise = true;
    settings.last_tab = 3;
    settings.last_picture_folder = QStringLiteral("C:\\Pictures\\");
    EXPECT_TRUE(WriteSettings(store, settings).ok());
    EXPECT_EQ(ReadSettings(store), settings);
}

TEST_F(MainWindowSettingsTest, ValuesAreWrittenInTheirOrder) {
    MainWindowSettings settings;
    settings.last_picture_folder = QStringLiteral("C:\\");
    EXPECT_TRUE(WriteSettings(store, settings).ok());
    const std::vector<QString> order = {
        QStringLiteral("DIRECTION"),   QStringLiteral("ORDERBY"),    QStringLiteral("OPERATOR"),
        QStringLiteral("LASTPLAY"),    QStringLiteral("SUB"),        QStringLiteral("FILTER"),
        QStringLiteral("WIDTH"),       QStringLiteral("HEIGHT"),     QStringLiteral("SCALEHEIGHT"),
        QStringLiteral("WINDOWSTATE"), QStringLiteral("LASTTAB"),    QStringLiteral("SOUND"),
        QStringLiteral("MIN"),         QStringLiteral("LASTPICDIR"),
    };
    EXPECT_EQ(store.written, order);
}

TEST_F(MainWindowSettingsTest, AnEmptyPictureFolderIsNotWritten) {
    EXPECT_TRUE(WriteSettings(store, {}).ok());
    EXPECT_EQ(Stored(QStringLiteral("LASTPICDIR")), QStringLiteral("<missing>"));
}

TEST_F(MainWindowSettingsTest, FlagsAreTheWordsTrueAndFalse) {
    MainWindowSettings settings;
    settings.sound = true;
    EXPECT_TRUE(WriteSettings(store, settings).ok());
    EXPECT_EQ(Stored(QStringLiteral("SOUND")), QStringLiteral("True"));
    EXPECT_EQ(Stored(QStringLiteral("MIN")), QStringLiteral("False"));
    Store(QStringLiteral("MIN"), QStringLiteral("-1"));
    EXPECT_TRUE(ReadSettings(store).minimise);
}

TEST_F(MainWindowSettingsTest, AMaximisedWindowIgnoresTheStoredSize) {
    Store(QStringLiteral("WINDOWSTATE"), QStringLiteral("2"));
    Store(QStringLiteral("WIDTH"), QStringLiteral("30000"));
    Store(QStringLiteral("HEIGHT"), QStringLiteral("20000"));
    const MainWindowSettings settings = ReadSettings(store);
    EXPECT_EQ(settings.window_state, WindowState::kMaximised);
    EXPECT_EQ(settings.width_twips, kDefaultWidthTwips);
    EXPECT_EQ(settings.height_twips, kDefaultHeightTwips);
}

TEST_F(MainWindowSettingsTest, AMinimisedWindowKeepsItsSize) {
    Store(QStringLiteral("WINDOWSTATE"), QStringLiteral("1"));
    Store(QStringLiteral("WIDTH"), QStringLiteral("12000"));
    EXPECT_EQ(ReadSettings(store).width_twips, 12000);
}

TEST_F(MainWindowSettingsTest, RubbishIsTheDefault) {
    for (const QString& key :
         {QStringLiteral("WIDTH"), QStringLiteral("HEIGHT"), QStringLiteral("LASTTAB"),
          QStringLiteral("LASTPLAY"), QStringLiteral("WINDOWSTATE"), QStringLiteral("SOUND")})
        Store(key, QStringLiteral("wide"));
    EXPECT_EQ(ReadSettings(store), MainWindowSettings{});
}

TEST_F(MainWindowSettingsTest, AnEmptyComparisonIsEquality) {
    Store(QStringLiteral("OPERATOR"), QStringLiteral(""));
    EXPECT_EQ(ReadSettings(store).comparison, QStringLiteral("="));
}

TEST_F(MainWindowSettingsTest, ImpossibleNumbersDoNoHarm) {
    Store(QStringLiteral("WIDTH"), QStringLiteral("1e300"));
    Store(QStringLiteral("HEIGHT"), QStringLiteral("-5"));
    Store(QStringLiteral("LASTPLAY"), QStringLiteral("-1e300"));
    Store(QStringLiteral("LASTTAB"), QStringLiteral("inf"));
    const MainWindowSettings settings = ReadSettings(store);
    EXPECT_EQ(settings.width_twips, ToTwips(32767));
    EXPECT_EQ(settings.height_twips, kDefaultHeightTwips);
    EXPECT_LT(settings.last_play, 0);
    EXPECT_EQ(settings.last_tab, 0);
}

TEST(TwipsTest, FifteenTwipsAreAPixel) {
    EXPECT_EQ(ToPixels(kDefaultWidthTwips), 638);
    EXPECT_EQ(ToPixels(kDefaultHeightTwips), 459);
    EXPECT_EQ(ToPixels(kRestoredHeightTwips), 467);
    EXPECT_EQ(ToTwips(638), 9570);
}

}  // namespace
}  // namespace browser
