#include "widgets/artwork.h"

#include <gtest/gtest.h>

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <array>

namespace {

// Pixels of the picture, drawn at the size of a tree icon, that are not transparent.
int DrawnPixels(const QString& name) {
    const auto picture = widgets::Artwork(name);
    if (!picture) return -1;
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    picture->Paint(painter, QRectF(0, 0, 16, 16));
    painter.end();
    int drawn = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            drawn += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
    return drawn;
}

class Artwork : public testing::TestWithParam<const char*> {};

TEST_P(Artwork, IsVisibleAtTheSizeOfATreeIcon) {
    EXPECT_GT(DrawnPixels(QString::fromLatin1(GetParam())), 16 * 16 / 8);
}

INSTANTIATE_TEST_SUITE_P(
    AssetsTest, Artwork,
    testing::Values("icons/apply", "icons/author", "icons/back", "icons/close", "icons/closed",
                    "icons/company", "icons/computer", "icons/detail", "icons/details_view",
                    "icons/drive", "icons/favorite", "icons/file", "icons/filedate",
                    "icons/forward", "icons/home", "icons/information", "icons/list_view",
                    "icons/mame", "icons/more", "icons/new_folder", "icons/number", "icons/open",
                    "icons/paste", "icons/pinball", "icons/question", "icons/save", "icons/search",
                    "icons/set_picture", "icons/stop", "icons/trash", "icons/up", "icons/vp",
                    "icons/warning", "icons/year", "placeholder", "play", "play_pressed",
                    "tavolo"));

}  // namespace
