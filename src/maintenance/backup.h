// Backup: a copy of the catalogue beside it, one generation.
#pragma once

#include "base/run_steps.h"
#include "jet/pages/file_system.h"
#include "maintenance/command_context.h"

#include <QtCore/QString>

namespace maintenance {

// Copies `database` to `backup`. The copy is written under a temporary name beside `backup`, made
// durable and renamed only when it is complete: after a failure an earlier backup is as it was.
// Requires: nothing writes to `database` meanwhile, and earlier writes have reached the file.
// `steps` are kilobytes; it is not stopped.
base::Status CopyDatabase(jet::FileSystem& files, const QString& database, const QString& backup,
                          const base::RunSteps& steps = {});

// Copies the open pinball.mdb of the application folder to pinball.BU, all changes so far included.
base::Status MakeBackup(catalogue::Catalogue& catalogue, jet::FileSystem& files,
                        const base::RunSteps& steps = {});

// The same, confirmed in a box titled `caption`; of a failure nothing is shown.
base::Status BackupData(CommandContext context, jet::FileSystem& files, const QString& caption);
// The same on this system's files.
base::Status BackupData(CommandContext context, const QString& caption);

}  // namespace maintenance
