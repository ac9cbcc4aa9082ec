// Main: the start-up of the program.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"

#include <QtCore/QString>

namespace catalogue {

// Fills the process-wide values, opens `ApplicationFolder`/pinball.mdb, adds missing columns,
// stamps undated rows with today's date. A failure up to the opening of the database is returned,
// its message the engine's own description; later ones end nothing, the first of them is
// kept in values->UpgradeFailure. Requires:
// values->ApplicationFolder is set and CatalogueConnection is closed.
base::Status Main(Catalogue& catalogue);

// The steps of Main, for who opens the catalogue in another way.
// Everything before the opening of the database.
void PrepareValues(Catalogue& catalogue);
// The opening itself, of `ApplicationFolder`/pinball.mdb.
base::Status OpenCatalogue(Catalogue& catalogue);
// Everything after it. Each step is tried, whatever came of the one before; the first failure is
// returned. A column that is there already and a catalogue for reading only are none. Requires:
// CatalogueConnection is open.
base::Status UpgradeCatalogue(Catalogue& catalogue);
// The catalogue's file in the application folder, spelled as on the disk.
QString CataloguePath(const Catalogue& catalogue);

}  // namespace catalogue
