// Where the program's own files live.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

namespace platform {

// The folder the program was started from. Without a trailing separator.
QString ProgramFolder();
// The user's data folder of this program. Without a trailing separator; need not exist yet.
QString UserDataFolder();
// A word of the command line, which may be the name of a file.
QString ArgumentText(const char* argument);
bool IsWritableFolder(const QString& folder);
// `folder` + separator + `name`.
QString FileIn(const QString& folder, const QString& name);

}  // namespace platform
