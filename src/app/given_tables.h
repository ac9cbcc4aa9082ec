// A table file or a folder that was named on the command line.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"

#include <QtCore/QString>

#include <functional>

namespace app {

// Adds the table file, or the table files in the folder and below it, that the catalogue does not
// have, and copies what they say into it, if there are any. `path` is absolute. kNotFound: nothing
// has this name.
base::Status AddGivenTables(catalogue::Catalogue& catalogue, const QString& path);

// Whether a table of this FileName is meant by `path`.
std::function<bool(const QString& file_name)> IsGiven(const QString& path);

}  // namespace app
