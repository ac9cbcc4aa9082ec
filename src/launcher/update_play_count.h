// UpdatePlayCount: counts a play of a table and stores its time.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QtGlobal>

namespace launcher {

// `id`: of the table's row; does nothing when there is no such row. Errors are the engine's.
base::Status UpdatePlayCount(jet::Connection& connection, qint64 id);

}  // namespace launcher
