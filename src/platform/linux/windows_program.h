// Windows programs on this system: recognised by their first bytes, started by Wine.
#pragma once

#include "base/status.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>
#include <vector>

namespace platform {

// True for a file that starts with the signature "MZ" of Windows and DOS programs, and for an .exe
// that cannot be read or has no signature of this system's programs.
bool IsWindowsProgram(const QString& path);

// Wine's loader; empty: Wine is not installed.
QString FindWine();

// Variables of Wine's environment besides our own ones: Wine takes file names and window titles for
// texts of the locale's character set, and only UTF-8 has them all.
std::vector<std::string> WineEnvironment();

// The program as Wine can open it: its path, or, where that has a sign that no Windows name has (a
// quote), the short name that Wine makes up for it. To ask for that starts Wine and takes seconds.
base::Result<QString> ProgramForWine(const QString& program);

// An argument as the Windows program has to see it: a native path, alone or after the "-" of an
// option, becomes a path of the drive Z: on which Wine shows this system's root. `/Play` is an
// option and no path: a path goes on after a second "/" or follows "-".
QString ArgumentForWindows(const QString& argument);

}  // namespace platform
