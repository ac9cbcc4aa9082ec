// Adding table files without a dialog: those that were named on the command line or dropped on the
// window, and the new ones of known folders.
#pragma once

#include "base/run_steps.h"
#include "catalogue/catalogue.h"
#include "catalogue/local_paths.h"
#include "catalogue/passed_over.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>
#include <functional>

namespace app {

// Adds the table file, or the table files in the folder and below it, that the catalogue does not
// have, and copies what they say into the added rows; all other rows stay as they are. `path` is
// absolute. The answer is how many were added. kNotFound: nothing has this name. Of a single file
// every failure is told; in a folder, files that cannot be read are passed over, and noted in
// `passed_over` (may be null). `steps` are folders, and then files; a stop ends the search, and
// what was found until then is in.
base::Result<std::int64_t> AddGivenTables(catalogue::Catalogue& catalogue, const QString& path,
                                          const base::RunSteps& steps = {},
                                          catalogue::PassedOver* passed_over = nullptr);

// Adds the table files in the folders and below them that the catalogue does not have, in the same
// way. `folders` are absolute. A folder that is not there or cannot be listed is noted in
// `passed_over`, and the others follow; a failure of the database ends the run, and what was added
// before stays.
base::Result<std::int64_t> AddNewTables(catalogue::Catalogue& catalogue, const QStringList& folders,
                                        const base::RunSteps& steps,
                                        catalogue::PassedOver& passed_over);

// Whether a table of this FileName is meant by `path`, a path of this system.
std::function<bool(const QString& file_name)> IsGiven(const QString& path,
                                                      const catalogue::LocalPaths& paths);

}  // namespace app
