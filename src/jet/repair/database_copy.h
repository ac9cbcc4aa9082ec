// What Compact and CompactInPlace share: the content of a sound file in a new one.
#pragma once

#include "jet/repair/compact.h"
#include "jet/repair/new_file.h"

namespace jet {

// kCorruption: the checker has found a fault in `source`.
base::Result<std::unique_ptr<NewFile>> CopyDatabase(PageStore& source, CompactReport& report,
                                                    const CompactProgress& progress);

}  // namespace jet
