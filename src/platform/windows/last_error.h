// What a call of Windows has failed with, as a Status: the codes that the engine decides by, the
// system's own text in English and its number (GetLastError).
#pragma once

#include "base/status.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace platform {

// Takes the number, not the thread's last error, which other calls overwrite meanwhile.
base::StatusCode CodeOfError(std::uint32_t error);
base::Status ErrorStatus(std::uint32_t error, const std::filesystem::path& path);

}  // namespace platform
