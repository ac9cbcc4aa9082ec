// Pictures that the tests make, and what they ask of them.
#pragma once

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtGui/QImage>

namespace thumbnails {

inline QImage Painted(int width, int height, Qt::GlobalColor color = Qt::red) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

inline bool IsPaintedIn(const QImage& image, Qt::GlobalColor color) {
    if (image.isNull()) return false;
    const QColor seen = image.pixelColor(image.width() / 2, image.height() / 2);
    const QColor wanted(color);
    return std::abs(seen.red() - wanted.red()) < 8 && std::abs(seen.green() - wanted.green()) < 8 &&
           std::abs(seen.blue() - wanted.blue()) < 8;
}

inline QByteArray Encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes;
}

inline void WriteBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

}  // namespace thumbnails
