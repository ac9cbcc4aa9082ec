#include "pictures/dib_section.h"

#include "pictures/test_pictures.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace pictures {
namespace {

using test_pictures::Colourful;

QByteArray Little(std::initializer_list<std::pair<quint32, int>> numbers) {
    QByteArray bytes;
    for (const auto& [number, size] : numbers)
        for (int i = 0; i < size; ++i)
            bytes.append(static_cast<char>((number >> (8 * i)) & 0xFF));
    return bytes;
}

// A BMP file with a 40-byte header. `height` negative: top-down.
QByteArray Bmp(int width, int height, int bits, int compression, const QByteArray& palette,
               const QByteArray& pixels) {
    const auto offset = static_cast<quint32>(54 + palette.size());
    return QByteArrayLiteral("BM") +
           Little({{offset + static_cast<quint32>(pixels.size()), 4},
                   {0, 4},
                   {offset, 4},
                   {40, 4},
                   {static_cast<quint32>(width), 4},
                   {static_cast<quint32>(height), 4},
                   {1, 2},
                   {static_cast<quint32>(bits), 2},
                   {static_cast<quint32>(compression), 4},
                   {static_cast<quint32>(pixels.size()), 4},
                   {0, 4},
                   {0, 4},
                   {static_cast<quint32>(palette.size() / 4), 4},
                   {0, 4}}) +
           palette + pixels;
}

class BmpTest : public testing::Test {
protected:
    bool LoadBytes(const QByteArray& bytes) {
        const QString path = folder.filePath(QStringLiteral("a.bmp"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        return section.Load(path, prompts);
    }

    test_support::TemporaryDir folder;
    test_support::FakePrompts prompts;
    cDIBSection section;
};

const QByteArray kRedAndBlue = Little({{0x00FF0000, 4}, {0x000000FF, 4}});

TEST(DibSectionTest, ScanLineIsPaddedToFourBytes) {
    cDIBSection section;
    ASSERT_TRUE(section.Create(101, 2, 3));
    EXPECT_EQ(section.BytesPerScanLine(), 304);
    EXPECT_EQ(section.header().biSizeImage, 608U);
    EXPECT_EQ(section.header().biBitCount, 24);
    EXPECT_EQ(section.dib_channels(), 3);
}

TEST(DibSectionTest, FourChannelsHave32Bits) {
    cDIBSection section;
    ASSERT_TRUE(section.Create(5, 3, 4));
    EXPECT_EQ(section.BytesPerScanLine(), 20);
    EXPECT_EQ(section.header().biBitCount, 32);
    EXPECT_EQ(section.header().biSize, 40U);
    EXPECT_EQ(section.header().biPlanes, 1);
}

TEST(DibSectionTest, RowsLieBottomUp) {
    cDIBSection section;
    ASSERT_TRUE(section.Create(3, 4, 3));
    EXPECT_EQ(section.RowFromTop(3), section.DIBSectionBitsPtr());
    EXPECT_EQ(section.RowFromTop(0), section.DIBSectionBitsPtr() + 3 * section.BytesPerScanLine());
}

TEST(DibSectionTest, CreateReplacesAndCleanUpEmpties) {
    cDIBSection section;
    EXPECT_TRUE(section.empty());
    ASSERT_TRUE(section.Create(3, 4, 3));
    ASSERT_TRUE(section.Create(7, 2, 3));
    EXPECT_EQ(section.dib_width(), 7);
    section.CleanUp();
    EXPECT_TRUE(section.empty());
    EXPECT_EQ(section.header(), BitmapInfoHeader{});
    EXPECT_EQ(section.DIBSectionBitsPtr(), nullptr);
}

TEST(DibSectionTest, ImpossibleSizesLeaveItEmpty) {
    cDIBSection section;
    for (const auto& [width, height, channels] :
         {std::tuple{0, 5, 3}, std::tuple{5, -1, 3}, std::tuple{5, 5, 2},
          std::tuple{65000, 65000, 3}}) {
        EXPECT_FALSE(section.Create(width, height, channels));
        EXPECT_TRUE(section.empty());
    }
}

TEST(DibSectionTest, PaintPictureDrawsAllOfItUpright) {
    const QImage image = Colourful(64, 48);
    const cDIBSection section = test_pictures::SectionOf(image);
    QImage canvas(70, 60, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    {
        QPainter painter(&canvas);
        section.PaintPicture(painter, 2, 3, -1, -1);
    }
    EXPECT_EQ(canvas.copy(2, 3, 64, 48), image);
    EXPECT_EQ(canvas.pixel(1, 3), qRgb(0, 0, 0));
    EXPECT_EQ(canvas.pixel(66, 3), qRgb(0, 0, 0));
    EXPECT_EQ(canvas.pixel(2, 51), qRgb(0, 0, 0));
}

TEST(DibSectionTest, PaintPictureDrawsAPart) {
    const QImage image = Colourful(64, 48);
    const cDIBSection section = test_pictures::SectionOf(image);
    QImage canvas(70, 60, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    {
        QPainter painter(&canvas);
        section.PaintPicture(painter, 0, 0, 10, 8, 20, 30);
    }
    EXPECT_EQ(canvas.copy(0, 0, 10, 8), image.copy(20, 30, 10, 8));
    EXPECT_EQ(canvas.pixel(10, 0), qRgb(0, 0, 0));
    EXPECT_EQ(canvas.pixel(0, 8), qRgb(0, 0, 0));
}

TEST_F(BmpTest, MissingFileGivesTheMessageAndAnEmptyInstance) {
    section.Create(2, 2, 3);
    EXPECT_FALSE(section.Load(folder.filePath(QStringLiteral("none.bmp")), prompts));
    EXPECT_TRUE(section.empty());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Can't load BMP image"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kNone);
}

TEST_F(BmpTest, TwentyFourBitsBottomUp) {
    ASSERT_TRUE(LoadBytes(Bmp(1, 2, 24, 0, {}, Little({{0x0000FF, 4}, {0xFF0000, 4}}))));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 1), qRgb(0, 0, 255));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(section.header().biBitCount, 24);
    EXPECT_EQ(section.header().biCompression, 0U);
    EXPECT_EQ(section.header().biSizeImage, 0U);
    EXPECT_EQ(section.header().biPlanes, 1);
}

TEST_F(BmpTest, TopDownRows) {
    ASSERT_TRUE(LoadBytes(Bmp(1, -2, 24, 0, {}, Little({{0x0000FF, 4}, {0xFF0000, 4}}))));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 0), qRgb(0, 0, 255));
    EXPECT_GT(section.header().biHeight, 0);
}

TEST_F(BmpTest, OneBit) {
    ASSERT_TRUE(LoadBytes(Bmp(2, 1, 1, 0, kRedAndBlue, Little({{0x40, 4}}))));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(test_pictures::PixelOf(section, 1, 0), qRgb(0, 0, 255));
}

TEST_F(BmpTest, FourBits) {
    ASSERT_TRUE(LoadBytes(Bmp(2, 1, 4, 0, kRedAndBlue, Little({{0x10, 4}}))));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 0), qRgb(0, 0, 255));
    EXPECT_EQ(test_pictures::PixelOf(section, 1, 0), qRgb(255, 0, 0));
}

