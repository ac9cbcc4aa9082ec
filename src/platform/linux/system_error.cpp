#include "platform/linux/system_error.h"

#include <cerrno>
#include <system_error>

namespace platform {

base::Status FolderError(int error_number, const QString& folder) {
    switch (error_number) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
        return FileError(base::StatusCode::kNotFound, "Path not found", folder, kPathNotFound);
    case EACCES:
    case EPERM:
        return FileError(base::StatusCode::kPermissionDenied, "Permission denied", folder,
                         kPermissionDenied);
    default:
        return FileError(base::StatusCode::kIoError,
                         std::generic_category().message(error_number).c_str(), folder);
    }
}

}  // namespace platform
