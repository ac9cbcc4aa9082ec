#include "widgets/picture_loader.h"

#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>

namespace widgets {
namespace {

QImage Painting(int width, int height, Qt::GlobalColor color = Qt::red) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

QByteArray Encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes;
}

// A GIF of one black pixel.
QByteArray OnePixelGif() {
    return QByteArray::fromHex("47494638396101000100800000000000ffffff21f90401000000002c00000000"
                               "010001000002024401003b");
}

class PictureFormatTest : public testing::TestWithParam<const char*> {};

TEST_P(PictureFormatTest, AFileIsDecodedWhateverItsNameSays) {
    test_support::TemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("picture.dat"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(Encoded(Painting(40, 30), GetParam()));
    file.close();

    const auto picture = DecodePicture(PictureSource::File(path), {100, 100});

    ASSERT_TRUE(picture.ok()) << picture.status().message();
    EXPECT_EQ(picture->size(), QSize(40, 30));
    EXPECT_GT(qRed(picture->pixel(20, 15)), 250);
}

INSTANTIATE_TEST_SUITE_P(Formats, PictureFormatTest, testing::Values("bmp", "jpg", "png", "webp"),
                         [](const auto& test) { return std::string(test.param); });

TEST(PictureLoaderTest, AGifIsDecoded) {
    const auto picture = DecodePicture(PictureSource::Bytes(OnePixelGif()), {10, 10});
    ASSERT_TRUE(picture.ok()) << picture.status().message();
    EXPECT_EQ(picture->size(), QSize(1, 1));
}

// More formats come with the plugin that reads WebP.
TEST(PictureLoaderTest, AFormatThatIsNotOneOfOursIsRefused) {
    // A grey dot as TIFF 6.0 has it: little-endian, nine entries of tag, type, count and value, no
    // further picture, the dot.
    const QByteArray bytes = QByteArray::fromHex("49492a0008000000"
                                                 "0900"
                                                 "000103000100000001000000"  // width
                                                 "010103000100000001000000"  // height
                                                 "020103000100000008000000"  // bits
                                                 "030103000100000001000000"  // not packed
                                                 "060103000100000001000000"  // 0 is black
                                                 "11010400010000007a000000"  // where the dot is
                                                 "150103000100000001000000"  // one colour
                                                 "160103000100000001000000"  // rows of the strip
                                                 "170104000100000001000000"  // bytes of the strip
                                                 "00000000"
                                                 "80");
    EXPECT_EQ(PictureSize(PictureSource::Bytes(bytes)).status().code(),
              base::StatusCode::kUnsupported);
}

// A JPEG of 64 x 32 pixels whose quarters are red, blue (above), green and white (below), and an
// Exif block that says how the camera was held (Exif 2.3, tag 0112 Orientation).
QByteArray TurnedJpeg(int orientation) {
    QImage image(64, 32, QImage::Format_RGB32);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            image.setPixelColor(
                x, y, y < 16 ? (x < 32 ? Qt::red : Qt::blue) : (x < 32 ? Qt::green : Qt::white));
    QByteArray exif =
        QByteArray::fromHex("ffe1002245786966000049492a000800000001001201030001000000");
    exif += static_cast<char>(orientation);
    exif += QByteArray(7, '\0');  // the value's padding, no next block
    return Encoded(image, "jpg").insert(2, exif);
}

struct Turn {
    int orientation;
    bool is_upright;                                 // wider than high
    const char *left_top, *right_top, *left_bottom;  // colours as they are to be seen
};

class TurnedPictureTest : public testing::TestWithParam<Turn> {
protected:
    static std::string ColourAt(const QImage& image, double x, double y) {
        const QColor colour = image.pixelColor(static_cast<int>(image.width() * x),
                                               static_cast<int>(image.height() * y));
        const bool red = colour.red() > 128;
        const bool green = colour.green() > 128;
        const bool blue = colour.blue() > 128;
        if (red && green && blue) return "white";
        return red ? "red" : green ? "green" : blue ? "blue" : "black";
    }
};

TEST_P(TurnedPictureTest, IsSeenAsItWasTaken) {
    const auto& turn = GetParam();
    const PictureSource source = PictureSource::Bytes(TurnedJpeg(turn.orientation));
    const QSize seen = turn.is_upright ? QSize(64, 32) : QSize(32, 64);
    const auto size = PictureSize(source);
    ASSERT_TRUE(size.ok()) << size.status().message();
    EXPECT_EQ(*size, seen);
    for (const int box : {200, 16}) {
        const auto picture = DecodePicture(source, {box, box});
        ASSERT_TRUE(picture.ok()) << picture.status().message();
        EXPECT_EQ(picture->size(), box > 64 ? seen : seen / 4);
        EXPECT_EQ(ColourAt(*picture, 0.25, 0.25), turn.left_top) << box;
        EXPECT_EQ(ColourAt(*picture, 0.75, 0.25), turn.right_top) << box;
        EXPECT_EQ(ColourAt(*picture, 0.25, 0.75), turn.left_bottom) << box;
    }
}

// The box is as wide as the picture is stored, not as it is seen.
TEST(PictureLoaderTest, ATurnedPictureFitsIntoABoxThatIsNoSquare) {
    for (const int orientation : {6, 8}) {
        const auto picture = DecodePicture(PictureSource::Bytes(TurnedJpeg(orientation)), {64, 32});
        ASSERT_TRUE(picture.ok()) << picture.status().message();
        EXPECT_EQ(picture->size(), QSize(16, 32)) << orientation;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Orientations, TurnedPictureTest,
    testing::Values(Turn{1, true, "red", "blue", "green"}, Turn{2, true, "blue", "red", "white"},
                    Turn{3, true, "white", "green", "blue"}, Turn{4, true, "green", "white", "red"},
                    Turn{5, false, "red", "green", "blue"}, Turn{6, false, "green", "red", "white"},
                    Turn{7, false, "white", "blue", "green"},
                    Turn{8, false, "blue", "white", "red"}),
    [](const auto& test) { return std::to_string(test.param.orientation); });

TEST(PictureLoaderTest, ALargePictureIsDecodedAtTheSizeOfTheBoxWithItsProportions) {
    const auto bytes = Encoded(Painting(800, 400), "jpg");
    const auto picture = DecodePicture(PictureSource::Bytes(bytes), {200, 200});
    ASSERT_TRUE(picture.ok());
    EXPECT_EQ(picture->size(), QSize(200, 100));
}

TEST(PictureLoaderTest, AnExtremelyNarrowPictureKeepsAPixelOfWidth) {
    const auto bytes = Encoded(Painting(1, 2000), "png");
    const auto picture = DecodePicture(PictureSource::Bytes(bytes), {100, 100});
    ASSERT_TRUE(picture.ok());
    EXPECT_EQ(picture->size(), QSize(1, 100));
}

TEST(PictureLoaderTest, TheSizeComesFromTheHeaderAlone) {
    QByteArray bytes = Encoded(Painting(640, 480), "png");
    bytes.truncate(64);
    const auto size = PictureSize(PictureSource::Bytes(bytes));
    ASSERT_TRUE(size.ok());
    EXPECT_EQ(*size, QSize(640, 480));
}

TEST(PictureLoaderTest, GarbageIsNoPicture) {
    const auto source = PictureSource::Bytes(QByteArray(5000, 'x'));
    EXPECT_EQ(PictureSize(source).status().code(), base::StatusCode::kUnsupported);
    EXPECT_EQ(DecodePicture(source, {10, 10}).status().code(), base::StatusCode::kUnsupported);
}

TEST(PictureLoaderTest, AMissingFileIsNotFound) {
    const auto source = PictureSource::File(QStringLiteral("/nowhere/picture.jpg"));
    EXPECT_EQ(PictureSize(source).status().code(), base::StatusCode::kNotFound);
}

TEST(PictureLoaderTest, ADrawingIsRefused) {
    const QByteArray svg("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    EXPECT_FALSE(PictureSize(PictureSource::Bytes(svg)).ok());
}

void Put32(QByteArray& bytes, int at, quint32 value) {
    for (int i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i));
}

TEST(PictureLoaderTest, ABitmapShorterThanItsHeaderSaysIsCorrupt) {
    QByteArray bytes = Encoded(Painting(8, 8), "bmp");
    Put32(bytes, 18, 4000);
    Put32(bytes, 22, 4000);
    EXPECT_EQ(PictureSize(PictureSource::Bytes(bytes)).status().code(),
              base::StatusCode::kCorruption);
}

TEST(PictureLoaderTest, ABitmapWithItsRowsFromTheTopIsDecoded) {
    QByteArray bytes = Encoded(Painting(8, 6), "bmp");
    Put32(bytes, 22, static_cast<quint32>(-6));
    const auto picture = DecodePicture(PictureSource::Bytes(bytes), {10, 10});
    ASSERT_TRUE(picture.ok()) << picture.status().message();
    EXPECT_EQ(picture->size(), QSize(8, 6));
}

// Writes width and height into the frame header (marker FF C0) of a JPEG.
QByteArray WithJpegSize(QByteArray bytes, quint16 width, quint16 height) {
    const auto frame = bytes.indexOf("\xFF\xC0");
    EXPECT_GT(frame, 0);
    bytes[frame + 5] = static_cast<char>(height >> 8);
    bytes[frame + 6] = static_cast<char>(height & 0xFF);
    bytes[frame + 7] = static_cast<char>(width >> 8);
    bytes[frame + 8] = static_cast<char>(width & 0xFF);
    return bytes;
}

TEST(PictureLoaderTest, AJpegTooSmallForItsPixelsIsCorrupt) {
    const auto bytes = WithJpegSize(Encoded(Painting(16, 16), "jpg"), 8000, 8000);
    EXPECT_EQ(PictureSize(PictureSource::Bytes(bytes)).status().code(),
              base::StatusCode::kCorruption);
}

TEST(PictureLoaderTest, APictureOfFourThousandMegapixelsIsRefused) {
    const auto bytes = WithJpegSize(Encoded(Painting(16, 16), "jpg"), 65000, 65000);
    EXPECT_EQ(PictureSize(PictureSource::Bytes(bytes)).status().code(),
              base::StatusCode::kUnsupported);
}

TEST(PictureLoaderTest, AScanOfFortyMegapixelsIsDecodedInASmallPartOfItsMemory) {
    const auto bytes = Encoded(Painting(7300, 5500, Qt::darkGreen), "jpg");
    const auto picture = DecodePicture(PictureSource::Bytes(bytes), {400, 300});
    ASSERT_TRUE(picture.ok()) << picture.status().message();
    EXPECT_EQ(picture->size(), QSize(398, 300));
    EXPECT_LT(picture->sizeInBytes(), 500'000);
}

class DamagedPictureTest : public testing::TestWithParam<const char*> {};

TEST_P(DamagedPictureTest, CutAtEveryLengthItGivesAPictureOrAStatus) {
    QImage image = Painting(24, 16, Qt::blue);
    const QByteArray whole = Encoded(image, GetParam());
    for (qsizetype length = 0; length < whole.size(); ++length) {
        const auto source = PictureSource::Bytes(whole.left(length));
        const auto picture = DecodePicture(source, {100, 100});
        EXPECT_TRUE(!picture.ok() || picture->width() <= 100) << length;
    }
}

TEST_P(DamagedPictureTest, WithEveryByteFlippedItGivesAPictureOrAStatus) {
    const QByteArray whole = Encoded(Painting(24, 16, Qt::blue), GetParam());
    for (qsizetype at = 0; at < whole.size(); ++at) {
        QByteArray bytes = whole;
        bytes[at] = static_cast<char>(~bytes[at]);
        const auto picture = DecodePicture(PictureSource::Bytes(bytes), {100, 100});
        EXPECT_TRUE(!picture.ok() || picture->height() <= 100) << at;
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedPictureTest, testing::Values("bmp", "jpg", "png", "webp"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
}  // namespace widgets
