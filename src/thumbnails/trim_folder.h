// Bounds what the program's own thumbnails take on the disk; desktops look after the shared ones.
#pragma once

#include <QtCore/QString>

namespace thumbnails {

// What desktops leave to the shared ones, too.
inline constexpr qint64 kMaxKeptBytes = qint64{512} * 1024 * 1024;

// If the small pictures in `folder` take more than `most_bytes`, those that were written first are
// removed, until three quarters of that are left. Failures are ignored. From any thread.
void TrimThumbnails(const QString& folder, qint64 most_bytes = kMaxKeptBytes);

}  // namespace thumbnails
