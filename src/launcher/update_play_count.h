// UpdatePlayCount: one more play of a table, played now.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QtGlobal>

namespace launcher {

// `id` is the table's ID in the catalogue; no row of that ID: nothing happens. Errors are the
// engine's.
base::Status UpdatePlayCount(jet::Connection& connection, qint64 id);

}  // namespace launcher
