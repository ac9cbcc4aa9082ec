// The engine's view of this system's files (see jet/file_system.h). Does not need Qt: target
// `platform_files`.
#pragma once

#include "jet/pages/file_system.h"

#include <memory>

namespace platform {

std::unique_ptr<jet::FileSystem> MakeFileSystem();

}  // namespace platform
