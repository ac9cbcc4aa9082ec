// Finds a file whose name is known but for its letter case.
#pragma once

#include <QtCore/QString>

#include <string>

namespace platform {

// SystemPath(path) when that exists. Otherwise the path that differs from it in letter case only;
// where several do, the first in the order of their bytes. Folder by folder: one that is there as
// written is taken, whatever else it holds. SystemPath(path) again when there is none.
std::string ExistingSystemPath(const QString& path);

}  // namespace platform
