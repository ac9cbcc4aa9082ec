// Implements the engine's interface to files, jet/file_system.h, for this system. Needs no Qt
// (target `platform_files`).
#pragma once

#include "jet/pages/file_system.h"

#include <memory>

namespace platform {

std::unique_ptr<jet::FileSystem> MakeFileSystem();

}  // namespace platform
