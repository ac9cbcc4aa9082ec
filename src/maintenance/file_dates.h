// File dates: when each table file was last changed, copied into the catalogue.
#pragma once

#include "maintenance/command_context.h"

namespace maintenance {

// Asks first. Rows whose file is missing keep their date. Then rebuilds the tree. A database error
// is shown; rows already updated stay updated.
void UpdateFileDates(CommandContext context);

}  // namespace maintenance
