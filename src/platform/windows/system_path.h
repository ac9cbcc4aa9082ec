// A path as the system's calls take it: absolute, in the \\?\ form, which has no limit of 260
// characters. The system's own rules come first (the current folder, "/" as "\", "..", dots and
// spaces at the end of a name), so that the name means what it means to every other program.
#pragma once

#include "base/status.h"

#include <filesystem>
#include <string>

namespace platform {

// kPermissionDenied: the path names a device ("NUL", "\\.\..."). kNotFound: it names nothing that a
// file can be: it is empty, holds a zero character, or a colon behind the drive (a second stream of
// a file is no file of the user's).
base::Result<std::wstring> SystemPath(const std::filesystem::path& path);

}  // namespace platform
