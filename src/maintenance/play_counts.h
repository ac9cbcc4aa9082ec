// Play counts: resets all tables to never played.
#pragma once

#include "maintenance/command_context.h"

namespace maintenance {

// Asks first. Sets every row's TimesPlayed to 0 and LastPlayed to Null, then rebuilds the tree. A
// database error is shown.
void ResetTimesPlayed(CommandContext context);

}  // namespace maintenance
