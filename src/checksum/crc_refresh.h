// The CRC refresh: computes the checksum of every existing table file and stores its text form.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "catalogue/passed_over.h"
#include "catalogue/progress_meter.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

#include <functional>

namespace checksum {

// Asks whether to go on. True: the user said OK.
bool ConfirmCrcRefresh(platform::UserPrompts& prompts);

// Visits the rows in the order of their display names. `show` gets the progress line of each row
// whose file was read, before the row is stored; `progress` may be empty. A row whose file is
// missing or cannot be read keeps its checksum; the unreadable ones are noted in `passed_over` (may
// be null). A failure of the database ends the run with its Status; the rows done so far are kept.
base::Status RefreshCrcs(catalogue::Catalogue& catalogue, platform::UserEvents& events,
                         const std::function<void(const QString& line)>& show,
                         const catalogue::Progress& progress = {},
                         catalogue::PassedOver* passed_over = nullptr);

}  // namespace checksum
