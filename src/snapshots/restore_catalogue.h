// The snapshots of the program's catalogue: what there is to restore, in words, and the restore
// with the catalogue closed and opened again around it.
#pragma once

#include "catalogue/catalogue.h"
#include "platform/user_prompts.h"
#include "snapshots/compare.h"
#include "snapshots/restore.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>

namespace snapshots {

// Of a time that a clock of the program shows.
LocalSeconds ToLocalSeconds(const QDateTime& time);
QDateTime ToDateTime(LocalSeconds seconds);

// The catalogue's file, by the name under which it is opened: its journal goes by that name, too.
std::filesystem::path DatabaseOf(const catalogue::Catalogue& catalogue);

// A line of the list: a snapshot, or pinball.BU.
struct RestoreEntry {
    std::optional<SnapshotNumber> snapshot;  // nullopt: pinball.BU
    std::filesystem::path copy;              // pinball.BU
    QDateTime time;
    QString occasion;  // "hourly", "before Purge Missing Tables", "by hand", "pinball.BU"
    std::uint64_t size_bytes = 0;
    SnapshotState state = SnapshotState::kGood;
    bool can_be_restored() const { return state == SnapshotState::kGood; }
};
QString StateText(SnapshotState state);  // "good", "not checked", "damaged"

// The newest first. What was not checked yet is checked before; for pinball.BU that is done when it
// is read. Errors: those of reading the folder. Threads: any, as of the next two.
base::Result<std::vector<RestoreEntry>> RestoreEntries(jet::FileSystem& files, SnapshotStore& store,
                                                       const QString& application_folder);

base::Result<std::vector<std::byte>> ReadEntry(jet::FileSystem& files, SnapshotStore& store,
                                               const RestoreEntry& entry);
// How the rows of `entry` differ from those of the catalogue now, which may be open.
base::Result<std::vector<TableDifference>>
CompareEntry(jet::FileSystem& files, SnapshotStore& store, const RestoreEntry& entry);
// "12 more, 3 fewer, 4 different", or "no difference".
QString DifferenceText(const TableDifference& difference);

// Closes the catalogue, restores, and opens it again, as the start does. When nothing could be
// restored the catalogue is what it was, and open again; that it could not be opened is the error
// then. `steps` as of Restore.
base::Result<Restored> RestoreCatalogue(catalogue::Catalogue& catalogue, jet::FileSystem& files,
                                        SnapshotStore& store, const RestoreEntry& entry,
                                        const base::RunSteps& steps = {});
// Where the state before is now: a sentence for the user.
QString RestoredText(const Restored& restored);

// When the catalogue could not be opened, with this failure, and that was told: offers the newest
// snapshot that counts. True: it was restored, and the catalogue is open. A failure is shown.
bool OfferNewestSnapshot(catalogue::Catalogue& catalogue, jet::FileSystem& files,
                         platform::UserPrompts& prompts, const base::Status& failure);

}  // namespace snapshots
