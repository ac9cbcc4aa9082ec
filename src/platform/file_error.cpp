#include "platform/file_error.h"

namespace platform {

base::Status FileError(base::StatusCode code, const char* what, const QString& path,
                       std::int32_t number) {
    return {code, std::string(what) + ": " + path.toStdString(), number};
}

}  // namespace platform
