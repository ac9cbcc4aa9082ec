// Compact: the catalogue written anew without the space that nothing uses.
#pragma once

#include "base/run_steps.h"
#include "base/status.h"
#include "jet/pages/file_system.h"
#include "jet/repair/compact.h"
#include "maintenance/command_context.h"

#include <QtCore/QString>

namespace maintenance {

// Closes the catalogue, compacts its file in place (jet::CompactInPlace) and opens it again.
// Recordsets of the connection end. `steps` are rows. A failure, or a stop, leaves the file as it
// was; when it cannot even be opened again, because another program has taken it meanwhile, the
// catalogue is closed and the text says so.
base::Result<jet::CompactReport> CompactCatalogue(catalogue::Catalogue& catalogue,
                                                  jet::FileSystem& files,
                                                  const jet::BeforeReplacing& before_replacing,
                                                  const base::RunSteps& steps = {});

// Says what compacting would bring, asks, does it and hands the result to `tell`. Failures are
// shown in a box. The answer is ok, or that it was stopped, and the catalogue is as it was.
base::Status CompactData(const CommandContext& context, jet::FileSystem& files,
                         const jet::BeforeReplacing& before_replacing,
                         const std::function<void(const QString&)>& tell);

}  // namespace maintenance
