// Needs widgets; runs offscreen.
#include "widgets/picture_box.h"
#include "widgets/zoom_view.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

namespace widgets {
namespace {

PictureSource Png(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "png"));
    return PictureSource::Bytes(bytes);
}

bool IsRed(const QImage& image, int x, int y) {
    return image.pixelColor(x, y) == QColor(Qt::red);
}

QImage Painted(PictureBox& box) {
    return box.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

QWidget* LargeWindow() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == QStringLiteral("frmLargePicture") && widget->isVisible())
            return widget;
    return nullptr;
}

TEST(PictureBoxTest, AWidePictureKeepsItsProportionsInTheMiddleOfTheBox) {
    PictureBox box;
    box.resize(100, 100);
    ASSERT_TRUE(box.SetPicture(Png(400, 200)).ok());
    const QImage seen = Painted(box);
    EXPECT_TRUE(IsRed(seen, 50, 50));
    EXPECT_TRUE(IsRed(seen, 1, 50));
    EXPECT_TRUE(IsRed(seen, 50, 27));
    EXPECT_FALSE(IsRed(seen, 50, 22));
    EXPECT_FALSE(IsRed(seen, 50, 78));
}

TEST(PictureBoxTest, ASmallPictureIsNotEnlarged) {
    PictureBox box;
    box.resize(100, 100);
    ASSERT_TRUE(box.SetPicture(Png(20, 20)).ok());
    const QImage seen = Painted(box);
    EXPECT_TRUE(IsRed(seen, 50, 50));
    EXPECT_FALSE(IsRed(seen, 50, 35));
}

TEST(PictureBoxTest, ItDecodesAtTheSizeOfTheBox) {
    PictureBox box;
    box.resize(100, 100);
    ASSERT_TRUE(box.SetPicture(Png(1000, 500)).ok());
    EXPECT_EQ(box.ShownImage().size(), QSize(100, 50));
}

TEST(PictureBoxTest, AGrownBoxDecodesAgain) {
    PictureBox box;
    box.resize(100, 100);
    ASSERT_TRUE(box.SetPicture(Png(1000, 500)).ok());
    box.show();
    ASSERT_EQ(box.ShownImage().width(), 100);
    box.resize(400, 400);
    EXPECT_TRUE(QTest::qWaitFor([&] { return box.ShownImage().width() == 400; }));
}

class PaintCounter final : public QObject {
public:
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

TEST(PictureBoxTest, AnotherPictureIsPaintedWithoutBeingAskedFor) {
    PictureBox box;
    box.resize(100, 100);
    box.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&box));
    ASSERT_TRUE(box.SetPicture(Png(20, 20)).ok());
    QCoreApplication::processEvents();
    PaintCounter counter;
    box.installEventFilter(&counter);
    QCoreApplication::processEvents();
    ASSERT_EQ(counter.paints, 0);
    ASSERT_TRUE(box.SetPicture(Png(40, 40)).ok());
    QCoreApplication::processEvents();
    EXPECT_GT(counter.paints, 0);
}

TEST(PictureBoxTest, GarbageLeavesThePlaceholder) {
    PictureBox box;
    EXPECT_FALSE(box.SetPicture(PictureSource::Bytes("no picture")).ok());
    EXPECT_TRUE(box.shows_placeholder());
    EXPECT_TRUE(box.ShownImage().isNull());
}

TEST(PictureBoxTest, APictureThatIsNotShownSaysWhy) {
    PictureBox box;
    box.SetPicture(PictureSource::Bytes("no picture")).Ignore();
    EXPECT_TRUE(box.toolTip().contains(QStringLiteral("not a picture")));
    ASSERT_TRUE(box.SetPicture(Png(10, 10)).ok());
    EXPECT_TRUE(box.toolTip().isEmpty());
    box.ShowPlaceholder();
    EXPECT_TRUE(box.toolTip().isEmpty());
}

TEST(PictureBoxTest, ThePlaceholderIsPaintedInsideTheBoxWithItsProportions) {
    PictureBox box;
    box.resize(300, 100);
    const QImage seen = Painted(box);
    const QColor background = seen.pixelColor(0, 50);
    int painted = 0;
    for (int x = 100; x < 200; ++x)
        for (int y = 0; y < 100; ++y)
            painted += seen.pixelColor(x, y) != background ? 1 : 0;
    EXPECT_GT(painted, 500);
}

TEST(PictureBoxTest, ABodyThatCannotBeDecodedIsNoticedWhenItIsPainted) {
    PictureBox box;
    box.resize(100, 100);
    PictureSource damaged = Png(50, 50);
    damaged.bytes.truncate(50);
    ASSERT_TRUE(box.SetPicture(damaged).ok());
    Painted(box);
    EXPECT_TRUE(box.shows_placeholder());
}

TEST(PictureBoxTest, AWaitingBoxPaintsNothing) {
    PictureBox box;
    box.resize(100, 100);
    box.Wait();
    EXPECT_FALSE(box.shows_placeholder());
    const QImage seen = Painted(box);
    QImage empty = seen;
    empty.fill(seen.pixelColor(0, 0));
    EXPECT_EQ(seen, empty);
    box.ShowPlaceholder();
    EXPECT_NE(Painted(box), empty);
}

