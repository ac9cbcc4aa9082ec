// Windows programs: how they are recognised, and what Wine needs to run them.
#pragma once

#include "base/status.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>
#include <vector>

namespace platform {

// True for a file with the signature "MZ" of DOS and Windows programs, and for an .exe that cannot
// be read or has no signature of a Linux program.
bool IsWindowsProgram(const QString& path);

// Path of Wine's loader; empty when Wine is not installed.
QString FindWine();

// Variables (NAME=value) to add to Wine's environment. Wine converts file names and window titles
// by the locale's character set; only UTF-8 has all characters.
std::vector<std::string> WineEnvironment();

// A name by which Wine can open the program: its path, or, if that contains a character that
// Windows reserves (a quote), the short name that Wine gives it; finding that out starts Wine and
// takes seconds. kUnsupported: Wine has none.
base::Result<QString> ProgramForWine(const QString& program);

// The argument for a Windows program: an absolute path, alone or after the "-" of an option,
// becomes a path on drive Z:, where Wine shows the root folder. Without a "-", only a text with a
// second "/" counts as a path: `/Play` is an option.
QString ArgumentForWindows(const QString& argument);

}  // namespace platform
