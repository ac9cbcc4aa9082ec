// Purge: removes the tables whose file is gone from the catalogue.
#pragma once

#include "maintenance/command_context.h"

namespace maintenance {

// Asks first. Deletes every row whose FileName names no existing file of this system (a folder, an
// empty text and a path on a drive that cannot be reached name none), then rebuilds the tree. A
// database error is shown; rows already deleted stay deleted.
void PurgeMissingTables(CommandContext context);

}  // namespace maintenance
