#include "widgets/picture_loader.h"

#include "base/cut_bitmap.h"
#include "platform/files.h"
#include "widgets/texts.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtGui/QImageReader>

#include <memory>
#include <span>
#include <utility>

namespace widgets {
namespace {

base::Status Failure(base::StatusCode code, const PictureSource& source, const QString& reason) {
    const QString name = source.path.isEmpty() ? QStringLiteral("picture") : source.path;
    return {code, (name + QStringLiteral(": ") + reason).toStdString()};
}

// The bytes of a picture, opened for reading. nullptr: they cannot be read.
std::unique_ptr<QIODevice> OpenSource(const PictureSource& source) {
    std::unique_ptr<QIODevice> device;
    if (source.path.isEmpty()) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(source.bytes);
        device = std::move(buffer);
    } else {
        auto file = std::make_unique<QFile>();
        if (!platform::OpenFile(*file, source.path, QIODevice::ReadOnly)) return nullptr;
        return file;
    }
    if (!device->open(QIODevice::ReadOnly)) return nullptr;
    return device;
}

bool IsCutBitmap(QIODevice& device) {
    const QByteArray header = device.peek(base::kBitmapHeaderBytes);
    return base::IsCutBitmap(
        std::as_bytes(std::span(header.constData(), static_cast<std::size_t>(header.size()))),
        device.size());
}

// The fewest bits that a JPEG block of 8 x 8 samples takes, and six of them cover 16 x 16 pixels: a
// file that has more pixels than this for each of its bytes is filled up with grey, at the cost of
// a whole picture.
constexpr qint64 kMaxPixelsPerJpegByte = 512;
constexpr qint64 kPixelsNotWorthAsking = 1'000'000;

bool IsCutJpeg(const QImageReader& reader, qint64 pixels) {
    return pixels > kPixelsNotWorthAsking + kMaxPixelsPerJpegByte * reader.device()->size();
}

base::Status TooShort(const PictureSource& source) {
    return Failure(base::StatusCode::kCorruption, source,
                   WidgetsTexts::tr("the picture is shorter than its header says"));
}

// Compares what the header says with the size of the file.
base::Status CheckSize(const QImageReader& reader, const PictureSource& source) {
    const QSize size = reader.size();
    const qint64 pixels = qint64{size.width()} * size.height();
    if (pixels > kMaxPicturePixels)
        return Failure(base::StatusCode::kUnsupported, source,
                       WidgetsTexts::tr("the picture is too large to be shown"));
    if (reader.format() == "jpeg" && IsCutJpeg(reader, pixels)) return TooShort(source);
    return {};
}

bool IsRotated(const QImageReader& reader) {
    return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
}

// As Qt names them. No vector format is among them: the work of drawing one has no bound.
bool IsShown(const QByteArray& format) {
    static const QByteArrayList formats = {"bmp", "cur",    "gif",  "ico",    "jpeg",
                                           "pbm", "pbmraw", "pgm",  "pgmraw", "png",
                                           "ppm", "ppmraw", "webp", "xbm",    "xpm"};
    return formats.contains(format);
}

// Its decoder takes the whole file into memory first.
bool IsTooLongWebp(const QImageReader& reader) {
    return reader.format() == "webp" &&
           reader.device()->size() > qint64{kPictureMemoryMegabytes} * 1024 * 1024;
}

bool LimitMemory() {
    QImageReader::setAllocationLimit(kPictureMemoryMegabytes);
    return true;
}

// Configures `reader`; refuses what is not a picture.
base::Status Prepare(QImageReader& reader, const PictureSource& source) {
    static const bool is_limited = LimitMemory();
    Q_UNUSED(is_limited);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    // Before the reader takes bytes from the device.
    if (IsCutBitmap(*reader.device())) return TooShort(source);
    if (!reader.canRead() || !IsShown(reader.format()) || IsTooLongWebp(reader))
        return Failure(base::StatusCode::kUnsupported, source,
                       WidgetsTexts::tr("this is not a picture that can be shown"));
    return CheckSize(reader, source);
}

base::Status Missing(const PictureSource& source) {
    return Failure(base::StatusCode::kNotFound, source,
                   WidgetsTexts::tr("the file cannot be read"));
}

// The size to decode to, in the orientation of the file. Empty: the size is known only after
// decoding.
QSize StoredTarget(const QImageReader& reader, QSize box) {
    const QSize stored = reader.size();
    if (stored.isEmpty()) return {};
    if (IsRotated(reader)) box.transpose();
    if (stored.width() <= box.width() && stored.height() <= box.height()) return stored;
    return stored.scaled(box, Qt::KeepAspectRatio).expandedTo({1, 1});
}

}  // namespace

base::Result<QSize> PictureSize(const PictureSource& source) {
    const auto device = OpenSource(source);
    if (!device) return Missing(source);
    QImageReader reader(device.get());
    RETURN_IF_ERROR(Prepare(reader, source));
    QSize size = reader.size();
    if (IsRotated(reader)) size.transpose();
    return size;
}

base::Result<QImage> DecodePicture(const PictureSource& source, QSize box) {
    const auto device = OpenSource(source);
    if (!device) return Missing(source);
    QImageReader reader(device.get());
    RETURN_IF_ERROR(Prepare(reader, source));
    const QSize target = StoredTarget(reader, box);
    if (!target.isEmpty() && target != reader.size()) reader.setScaledSize(target);
    QImage image = reader.read();
    if (image.isNull()) return Failure(base::StatusCode::kCorruption, source, reader.errorString());
    if (image.width() > box.width() || image.height() > box.height())
        image = image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return image;
}

base::Result<DecodedPicture> DecodePictureWithSize(const PictureSource& source, QSize box) {
    ASSIGN_OR_RETURN(const QSize own_size, PictureSize(source));
    ASSIGN_OR_RETURN(QImage image, DecodePicture(source, box));
    return DecodedPicture{std::move(image), own_size};
}

}  // namespace widgets
