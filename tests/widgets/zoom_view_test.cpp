// Needs widgets; runs offscreen.
#include "widgets/zoom_view.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>

namespace widgets {
namespace {

constexpr QSize kPicture(600, 900);

QByteArray Png(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "png"));
    return bytes;
}

class ZoomViewTest : public testing::Test {
protected:
    void SetUp() override {
        view.resize(300, 300);
        view.show();
    }
    void Wheel(int notches, const QPointF& at, Qt::KeyboardModifiers modifiers = {}) {
        QWheelEvent event(at, view.viewport()->mapToGlobal(at), {}, {0, 120 * notches}, {},
                          modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.viewport(), &event);
    }
    // The place of the picture, in its own pixels, that is seen there.
    QPointF Under(const QPointF& at) { return (at - view.PictureRect().topLeft()) / view.Scale(); }
    bool WaitForPicture(QSize size) {
        return QTest::qWaitFor([&] { return view.ShownImage().size() == size; }, 20'000);
    }

    ZoomView view{PictureSource::Bytes(Png(kPicture)), kPicture};
};

TEST_F(ZoomViewTest, APictureFitsAtFirst) {
    EXPECT_TRUE(view.fits());
    EXPECT_DOUBLE_EQ(view.Scale(), 300.0 / 900);
    EXPECT_EQ(view.PictureRect(), QRectF(50, 0, 200, 300));
    EXPECT_EQ(view.verticalScrollBar()->maximum(), 0);
    EXPECT_TRUE(WaitForPicture({200, 300}));
    view.resize(450, 450);
    EXPECT_DOUBLE_EQ(view.Scale(), 450.0 / 900);
}

TEST_F(ZoomViewTest, TheWheelEnlargesWhatIsUnderThePointer) {
    const QPointF at(120, 200);
    const QPointF before = Under(at);
    Wheel(6, at);
    EXPECT_FALSE(view.fits());
    EXPECT_GT(view.Scale(), 1);
    EXPECT_NEAR(Under(at).x(), before.x(), 1);
    EXPECT_NEAR(Under(at).y(), before.y(), 1);
    EXPECT_TRUE(WaitForPicture(kPicture));
    Wheel(-60, at);
    EXPECT_TRUE(view.fits());
    Wheel(600, at);
    EXPECT_DOUBLE_EQ(view.Scale(), ZoomView::kMaxScale);
}

TEST_F(ZoomViewTest, ShiftAndTheWheelScroll) {
    Wheel(8, {150, 150});
    const double scale = view.Scale();
    const int x = view.horizontalScrollBar()->value(), y = view.verticalScrollBar()->value();
    Wheel(-1, {150, 150}, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(view.Scale(), scale);
    EXPECT_TRUE(view.verticalScrollBar()->value() != y || view.horizontalScrollBar()->value() != x);
}

TEST_F(ZoomViewTest, KeysZoomAndScroll) {
    const double fitting = view.Scale();
    QTest::keyClick(&view, Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(view.Scale(), fitting * 1.25);
    QTest::keyClick(&view, Qt::Key_Minus);
    EXPECT_TRUE(view.fits());
    QTest::keyClick(&view, Qt::Key_1);
    EXPECT_DOUBLE_EQ(view.Scale(), 1);
    QTest::keyClick(&view, Qt::Key_Home);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_GT(view.verticalScrollBar()->value(), 0);
    QTest::keyClick(&view, Qt::Key_End);
    EXPECT_EQ(view.verticalScrollBar()->value(), view.verticalScrollBar()->maximum());
    QTest::keyClick(&view, Qt::Key_PageUp);
    EXPECT_LT(view.verticalScrollBar()->value(), view.verticalScrollBar()->maximum());
    QTest::keyClick(&view, Qt::Key_0);
    EXPECT_DOUBLE_EQ(view.Scale(), fitting);
}

TEST_F(ZoomViewTest, DraggingMovesThePictureAndIsNoClick) {
    QSignalSpy clicks(&view, &ZoomView::Clicked);
    QTest::keyClick(&view, Qt::Key_1);
    const int x = view.horizontalScrollBar()->value(), y = view.verticalScrollBar()->value();
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, {150, 150});
    QTest::mouseMove(view.viewport(), {130, 110});
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, {130, 110});
    EXPECT_EQ(view.horizontalScrollBar()->value(), x + 20);
    EXPECT_EQ(view.verticalScrollBar()->value(), y + 40);
    EXPECT_EQ(clicks.count(), 0);
    QTest::mouseClick(view.viewport(), Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 1);
}

TEST_F(ZoomViewTest, TheWindowGoesOnWhileAPictureIsDecoded) {
    QTest::keyClick(&view, Qt::Key_1);
    EXPECT_TRUE(view.ShownImage().isNull());  // decoded elsewhere, brought by an event
    EXPECT_TRUE(WaitForPicture(kPicture));
}

TEST(ZoomViewFailureTest, APictureThatCannotBeShownSaysWhy) {
    ZoomView view(PictureSource::Bytes("no picture"), {});
    view.resize(300, 200);
    view.show();
    const QImage before = view.grab().toImage();
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.grab().toImage() != before; }, 20'000));
    EXPECT_TRUE(view.ShownImage().isNull());
}

TEST(ZoomViewFailureTest, ASizeThatIsNotKnownComesWithThePicture) {
    ZoomView view(PictureSource::Bytes(Png({100, 50})), {});
    view.resize(200, 200);
    view.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !view.ShownImage().isNull(); }, 20'000));
    EXPECT_DOUBLE_EQ(view.Scale(), 2);
}

}  // namespace
}  // namespace widgets
