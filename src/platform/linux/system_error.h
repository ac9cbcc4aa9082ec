// Failures of system calls as Status.
#pragma once

#include "platform/file_error.h"

namespace platform {

// The failure to open or enter `folder`; `error_number`: of errno.
base::Status FolderError(int error_number, const QString& folder);

}  // namespace platform
