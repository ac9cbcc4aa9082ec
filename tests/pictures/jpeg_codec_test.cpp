#include "pictures/jpeg_codec.h"

#include "pictures/test_pictures.h"
#include "support/programs.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtGui/QImageReader>

#include <cstdio>

extern "C" {
#include <jpeglib.h>
}

namespace pictures {
namespace {

using test_pictures::Colourful;
using test_pictures::Encoded;
using test_pictures::PixelOf;

// A four-channel JPEG without an Adobe marker, every pixel the same.
std::vector<std::uint8_t> FourChannelJpeg(int width, int height, std::array<std::uint8_t, 4> pixel,
                                          bool adobe) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = 4;
    info.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 100, TRUE);
    info.write_Adobe_marker = adobe ? TRUE : FALSE;
    jpeg_start_compress(&info, TRUE);
    std::vector<std::uint8_t> row;
    for (int x = 0; x < width; ++x)
        row.insert(row.end(), pixel.begin(), pixel.end());
    JSAMPROW rows[1] = {row.data()};
    while (info.next_scanline < info.image_height)
        jpeg_write_scanlines(&info, rows, 1);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::vector<std::uint8_t> jpeg(buffer, buffer + size);
    std::free(buffer);
    return jpeg;
}

// What djpeg of libjpeg-turbo makes of the file at a scale; a null image without that program.
QImage DjpegOutput(const std::vector<std::uint8_t>& jpeg, int scale) {
    const test_support::TemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("in.jpg")));
    if (!file.open(QFile::WriteOnly)) return {};
    file.write(reinterpret_cast<const char*>(jpeg.data()), static_cast<qint64>(jpeg.size()));
    file.close();
    const auto written = test_support::OutputOf(
        {"djpeg", "-scale", "1/" + std::to_string(scale), "-pnm", file.fileName().toStdString()});
    return QImage::fromData(QByteArray::fromStdString(written.value_or("")), "PNM");
}

TEST(JpegCodecTest, ReducedSizesRoundUp) {
    EXPECT_EQ(ReducedSide(101, 2), 51);
    EXPECT_EQ(ReducedSide(75, 2), 38);
    EXPECT_EQ(ReducedSide(101, 8), 13);
    EXPECT_EQ(ReducedSide(75, 8), 10);
    EXPECT_EQ(ReducedSide(101, 4), 26);
    EXPECT_EQ(ReducedSide(101, 1), 101);
    EXPECT_EQ(ReducedSide(101, 3), 101);
}

TEST(JpegCodecTest, DecodesAtEveryScaleToTheRoundedSize) {
    const auto jpeg = Encoded(Colourful(101, 75), "JPG");
    for (const auto& [scale, width, height] : {std::tuple{1, 101, 75}, std::tuple{2, 51, 38},
                                               std::tuple{4, 26, 19}, std::tuple{8, 13, 10}}) {
        cDIBSection section;
        ASSERT_TRUE(JpegDecode(jpeg, scale, section).ok());
        EXPECT_EQ(section.dib_width(), width);
        EXPECT_EQ(section.dib_height(), height);
        EXPECT_EQ(section.dib_channels(), 3);
    }
}

TEST(JpegCodecTest, EveryScaleEqualsDjpeg) {
    const auto jpeg = Encoded(Colourful(101, 75), "JPG");
    for (const int scale : {1, 2, 4, 8}) {
        const QImage wanted = DjpegOutput(jpeg, scale);
        ASSERT_FALSE(wanted.isNull()) << "djpeg is not installed";
        cDIBSection section;
        ASSERT_TRUE(JpegDecode(jpeg, scale, section).ok());
        ASSERT_EQ(QSize(section.dib_width(), section.dib_height()), wanted.size());
        EXPECT_EQ(test_pictures::MeanError(section, wanted), 0.0) << "scale " << scale;
    }
}

TEST(JpegCodecTest, GreyBecomesThreeChannels) {
    const auto jpeg = Encoded(Colourful(40, 30).convertToFormat(QImage::Format_Grayscale8), "JPG");
    cDIBSection section;
    ASSERT_TRUE(JpegDecode(jpeg, 1, section).ok());
    EXPECT_EQ(section.dib_channels(), 3);
    const QRgb pixel = PixelOf(section, 20, 15);
    EXPECT_EQ(qRed(pixel), qGreen(pixel));
    EXPECT_EQ(qGreen(pixel), qBlue(pixel));
}

TEST(JpegCodecTest, FourChannelsOfLuminanceAndOpacity) {
    // Y, Cb, Cr of pure red (JFIF), half opaque.
    cDIBSection section;
    ASSERT_TRUE(JpegDecode(FourChannelJpeg(16, 16, {76, 85, 255, 128}, false), 1, section).ok());
    EXPECT_EQ(section.dib_channels(), 4);
    const QRgb pixel = PixelOf(section, 8, 8);
    EXPECT_NEAR(qRed(pixel), 254, 2);
    EXPECT_NEAR(qGreen(pixel), 0, 2);
    EXPECT_NEAR(qBlue(pixel), 0, 2);
    EXPECT_NEAR(section.RowFromTop(8)[8 * 4 + 3], 128, 1);
}

TEST(JpegCodecTest, FourChannelsOfAdobeInks) {
    // Stored inverted: no cyan, full magenta and yellow, no black is red.
    cDIBSection section;
    ASSERT_TRUE(JpegDecode(FourChannelJpeg(16, 16, {255, 0, 0, 255}, true), 1, section).ok());
    EXPECT_EQ(section.dib_channels(), 4);
    const QRgb pixel = PixelOf(section, 8, 8);
    EXPECT_NEAR(qRed(pixel), 255, 2);
    EXPECT_NEAR(qGreen(pixel), 0, 2);
}

