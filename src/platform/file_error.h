// A failure to reach a file as a Status.
#pragma once

#include "base/status.h"
#include "platform/error_numbers.h"

#include <QtCore/QString>

namespace platform {

// `what` and `path`: "File not found: /tables/Foo.vpt". `number`: of error_numbers.h.
base::Status FileError(base::StatusCode code, const char* what, const QString& path,
                       std::int32_t number = 0);

}  // namespace platform
