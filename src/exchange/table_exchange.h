// The commands "Export..." and "Import..." of the main window.
#pragma once

#include "base/run_steps.h"
#include "catalogue/catalogue.h"
#include "catalogue/table_selection.h"
#include "platform/user_prompts.h"

#include <functional>
#include <optional>

namespace exchange {

// Asks for a file and writes the tables of `shown` into it, all columns, in the format of its
// ending. nullopt: nothing is shown, which is said. Failures are shown.
// The answer is ok, or that it was stopped (base::IsStopped): then there is no file.
base::Status ExportTables(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                          const std::optional<catalogue::Selection>& shown);

// Asks for a file, says what its rows would add and change, and does it when the user agrees; then
// calls `refresh_tree`. Rows find their tables by the first of the columns ID, FileName and CRC
// that the file has. The answer is ok, or that it was stopped: then nothing has changed. When a row
// cannot be taken, lines and reasons are shown, and nothing changes.
base::Status ImportTables(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                          const std::function<void()>& refresh_tree);

}  // namespace exchange
