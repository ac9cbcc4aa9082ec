#include "widgets/drawing.h"

#include <gtest/gtest.h>

#include <QtGui/QImage>

namespace widgets {
namespace {

// A square of 10 by 10: its left half red, a line of ink down its right edge.
Drawing HalfRed() {
    Drawing drawing{QSizeF(10, 10), {}};
    DrawnShape half;
    half.path.addRect(0, 0, 5, 10);
    half.brush = Qt::red;
    half.pen = Qt::NoPen;
    DrawnShape line;
    line.path.moveTo(9, 0);
    line.path.lineTo(9, 10);
    line.pen = QPen(QColor(kInk), 2);
    drawing.shapes = {half, line};
    return drawing;
}

QImage Painted(const Drawing& drawing, QSize size, qreal opacity = 1) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(opacity);
    drawing.Paint(painter, QRectF(QPointF(), size), Qt::green);
    EXPECT_EQ(painter.worldTransform(), QTransform());
    return image;
}

TEST(DrawingTest, IsPaintedInTheMiddleOfItsPlaceAndInTheInkThatIsGiven) {
    const QImage image = Painted(HalfRed(), QSize(200, 100));
    EXPECT_EQ(image.pixelColor(49, 50), QColor(Qt::transparent));
    EXPECT_EQ(image.pixelColor(51, 1), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(99, 98), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(101, 50).alpha(), 0);
    EXPECT_EQ(image.pixelColor(140, 50), QColor(Qt::green));
    EXPECT_EQ(image.pixelColor(151, 50).alpha(), 0);
}

TEST(DrawingTest, IsAsFaintAsThePainterAndItsShapesSay) {
    Drawing drawing = HalfRed();
    drawing.shapes[0].opacity = 0.5;
    EXPECT_NEAR(Painted(drawing, QSize(10, 10), 0.5).pixelColor(2, 5).alpha(), 64, 1);
}

TEST(DrawingTest, ShapesLieWhereTheirTransformsPutThem) {
    Drawing drawing = HalfRed();
    drawing.shapes[0].transform = QTransform::fromTranslate(3, 0);
    const QImage image = Painted(drawing, QSize(100, 100));
    EXPECT_EQ(image.pixelColor(20, 50).alpha(), 0);
    EXPECT_EQ(image.pixelColor(75, 50), QColor(Qt::red));
}

TEST(DrawingTest, ItsBytesGiveItBackAndOthersGiveNone) {
    const QByteArray bytes = ToBytes(HalfRed());
    const auto read = FromBytes(bytes);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(Painted(*read, QSize(60, 60)), Painted(HalfRed(), QSize(60, 60)));
    EXPECT_FALSE(FromBytes(bytes.chopped(1)).has_value());
    EXPECT_FALSE(FromBytes(bytes + 'x').has_value());
    EXPECT_FALSE(FromBytes({}).has_value());
}

}  // namespace
}  // namespace widgets