TEST(PictureBoxTest, ADecodedPictureIsPaintedAsItIs) {
    PictureBox box;
    box.resize(100, 100);
    const auto decoded = DecodePictureWithSize(Png(400, 200), {100, 100});
    ASSERT_TRUE(decoded.ok());
    box.ShowDecoded(PictureSource::File(QStringLiteral("/gone.png")), *decoded);
    EXPECT_TRUE(IsRed(Painted(box), 50, 50));
    EXPECT_EQ(box.ShownImage().size(), QSize(100, 50));
}

TEST(PictureBoxTest, APictureWhoseFileHasGoneStaysWhenTheBoxGrows) {
    PictureBox box;
    box.resize(100, 100);
    box.show();
    const auto decoded = DecodePictureWithSize(Png(1000, 500), {100, 100});
    ASSERT_TRUE(decoded.ok());
    box.resize(400, 400);
    box.ShowDecoded(PictureSource::File(QStringLiteral("/gone.png")), *decoded);
    EXPECT_EQ(box.ShownImage().size(), QSize(100, 50));
    EXPECT_FALSE(box.shows_placeholder());
}

TEST(PictureBoxTest, AClickShowsThePictureLargeAndASecondOneClosesIt) {
    PictureBox box;
    box.resize(60, 60);
    ASSERT_TRUE(box.SetPicture(Png(300, 300)).ok());
    box.show();
    QTest::mouseClick(&box, Qt::LeftButton);
    QWidget* large = LargeWindow();
    ASSERT_NE(large, nullptr);
    auto* inside = large->findChild<ZoomView*>();
    ASSERT_NE(inside, nullptr);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return inside->ShownImage().size() == QSize(300, 300); }, 20'000));
    QTest::mouseClick(inside->viewport(), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([] { return LargeWindow() == nullptr; }));
}

TEST(PictureBoxTest, ASmallPictureIsShownLargerThanItIs) {
    PictureBox box;
    box.resize(60, 60);
    ASSERT_TRUE(box.SetPicture(Png(40, 40)).ok());
    box.show();
    QTest::mouseClick(&box, Qt::LeftButton);
    QWidget* large = LargeWindow();
    ASSERT_NE(large, nullptr);
    EXPECT_GT(large->width(), 200);
    auto* inside = large->findChild<ZoomView*>();
    ASSERT_NE(inside, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !inside->ShownImage().isNull(); }, 20'000));
    EXPECT_TRUE(IsRed(inside->grab().toImage().convertToFormat(QImage::Format_RGB32), 10,
                      inside->height() / 2));
    large->close();
    EXPECT_TRUE(QTest::qWaitFor([] { return LargeWindow() == nullptr; }));
}

TEST(PictureBoxTest, EscapeClosesTheLargePicture) {
    PictureBox box;
    ASSERT_TRUE(box.SetPicture(Png(300, 300)).ok());
    box.show();
    QTest::mouseClick(&box, Qt::LeftButton);
    QWidget* large = LargeWindow();
    ASSERT_NE(large, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(large));
    QTest::keyClick(large, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([] { return LargeWindow() == nullptr; }));
}

TEST(PictureBoxTest, TheKeyboardReachesAPictureAndShowsItLarge) {
    PictureBox box(QStringLiteral("Screenshot"));
    EXPECT_EQ(box.focusPolicy(), Qt::NoFocus);  // there is nothing to be shown
    ASSERT_TRUE(box.SetPicture(Png(300, 300)).ok());
    EXPECT_EQ(box.focusPolicy(), Qt::StrongFocus);
    box.show();
    const QImage before = Painted(box);
    box.setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return box.hasFocus(); }));
    EXPECT_NE(Painted(box), before);
    for (const auto key : {Qt::Key_Return, Qt::Key_Space}) {
        QTest::keyClick(&box, key);
        ASSERT_NE(LargeWindow(), nullptr);
        LargeWindow()->close();
        ASSERT_TRUE(QTest::qWaitFor([] { return LargeWindow() == nullptr; }));
    }
    QTest::keyClick(&box, Qt::Key_A);
    EXPECT_EQ(LargeWindow(), nullptr);
    box.ShowPlaceholder();
    EXPECT_EQ(box.focusPolicy(), Qt::NoFocus);
}

TEST(PictureBoxTest, AssistiveTechnologyFindsAPictureAndPressesIt) {
    PictureBox box(QStringLiteral("Screenshot"));
    ASSERT_TRUE(box.SetPicture(Png(300, 300)).ok());
    box.show();
    QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(&box);
    ASSERT_NE(access, nullptr);
    EXPECT_EQ(access->role(), QAccessible::Graphic);
    EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("Screenshot"));
    const QString press = QAccessibleActionInterface::pressAction();
    EXPECT_TRUE(access->actionInterface()->actionNames().contains(press));
    access->actionInterface()->doAction(press);
    ASSERT_NE(LargeWindow(), nullptr);
    LargeWindow()->close();
    ASSERT_TRUE(QTest::qWaitFor([] { return LargeWindow() == nullptr; }));
    box.ShowPlaceholder();
    EXPECT_FALSE(access->actionInterface()->actionNames().contains(press));
    access->actionInterface()->doAction(press);
    EXPECT_EQ(LargeWindow(), nullptr);
}

TEST(PictureBoxTest, AClickOnThePlaceholderShowsNothing) {
    PictureBox box;
    box.show();
    QTest::mouseClick(&box, Qt::LeftButton);
    EXPECT_EQ(LargeWindow(), nullptr);
}

}  // namespace
}  // namespace widgets
