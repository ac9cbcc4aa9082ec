// Thumbnail files: small pictures of files, kept as PNG where all programs of a desktop look for
// them. Source of names, sizes and texts: Thumbnail Managing Standard 0.9.0, freedesktop.org. What
// is found there is not trusted: a picture larger than its folder says, or one that names another
// original, is none. Threads: from any.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArray>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>

#include <optional>

namespace thumbnails {

// The state of a file that a thumbnail is made of.
struct Original {
    QByteArray uri;         // "file:///home/jens/photos/me.png"
    qint64 modified_s = 0;  // seconds since 1970-01-01 UTC
    bool operator==(const Original&) const = default;
};

// nullopt: there is no such file.
std::optional<Original> OriginalOf(const QString& path);

// The URI of a file; what is no letter, digit or one of -_.!~*'()/&=:@+$, is escaped, as desktops
// do.
QByteArray UriOf(const QString& path);

// The longest side in pixels of the kind of thumbnails that fills a box, or of the largest kind:
// 128, 256, 512 or 1024.
int SideFor(QSize box);

// Below `folder`, which holds the folders of all kinds.
QString ThumbnailPath(const QString& folder, const QByteArray& uri, int side);

// nullopt: there is none of this state of the file.
std::optional<QImage> ReadThumbnail(const QString& folder, const Original& original, int side);

// Requires: no side of `image` is longer than `side`.
base::Status WriteThumbnail(const QString& folder, const Original& original, int side,
                            const QImage& image);

}  // namespace thumbnails
