// The drawings that the build makes, beside what Qt Svg draws of the same files.
#include "widgets/artwork.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QImage>
#include <QtSvg/QSvgRenderer>

#include <cstdlib>

namespace widgets {
namespace {

constexpr QSize kSize(128, 128);

QImage BySvg(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    QSvgRenderer renderer(file.readAll().replace("currentColor", "#0000ff"));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

QImage ByDrawing(const QString& name) {
    const auto drawing = Artwork(name);
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    if (!drawing) return image;
    QPainter painter(&image);
    drawing->Paint(painter, QRectF(QPointF(), kSize), Qt::blue);
    return image;
}

// Of one channel of one pixel. Curves may be cut into other pieces; the dashes around a rounded
// rectangle begin elsewhere.
constexpr int kSlight = 4;
constexpr int kOtherDashes = 60;

bool HasDashes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll().contains("stroke-dasharray");
}

int GreatestDifference(const QImage& one, const QImage& other) {
    int greatest = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            greatest = std::max({greatest, std::abs(qRed(a) - qRed(b)),
                                 std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
        }
    return greatest;
}

TEST(RecordedArtworkTest, LooksAsTheFilesDo) {
    int compared = 0;
    for (const QString& folder : {QString(), QStringLiteral("icons/")}) {
        const QDir files(QStringLiteral(ASSETS "/") + folder);
        for (const QString& file : files.entryList({QStringLiteral("*.svg")})) {
            const QString name = folder + file.chopped(4);
            const QString path = files.filePath(file);
            EXPECT_LE(GreatestDifference(BySvg(path), ByDrawing(name)),
                      HasDashes(path) ? kOtherDashes : kSlight)
                << qPrintable(name);
            ++compared;
        }
    }
    EXPECT_GE(compared, 38);
}

}  // namespace
}  // namespace widgets
