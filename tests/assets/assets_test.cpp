#include "assets.h"

#include <gtest/gtest.h>

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include <array>

namespace {

// Pixels of the picture, drawn at the size of a tree icon, that are not transparent.
int DrawnPixels(const QString& name) {
    assets::Load();
    QSvgRenderer picture(QStringLiteral(":/tavolo/") + name);
    if (!picture.isValid()) return -1;
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    picture.render(&painter);
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
    testing::Values("icons/apply.svg", "icons/author.svg", "icons/back.svg", "icons/close.svg",
                    "icons/closed.svg", "icons/company.svg", "icons/computer.svg",
                    "icons/detail.svg", "icons/details_view.svg", "icons/drive.svg",
                    "icons/favorite.svg", "icons/file.svg", "icons/filedate.svg",
                    "icons/forward.svg", "icons/home.svg", "icons/information.svg",
                    "icons/list_view.svg", "icons/mame.svg", "icons/more.svg",
                    "icons/new_folder.svg", "icons/number.svg", "icons/open.svg", "icons/paste.svg",
                    "icons/pinball.svg", "icons/question.svg", "icons/save.svg", "icons/search.svg",
                    "icons/set_picture.svg", "icons/stop.svg", "icons/trash.svg", "icons/up.svg",
                    "icons/vp.svg", "icons/warning.svg", "icons/year.svg", "placeholder.svg",
                    "play.svg", "play_pressed.svg", "tavolo.svg"));

}  // namespace
