#include "pictures/dib_section.h"

#include "base/cut_bitmap.h"
#include "pictures/texts.h"
#include "platform/files.h"

#include <QtCore/QFile>
#include <QtGui/QImage>
#include <QtGui/QImageReader>

#include <cstdlib>
#include <cstring>
#include <new>
#include <span>

namespace pictures {
namespace {

bool IsReasonable(int width, int height, int channels) {
    return width > 0 && height > 0 && (channels == 3 || channels == 4) &&
           std::int64_t{width} * height <= kMaxPixels;
}

BitmapInfoHeader HeaderFor(int width, int height, int channels, int scan_line) {
    BitmapInfoHeader header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = channels == 3 ? 24 : 32;
    header.biSizeImage = static_cast<std::uint32_t>(std::int64_t{scan_line} * height);
    return header;
}

int ScanLine(int width, int channels) {
    return (channels * width + 3) & ~3;
}

bool IsCut(const QString& path) {
    QFile file;
    if (!platform::OpenFile(file, path, QIODevice::ReadOnly)) return true;
    const QByteArray header = file.read(base::kBitmapHeaderBytes);
    return base::IsCutBitmap(
        std::as_bytes(std::span(header.constData(), static_cast<std::size_t>(header.size()))),
        file.size());
}

// A null image when the file is not a BMP, claims more than kMaxPixels, or ends early.
QImage ReadBmp(const QString& path) {
    QFile file;
    if (!platform::OpenFile(file, path, QIODevice::ReadOnly)) return {};
    QImageReader reader(&file, QByteArrayLiteral("bmp"));
    reader.setAutoDetectImageFormat(false);
    // A negative height means rows from the top.
    const QSize size = reader.size();
    if (size.height() < -kMaxPixels || !IsReasonable(size.width(), std::abs(size.height()), 3))
        return {};
    if (IsCut(path)) return {};
    reader.setAutoTransform(false);
    return reader.read().convertToFormat(QImage::Format_BGR888);
}

}  // namespace

bool cDIBSection::Create(int width, int height, int channels) {
    CleanUp();
    if (!IsReasonable(width, height, channels)) return false;
    const int scan_line = ScanLine(width, channels);
    try {
        bits_.resize(static_cast<std::size_t>(scan_line) * static_cast<std::size_t>(height));
    } catch (const std::bad_alloc&) {
        return false;
    }
    header_ = HeaderFor(width, height, channels, scan_line);
    return true;
}

bool cDIBSection::Load(const QString& path, platform::UserPrompts& prompts) {
    CleanUp();
    const QImage image = ReadBmp(path);
    if (image.isNull()) {
        prompts.Ask({.text = PicturesTexts::tr("Can't load BMP image"), .title = {}});
        return false;
    }
    if (!Create(image.width(), image.height(), 3)) return false;
    header_.biSizeImage = 0;  // allowed for uncompressed rows
    const auto row_bytes = static_cast<std::size_t>(3) * static_cast<std::size_t>(image.width());
    for (int row = 0; row < image.height(); ++row)
        std::memcpy(RowFromTop(row), image.constScanLine(row), row_bytes);
    return true;
}

void cDIBSection::CleanUp() {
    bits_ = {};
    header_ = {};
}

int cDIBSection::BytesPerScanLine() const {
    return ScanLine(dib_width(), dib_channels());
}

std::uint8_t* cDIBSection::RowFromTop(int from_top) {
    return const_cast<std::uint8_t*>(std::as_const(*this).RowFromTop(from_top));
}

const std::uint8_t* cDIBSection::RowFromTop(int from_top) const {
    const auto row = static_cast<std::size_t>(dib_height() - 1 - from_top);
    return bits_.data() + row * static_cast<std::size_t>(BytesPerScanLine());
}

void cDIBSection::PaintPicture(QPainter& painter, int dest_left, int dest_top, int dest_width,
                               int dest_height, int source_left, int source_top) const {
    if (empty()) return;
    const int width = dest_width < 0 ? dib_width() : dest_width;
    const int height = dest_height < 0 ? dib_height() : dest_height;
    // The rows are stored bottom-up; turning the painter's axis saves a copy of the pixels.
    const auto format = dib_channels() == 3 ? QImage::Format_BGR888 : QImage::Format_RGB32;
    const QImage upside_down(bits_.data(), dib_width(), dib_height(), BytesPerScanLine(), format);
    painter.save();
    painter.setClipRect(dest_left, dest_top, width, height, Qt::IntersectClip);
    painter.translate(dest_left - source_left, dest_top - source_top + dib_height());
    painter.scale(1, -1);
    painter.drawImage(0, 0, upside_down);
    painter.restore();
}

}  // namespace pictures
