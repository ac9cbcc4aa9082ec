// The bulk update: copies the information in the table files into their rows of the catalogue.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "catalogue/passed_over.h"
#include "catalogue/progress_meter.h"
#include "platform/user_events.h"

#include <cstdint>
#include <span>

namespace tableinfo {

// Walks the whole catalogue. Each row whose file has information gets the texts that are not empty,
// with every apostrophe doubled and without spaces at both ends; all other rows and columns stay as
// they are. Each file is opened once. `show_progress` 1: `status` shows "Updating from VPTs..."
// during the run and `progress` is called. `status` may be null, `progress` empty. A text that does
// not fit its column is left out. Any other failure of the database ends the run with its Status;
// the rows done so far are kept. Table files that cannot be read, wholly or in part, are noted in
// `passed_over` (may be null); those that are not there are none of them. The caller runs its
// selection again afterwards, which shows the new names.
base::Status UpdateFromTableFiles(catalogue::Catalogue& catalogue, int show_progress,
                                  platform::StatusDisplay* status,
                                  const catalogue::Progress& progress = {},
                                  catalogue::PassedOver* passed_over = nullptr);

// The same for the rows with these IDs only; no other row is read or changed. An ID that no row has
// is passed over. Events are processed before each row.
base::Status UpdateRowsFromTableFiles(catalogue::Catalogue& catalogue,
                                      std::span<const std::int64_t> ids,
                                      platform::UserEvents& events,
                                      const catalogue::Progress& progress = {},
                                      catalogue::PassedOver* passed_over = nullptr);

}  // namespace tableinfo
