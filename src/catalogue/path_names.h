// Pieces of a path as texts; base/path_pieces.h says what they are.
#pragma once

#include <QtCore/QString>

namespace catalogue {

QString GetFileName(const QString& path);
QString GetFolder(const QString& path);
QString StripExtension(const QString& file_name);
// `folder` ending in a separator of its own kind, or the system's when it has none yet.
QString WithTrailingSeparator(const QString& folder);

}  // namespace catalogue
