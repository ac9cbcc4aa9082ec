// Back to an earlier state of the catalogue. The state is written beside the catalogue, read back
// and checked; what the catalogue holds now is kept, as a snapshot or, when it is damaged, as a
// file of its own; then the file is exchanged in one step. Whatever stops the process leaves the
// one state or the other. The restored file gets a file mark of its own, so that no journal that
// was left behind is ever applied to it.
#pragma once

#include "snapshots/snapshot_store.h"

namespace snapshots {

struct Restored {
    // Where the state before the restore is, one of the two; neither: there was no catalogue.
    std::optional<SnapshotNumber> snapshot_before;
    std::filesystem::path damaged_file;  // empty: the catalogue was sound
};

// Makes `state`, the bytes of a database file, what the store's database holds. `now` names the
// damaged file and the snapshot. Requires: this process has the database not open.
// kBusy: another program has it; kCorruption: the checker found faults in `state`; kNoSpace,
// kIoError, kPermissionDenied. It can be stopped until the exchange. `steps` are the pages of the
// snapshot of today. After a failure the database is what it was.
base::Result<Restored> Restore(jet::FileSystem& files, SnapshotStore& store,
                               std::vector<std::byte> state, LocalSeconds now,
                               const base::RunSteps& steps = {});

// A copy made by hand, pinball.BU for instance. The errors of opening a database.
base::Result<std::vector<std::byte>> ReadCopy(jet::FileSystem& files,
                                              const std::filesystem::path& path);

// Removes what a restore left that did not come to its end. Requires: nobody restores now.
void RemoveRestoreLeftovers(jet::FileSystem& files, const std::filesystem::path& database);

// "pinball.damaged-20261122-153000.mdb" beside the database.
std::filesystem::path DamagedName(const std::filesystem::path& database, LocalSeconds now);

}  // namespace snapshots
