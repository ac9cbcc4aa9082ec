// WalkRows: a walk over rows of the catalogue that may change or delete the current row.
#pragma once

#include "base/status.h"
#include "jet/recordset.h"
#include "maintenance/command_context.h"

#include <QtCore/QString>

#include <functional>

namespace maintenance {

// Calls `visit` with each row of `sql`, first to last, with pending events and progress in between.
// Stops at the first failure and returns it; earlier changes stay.
base::Status WalkRows(CommandContext& context, const QString& sql,
                      const std::function<base::Status(jet::Recordset&)>& visit);

}  // namespace maintenance
