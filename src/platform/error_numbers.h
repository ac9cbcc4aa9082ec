// The error numbers of failures to reach a file, a folder or a program, as Status::number() has
// them. The program and its users know these failures by their numbers, whatever the system says.
// Other failures have the system's own number, or 0.
#pragma once

#include <cstdint>

namespace platform {

inline constexpr std::int32_t kInvalidProcedureCall = 5;  // also: this file cannot be run
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathNotFound = 76;

}  // namespace platform
