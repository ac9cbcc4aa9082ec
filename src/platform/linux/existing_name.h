// Finds a file whose name is known except for its letter case.
#pragma once

#include <QtCore/QString>

#include <string>

namespace platform {

// SystemPath(path) when that exists, otherwise a path that differs from it in letter case only,
// otherwise SystemPath(path). Folders are searched one after the other: a folder that exists as
// written is taken even if the rest is not found in it. Of several names the first in byte order is
// taken.
std::string ExistingSystemPath(const QString& path);

}  // namespace platform
