// A table file or a folder that was named on the command line.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "catalogue/passed_over.h"
#include "catalogue/progress_meter.h"
#include "platform/user_events.h"

#include <QtCore/QString>

#include <cstdint>
#include <functional>

namespace app {

// Adds the table file, or the table files in the folder and below it, that the catalogue does not
// have, and copies what they say into the added rows; all other rows stay as they are. `path` is
// absolute. The answer is how many were added. kNotFound: nothing has this name. Of a single file
// every failure is told; in a folder, files that cannot be read are passed over, and noted in
// `passed_over` (may be null). Events are processed between files; `progress` (may be empty) is
// that of the copying.
base::Result<std::int64_t> AddGivenTables(catalogue::Catalogue& catalogue, const QString& path,
                                          platform::UserEvents& events,
                                          const catalogue::Progress& progress = {},
                                          catalogue::PassedOver* passed_over = nullptr);

// Whether a table of this FileName is meant by `path`.
std::function<bool(const QString& file_name)> IsGiven(const QString& path);

}  // namespace app
