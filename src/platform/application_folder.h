// The folders of the program's own files.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

namespace platform {

// The folder of the executable, links resolved; no trailing separator.
QString ProgramFolder();
// The program's folder for the data of this user; no trailing separator. It may not exist yet.
QString UserDataFolder();
// The program's folder for what can be made again at any time; no trailing separator. It may not
// exist yet.
QString UserCacheFolder();
// Where programs of this desktop share the thumbnails of files; it may not exist yet. Empty: they
// share none.
QString SharedThumbnailFolder();
// The user's folder for pictures; it may not exist.
QString PicturesFolder();
// A word of the command line as text: decoded as file names are, so that it can name any file.
QString ArgumentText(const char* argument);
// False also when there is no such folder.
bool IsWritableFolder(const QString& folder);
// `folder` and `name` with one separator between them.
QString FileIn(const QString& folder, const QString& name);

}  // namespace platform