TEST(JpegCodecTest, RoundTripKeepsSizeAndLooks) {
    const QImage image = Colourful(101, 75);
    std::vector<std::uint8_t> jpeg;
    ASSERT_TRUE(JpegEncode(test_pictures::SectionOf(image), 75, jpeg).ok());
    cDIBSection back;
    ASSERT_TRUE(JpegDecode(jpeg, 1, back).ok());
    EXPECT_EQ(back.dib_width(), 101);
    EXPECT_EQ(back.dib_height(), 75);
    EXPECT_LT(test_pictures::MeanError(back, image), 6.0);
}

TEST(JpegCodecTest, EncodedRowsAreUprightForAnotherDecoder) {
    QImage image(32, 32, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x)
            image.setPixel(x, y, qRgb(255, 0, 0));
    std::vector<std::uint8_t> jpeg;
    ASSERT_TRUE(JpegEncode(test_pictures::SectionOf(image), 75, jpeg).ok());
    const QImage seen = QImage::fromData(jpeg.data(), static_cast<int>(jpeg.size()), "JPG");
    ASSERT_EQ(seen.size(), image.size());
    EXPECT_GT(qRed(seen.pixel(8, 4)), 240);
    EXPECT_LT(qBlue(seen.pixel(8, 4)), 20);
    EXPECT_GT(qBlue(seen.pixel(8, 28)), 240);
}

TEST(JpegCodecTest, EmptySourceCannotBeEncoded) {
    std::vector<std::uint8_t> jpeg;
    const JpegOutcome outcome = JpegEncode(cDIBSection(), 75, jpeg);
    EXPECT_EQ(outcome.failed, JpegStep::kWrite);
    EXPECT_FALSE(outcome.text.empty());
}

TEST(JpegCodecTest, NoJpegFailsAtTheParameters) {
    const std::string text = "this is no picture";
    cDIBSection section;
    const JpegOutcome outcome =
        JpegDecode({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, 1, section);
    EXPECT_EQ(outcome.failed, JpegStep::kReadParameters);
    EXPECT_NE(outcome.code, 0);
    EXPECT_FALSE(outcome.text.empty());
    EXPECT_EQ(JpegDecode({}, 1, section).failed, JpegStep::kReadParameters);
}

TEST(JpegCodecTest, ATruncatedFileFailsAndLeavesTheTargetEmpty) {
    const auto jpeg = Encoded(Colourful(101, 75), "JPG");
    for (std::size_t size = 0; size + 2 < jpeg.size(); size += 7) {
        cDIBSection section;
        const JpegOutcome outcome = JpegDecode({jpeg.data(), size}, 1, section);
        EXPECT_FALSE(outcome.ok()) << size;
        EXPECT_TRUE(section.empty());
    }
}

TEST(JpegCodecTest, FlippedBytesNeverCrash) {
    const auto jpeg = Encoded(Colourful(40, 30), "JPG");
    for (std::size_t at = 0; at < jpeg.size(); ++at) {
        auto damaged = jpeg;
        damaged[at] ^= 0xFF;
        cDIBSection section;
        const JpegOutcome outcome = JpegDecode(damaged, 2, section);
        EXPECT_EQ(outcome.ok(), !section.empty()) << at;
    }
}

TEST(JpegCodecTest, AHeaderThatLiesAboutItsSizeIsRefused) {
    auto jpeg = Encoded(Colourful(16, 16), "JPG");
    for (std::size_t at = 0; at + 9 < jpeg.size(); ++at)
        if (jpeg[at] == 0xFF && jpeg[at + 1] == 0xC0) {
            for (std::size_t i = 5; i < 9; ++i)
                jpeg[at + i] = 0x26;  // 9766 x 9766 pixels
            break;
        }
    cDIBSection section;
    EXPECT_EQ(JpegDecode(jpeg, 1, section).failed, JpegStep::kReadParameters);
    EXPECT_TRUE(section.empty());
}

// A progressive grey picture: the mean of its blocks first, then each of the 63 other coefficients
// in as many scans as it is to have steps.
std::vector<std::uint8_t> JpegOfManyScans(int steps) {
    std::vector<jpeg_scan_info> scans = {{1, {0}, 0, 0, 0, 0}};
    for (int coefficient = 1; coefficient < 64; ++coefficient)
        for (int bit = steps - 1; bit >= 0; --bit)
            scans.push_back(
                {1, {0}, coefficient, coefficient, bit == steps - 1 ? 0 : bit + 1, bit});
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = info.image_height = 8;
    info.input_components = 1;
    info.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&info);
    info.scan_info = scans.data();
    info.num_scans = static_cast<int>(scans.size());
    jpeg_start_compress(&info, TRUE);
    std::uint8_t row[8] = {0, 40, 80, 120, 160, 200, 240, 255};
    JSAMPROW rows[1] = {row};
    while (info.next_scanline < info.image_height)
        jpeg_write_scanlines(&info, rows, 1);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::vector<std::uint8_t> jpeg(buffer, buffer + size);
    std::free(buffer);
    return jpeg;
}

TEST(JpegCodecTest, MoreScansThanAnyEncoderWritesAreRefused) {
    cDIBSection section;
    EXPECT_TRUE(JpegDecode(JpegOfManyScans(3), 1, section).ok());  // 190
    EXPECT_EQ(section.dib_width(), 8);
    EXPECT_EQ(JpegDecode(JpegOfManyScans(4), 1, section).failed, JpegStep::kReadData);  // 253
    EXPECT_TRUE(section.empty());
}

}  // namespace
}  // namespace pictures
