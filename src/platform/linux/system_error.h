// What the system said, as a Status.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

namespace platform {

// Error numbers that the messages of the program depend on.
inline constexpr std::int32_t kInvalidProcedureCall = 5;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathNotFound = 76;

// "File not found: /tables/Foo.vpt".
base::Status FileError(base::StatusCode code, const char* what, const QString& path,
                       std::int32_t number = 0);
// The failure `error_number` (of errno) to reach the folder `folder`.
base::Status FolderError(int error_number, const QString& folder);

}  // namespace platform