TEST_F(BmpTest, EightBits) {
    ASSERT_TRUE(LoadBytes(Bmp(2, 1, 8, 0, kRedAndBlue, Little({{0x0001, 4}}))));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 0), qRgb(0, 0, 255));
    EXPECT_EQ(test_pictures::PixelOf(section, 1, 0), qRgb(255, 0, 0));
}

TEST_F(BmpTest, EightBitsRunLengthCoded) {
    // Three blue, one red, end of line, end of picture.
    const QByteArray pixels = QByteArray::fromHex("0301010000000001");
    ASSERT_TRUE(LoadBytes(Bmp(4, 1, 8, 1, kRedAndBlue, pixels)));
    EXPECT_EQ(test_pictures::PixelOf(section, 2, 0), qRgb(0, 0, 255));
    EXPECT_EQ(test_pictures::PixelOf(section, 3, 0), qRgb(255, 0, 0));
}

TEST_F(BmpTest, SixteenBits) {
    ASSERT_TRUE(LoadBytes(Bmp(2, 1, 16, 0, {}, Little({{0x7C00, 2}, {0x001F, 2}}))));
    // Five bits of a colour: the three that are missing may be filled up or not.
    EXPECT_NEAR(qRed(test_pictures::PixelOf(section, 0, 0)), 255, 7);
    EXPECT_EQ(qBlue(test_pictures::PixelOf(section, 0, 0)), 0);
    EXPECT_NEAR(qBlue(test_pictures::PixelOf(section, 1, 0)), 255, 7);
}

TEST_F(BmpTest, ThirtyTwoBits) {
    ASSERT_TRUE(LoadBytes(Bmp(1, 1, 32, 0, {}, Little({{0x00102030, 4}}))));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 0), qRgb(0x10, 0x20, 0x30));
}

TEST_F(BmpTest, TwelveByteHeader) {
    const QByteArray file =
        QByteArrayLiteral("BM") +
        Little({{30, 4}, {0, 4}, {26, 4}, {12, 4}, {1, 2}, {1, 2}, {1, 2}, {24, 2}, {0x0000FF, 4}});
    ASSERT_TRUE(LoadBytes(file));
    EXPECT_EQ(test_pictures::PixelOf(section, 0, 0), qRgb(0, 0, 255));
}

TEST_F(BmpTest, HeadersThatLieAreRefusedWithoutTheirMemory) {
    EXPECT_FALSE(LoadBytes(Bmp(60000, 60000, 24, 0, {}, Little({{0, 4}}))));
    EXPECT_FALSE(LoadBytes(Bmp(-5, 5, 24, 0, {}, Little({{0, 4}}))));
    EXPECT_FALSE(LoadBytes(Bmp(4, 4, 13, 0, {}, Little({{0, 4}}))));
    EXPECT_FALSE(LoadBytes(QByteArrayLiteral("BM")));
    EXPECT_FALSE(LoadBytes(QByteArrayLiteral("no picture at all")));
    EXPECT_TRUE(section.empty());
    EXPECT_EQ(prompts.messages.size(), 5U);
}

TEST_F(BmpTest, AFileCutAtAnyLengthIsRefused) {
    const QByteArray whole = Bmp(8, 8, 8, 0, kRedAndBlue, QByteArray(64, '\1'));
    for (qsizetype size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(LoadBytes(whole.left(size))) << size;
        EXPECT_TRUE(section.empty()) << size;
    }
}

}  // namespace
}  // namespace pictures
