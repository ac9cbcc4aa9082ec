// Main: the start-up of the program.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"

namespace catalogue {

// Fills the process-wide values, opens `ApplicationFolder`/pinball.mdb, adds missing columns,
// stamps undated rows with today's date. A failure up to the opening of the database is returned,
// its message the engine's own description; later ones are ignored. Requires:
// values->ApplicationFolder is set and CatalogueConnection is closed.
base::Status Main(Catalogue& catalogue);

}  // namespace catalogue
