// Pictures of unknown origin: sizes read from their headers, pixels decoded at the size they are
// shown in. Formats: BMP, JPEG, GIF, PNG, WebP, icons and the portable formats, and no other that
// Qt has a plugin for. Files are not trusted: a picture that would need more than
// kPictureMemoryMegabytes of memory, or that is shorter than its header says, is refused before the
// memory is taken. Errors: kNotFound (no such file, no bytes), kUnsupported (not a picture, or too
// large), kCorruption (its data is damaged). Nothing throws.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArray>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>

namespace widgets {

// The pixels of a sheet of paper scanned at 800 dots per inch. At four bytes each they take the
// kPictureMemoryMegabytes that a decoder may allocate at once.
inline constexpr qint64 kMaxPicturePixels = qint64{64} * 1024 * 1024;
inline constexpr int kPictureMemoryMegabytes = 256;

// Where a picture comes from: the file `path`, or `bytes` when there is no path.
struct PictureSource {
    QString path;
    QByteArray bytes;

    static PictureSource File(const QString& path) { return {path, {}}; }
    static PictureSource Bytes(const QByteArray& bytes) { return {{}, bytes}; }
    bool is_empty() const { return path.isEmpty() && bytes.isEmpty(); }
    bool operator==(const PictureSource&) const = default;
};

// Width and height in pixels as the picture is meant to be seen (a camera's rotation applied).
// Reads the header only.
base::Result<QSize> PictureSize(const PictureSource& source);

// The picture with its proportions kept, as large as fits into `box` (pixels), never larger than it
// is. Requires: box is not empty.
base::Result<QImage> DecodePicture(const PictureSource& source, QSize box);

struct DecodedPicture {
    QImage image;
    QSize own_size;  // of the picture, before it was fitted into the box; empty: not known
};

// Both at once; from any thread.
base::Result<DecodedPicture> DecodePictureWithSize(const PictureSource& source, QSize box);

}  // namespace widgets
