#include "widgets/window_place.h"

#include <gtest/gtest.h>

#include <QtGui/QScreen>
#include <QtWidgets/QWidget>

namespace widgets {
namespace {

const QRect kScreen(0, 0, 1024, 600);
const QRect kSecond(1024, 0, 1920, 1080);

TEST(WindowPlaceTest, AWindowIsNoLargerThanItsScreen) {
    EXPECT_EQ(FittedTo({300, 200}, kScreen), QSize(300, 200));
    const QSize fitted = FittedTo({5000, 4000}, kScreen);
    EXPECT_LT(fitted.width(), 1024);
    EXPECT_LT(fitted.height(), 600) << "room for the frame";
    EXPECT_GT(fitted.width(), 900);
    EXPECT_EQ(FittedTo({5000, 300}, kScreen).height(), 300);
}

TEST(WindowPlaceTest, AWindowThatCanBeSeenStaysWhereItIs) {
    for (const QPoint place : {QPoint(0, 0), QPoint(900, 500), QPoint(-200, 10), QPoint(1500, 700)})
        EXPECT_EQ(OnAScreen({place, QSize(400, 300)}, {kScreen, kSecond}), place)
            << place.x() << " " << place.y();
}

TEST(WindowPlaceTest, AWindowOffAllScreensComesToTheNearest) {
    EXPECT_EQ(OnAScreen({QPoint(-900, 50), QSize(400, 300)}, {kScreen, kSecond}), QPoint(0, 50));
    EXPECT_EQ(OnAScreen({QPoint(30, -80), QSize(400, 300)}, {kScreen, kSecond}), QPoint(30, 0))
        << "its title bar was above the screen";
    const QPoint moved = OnAScreen({QPoint(4000, 900), QSize(400, 300)}, {kScreen, kSecond});
    EXPECT_TRUE(kSecond.contains(QRect(moved, QSize(400, 300)))) << moved.x() << " " << moved.y();
}

TEST(WindowPlaceTest, AWindowLargerThanTheScreenBeginsInIt) {
    EXPECT_EQ(OnAScreen({QPoint(5000, 5000), QSize(3000, 3000)}, {kScreen}), QPoint(0, 0));
}

TEST(WindowPlaceTest, AWidgetIsFittedToItsOwnScreen) {
    QWidget window;
    window.resize(10'000, 10'000);
    FitToScreen(window);
    const QRect screen = window.screen()->availableGeometry();
    EXPECT_LT(window.width(), screen.width());
    EXPECT_LT(window.height(), screen.height());
    EXPECT_TRUE(Screens().contains(screen));
}

}  // namespace
}  // namespace widgets
