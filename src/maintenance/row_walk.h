// A walk over every row of the catalogue that may change or delete the row it stands on.
#pragma once

#include "base/status.h"
#include "jet/recordset.h"
#include "maintenance/command_context.h"

#include <QtCore/QString>

#include <functional>

namespace maintenance {

// Calls `visit` with each row of `sql`, first to last, with pending events and progress in
// between. Stops at the first failure and returns it; what was changed before stays changed.
base::Status WalkRows(CommandContext& context, const QString& sql,
                      const std::function<base::Status(jet::Recordset&)>& visit);

}  // namespace maintenance
