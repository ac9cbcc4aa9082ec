#include "catalogue/process_values.h"
#include "launcher/play_button.h"
#include "widgets/program_palette.h"

#include <gtest/gtest.h>

#include <QtGui/QEnterEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

namespace {

constexpr std::uint32_t kRed = 255;
constexpr std::uint32_t kYellow = 65535;
constexpr std::uint32_t kGreen = 65280;

class PlayButtonTest : public testing::Test {
protected:
    PlayButtonTest() {
        values_.StatusColours = {0, kYellow, kRed, kGreen};
        button_.SetSound([this](const QString& name) {
            sounds_ << name;
            colour_at_sound_ = button_.text_colour();
            was_down_ = button_.isDown();
        });
        button_.resize(200, 56);
        button_.show();
    }

    void Enter() {
        QEnterEvent event({5, 5}, {5, 5}, {5, 5});
        QApplication::sendEvent(&button_, &event);
    }
    int PixelsOf(std::uint32_t blue_green_red) {
        const QImage image = button_.grab().toImage();
        const QRgb wanted = qRgb(static_cast<int>(blue_green_red & 0xFF),
                                 static_cast<int>(blue_green_red >> 8 & 0xFF),
                                 static_cast<int>(blue_green_red >> 16 & 0xFF));
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                count += image.pixel(x, y) == wanted ? 1 : 0;
        return count;
    }

    catalogue::ProcessValues values_;
    launcher::PlayButton button_{values_};
    QStringList sounds_;
    std::uint32_t colour_at_sound_ = 0;
    bool was_down_ = false;
};

TEST_F(PlayButtonTest, HasItsName) {
    EXPECT_EQ(button_.objectName(), QStringLiteral("cmdPlay"));
}

TEST_F(PlayButtonTest, EachColourOfTheCaptionCanBeReadOnThePlate) {
    Enter();
    const QImage image = button_.grab().toImage();
    for (const QColor colour : {Qt::red, Qt::yellow, Qt::green})
        for (int y = 6; y < image.height() - 6; ++y)  // a column of the plate alone
            EXPECT_GE(widgets::ContrastOf(colour, image.pixelColor(image.width() - 12, y)),
                      widgets::kLeastContrast)
                << colour.name().toStdString();
}

TEST_F(PlayButtonTest, TurnsRedWhenPressed) {
    QTest::mousePress(&button_, Qt::LeftButton);
    EXPECT_EQ(button_.text_colour(), kRed);
}

TEST_F(PlayButtonTest, TurnsYellowWhenReleased) {
    QTest::mousePress(&button_, Qt::LeftButton);
    QTest::mouseRelease(&button_, Qt::LeftButton);
    EXPECT_EQ(button_.text_colour(), kYellow);
}

TEST_F(PlayButtonTest, IsYellowAlreadyWhileAClickIsHandled) {
    std::uint32_t colour_at_click = 0;
    QObject::connect(&button_, &QAbstractButton::clicked, &button_,
                     [&] { colour_at_click = button_.text_colour(); });
    QTest::mouseClick(&button_, Qt::LeftButton);
    EXPECT_EQ(colour_at_click, kYellow);
}

TEST_F(PlayButtonTest, AClickIsReportedOnce) {
    const QSignalSpy clicks(&button_, &QAbstractButton::clicked);
    QTest::mouseClick(&button_, Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 1);
}

TEST_F(PlayButtonTest, GoesThroughTheStatusColoursAsThePointerComesOver) {
    std::vector<std::uint32_t> colours;
    for (int i = 0; i < 5; ++i) {
        Enter();
        colours.push_back(button_.text_colour());
    }
    EXPECT_EQ(colours, (std::vector<std::uint32_t>{kYellow, kRed, kGreen, kYellow, kRed}));
}

TEST_F(PlayButtonTest, ShowsTheColourInItsCaption) {
    Enter();
    Enter();
    Enter();
    EXPECT_GT(PixelsOf(kGreen), 20);
    QTest::mousePress(&button_, Qt::LeftButton);
    EXPECT_EQ(PixelsOf(kGreen), 0);
    EXPECT_GT(PixelsOf(kRed), 20);
}

TEST_F(PlayButtonTest, ShowsAnotherPictureWhilePressed) {
    const QRect picture(0, 0, 100, 56);
    const QImage up = button_.grab(picture).toImage();
    button_.setDown(true);
    EXPECT_NE(button_.grab(picture).toImage(), up);
}

TEST_F(PlayButtonTest, LooksDifferentWhenDisabled) {
    const QImage enabled = button_.grab().toImage();
    button_.setEnabled(false);
    EXPECT_NE(button_.grab().toImage(), enabled);
}

TEST_F(PlayButtonTest, PlaysTheSlingshotOnPressWhenSoundIsOn) {
    values_.SoundOn = true;
    QTest::mousePress(&button_, Qt::LeftButton);
    EXPECT_EQ(sounds_, QStringList{QStringLiteral("slingshot.wav")});
}

TEST_F(PlayButtonTest, TurnsRedAfterTheSound) {
    values_.SoundOn = true;
    QTest::mousePress(&button_, Qt::LeftButton);
    EXPECT_NE(colour_at_sound_, kRed);
    EXPECT_TRUE(was_down_);
}

TEST_F(PlayButtonTest, IsSilentWhenSoundIsOff) {
    QTest::mouseClick(&button_, Qt::LeftButton);
    EXPECT_TRUE(sounds_.isEmpty());
}

TEST_F(PlayButtonTest, AKeyClicksWithoutSoundAndColour) {
    values_.SoundOn = true;
    const std::uint32_t colour = button_.text_colour();
    const QSignalSpy clicks(&button_, &QAbstractButton::clicked);
    QTest::keyClick(&button_, Qt::Key_Space);
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_TRUE(sounds_.isEmpty());
    EXPECT_EQ(button_.text_colour(), colour);
}

}  // namespace
