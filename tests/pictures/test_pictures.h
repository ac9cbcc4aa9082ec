// Pictures for the tests: a colourful one with smooth and sharp places, and ways to make files of
// it.
#pragma once

#include "pictures/dib_section.h"

#include <QtCore/QBuffer>
#include <QtGui/QImage>

#include <cstdint>
#include <vector>

namespace test_pictures {

inline QImage Colourful(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(
                x, y, qRgb(x * 255 / width, y * 255 / height, (x / 16 + y / 16) % 2 ? 200 : 60));
    return image;
}

inline std::vector<std::uint8_t> Encoded(const QImage& image, const char* format,
                                         int quality = 90) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, quality);
    return {bytes.begin(), bytes.end()};
}

inline pictures::cDIBSection SectionOf(const QImage& image) {
    pictures::cDIBSection section;
    section.Create(image.width(), image.height(), 3);
    for (int y = 0; y < image.height(); ++y) {
        std::uint8_t* row = section.RowFromTop(y);
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            row[3 * x] = static_cast<std::uint8_t>(qBlue(pixel));
            row[3 * x + 1] = static_cast<std::uint8_t>(qGreen(pixel));
            row[3 * x + 2] = static_cast<std::uint8_t>(qRed(pixel));
        }
    }
    return section;
}

inline QRgb PixelOf(const pictures::cDIBSection& section, int x, int y) {
    const std::uint8_t* p = section.RowFromTop(y) + x * section.dib_channels();
    return qRgb(p[2], p[1], p[0]);
}

// Mean absolute difference of a colour channel, 0..255.
inline double MeanError(const pictures::cDIBSection& section, const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb a = PixelOf(section, x, y);
            const QRgb b = image.pixel(x, y);
            sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
                   std::abs(qBlue(a) - qBlue(b));
        }
    return sum / (3.0 * image.width() * image.height());
}

}  // namespace test_pictures
