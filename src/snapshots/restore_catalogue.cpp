#include "snapshots/restore_catalogue.h"

#include "base/file_names.h"
#include "base/marked_text.h"
#include "catalogue/date_texts.h"
#include "catalogue/error_report.h"
#include "catalogue/process_values.h"
#include "catalogue/program_files.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "jet/pages/page_copy.h"
#include "platform/application_folder.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/shown_text.h"
#include "snapshots/texts.h"

#include <algorithm>

namespace snapshots {
namespace {

// What snapshots are made before, as their labels have it.
[[maybe_unused]] constexpr QStringView kLabels[] = {
    MARKED_TEXT("SnapshotsTexts", "Scan for New Tables"),
    MARKED_TEXT("SnapshotsTexts", "Reset File Dates"),
    MARKED_TEXT("SnapshotsTexts", "Reset Times Played"),
    MARKED_TEXT("SnapshotsTexts", "Reset Paths"),
    MARKED_TEXT("SnapshotsTexts", "Update CRC's"),
    MARKED_TEXT("SnapshotsTexts", "Import Data from VPTs"),
    MARKED_TEXT("SnapshotsTexts", "Import VPLauncher Data"),
    MARKED_TEXT("SnapshotsTexts", "Purge Missing Tables"),
    MARKED_TEXT("SnapshotsTexts", "Import"),
    MARKED_TEXT("SnapshotsTexts", "Compact"),
    MARKED_TEXT("SnapshotsTexts", "Restore...")};

QString OccasionText(const SnapshotHead& head) {
    switch (head.occasion) {
    case Occasion::kClock:
        return SnapshotsTexts::tr("hourly");
    case Occasion::kBeforeCommand:
        return SnapshotsTexts::tr("before %1")
            .arg(platform::Shown<SnapshotsTexts>(QString::fromStdString(head.label)));
    case Occasion::kByHand:
        return SnapshotsTexts::tr("by hand");
    }
    return {};
}

RestoreEntry EntryOf(const SnapshotInfo& info) {
    RestoreEntry entry;
    entry.snapshot = info.number;
    entry.state = info.state;
    entry.size_bytes = info.head.size_bytes();
    if (info.head.page_count == 0) return entry;  // nothing of it can be read
    entry.time = ToDateTime(info.head.time);
    entry.occasion = OccasionText(info.head);
    return entry;
}

// nullopt: there is no backup.
std::optional<RestoreEntry> BackupEntry(const QString& application_folder) {
    const QString path = platform::FileIn(application_folder, catalogue::kBackupFile.toString());
    const auto size = platform::FileSize(path);
    if (!platform::FileExists(path) || !size.ok()) return std::nullopt;
    RestoreEntry entry;
    entry.copy = platform::ToPath(path);
    entry.time = platform::LastModified(path);
    entry.occasion = catalogue::kBackupFile.toString();
    entry.size_bytes = static_cast<std::uint64_t>(*size);
    return entry;
}

bool IsNewer(const RestoreEntry& a, const RestoreEntry& b) {
    // The clock may have been set back; the numbers tell.
    if (a.snapshot && b.snapshot) return *a.snapshot > *b.snapshot;
    return a.time > b.time;
}

// Whether another state of the file could help.
bool IsTheFilesFault(const base::Status& failure) {
    return failure.code() != base::StatusCode::kBusy &&
           failure.code() != base::StatusCode::kPermissionDenied;
}

QString OfferText(const RestoreEntry& entry) {
    return SnapshotsTexts::tr(
               "The newest good snapshot of the catalogue is of %1 (%2).\n\n"
               "Do you want to restore it? The file as it is now is kept under a name "
               "of its own.")
        .arg(catalogue::GeneralDate(entry.time), entry.occasion);
}

}  // namespace

LocalSeconds ToLocalSeconds(const QDateTime& time) {
    return QDateTime(time.date(), time.time(), Qt::UTC).toSecsSinceEpoch();
}

QDateTime ToDateTime(LocalSeconds seconds) {
    const QDateTime utc = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    return {utc.date(), utc.time()};
}

std::filesystem::path DatabaseOf(const catalogue::Catalogue& catalogue) {
    return base::PathOf(catalogue::CataloguePath(catalogue).toStdU16String());
}

QString StateText(SnapshotState state) {
    switch (state) {
    case SnapshotState::kGood:
        return SnapshotsTexts::tr("good");
    case SnapshotState::kUnchecked:
        return SnapshotsTexts::tr("not checked");
    case SnapshotState::kDamaged:
        return SnapshotsTexts::tr("damaged");
    }
    return {};
}

base::Result<std::vector<RestoreEntry>> RestoreEntries(jet::FileSystem& files, SnapshotStore& store,
                                                       const QString& application_folder) {
    std::vector<RestoreEntry> entries;
    if (files.Exists(SnapshotStore::FolderFor(store.database())))
        store.CheckAll().Ignore();  // what did not pass is not in the list
    ASSIGN_OR_RETURN(const std::vector<SnapshotInfo> list, store.List());
    std::ranges::transform(list, std::back_inserter(entries), EntryOf);
    std::ranges::reverse(entries);
    // Among the snapshots by its time.
    if (auto backup = BackupEntry(application_folder)) {
        const auto place = std::ranges::find_if(
            entries, [&](const RestoreEntry& entry) { return IsNewer(*backup, entry); });
        entries.insert(place, std::move(*backup));
    }
    return entries;
}

base::Result<std::vector<std::byte>> ReadEntry(jet::FileSystem& files, SnapshotStore& store,
                                               const RestoreEntry& entry) {
    return entry.snapshot ? store.Read(*entry.snapshot) : ReadCopy(files, entry.copy);
}

base::Result<std::vector<TableDifference>>
CompareEntry(jet::FileSystem& files, SnapshotStore& store, const RestoreEntry& entry) {
    ASSIGN_OR_RETURN(const auto then, ReadEntry(files, store, entry));
    ASSIGN_OR_RETURN(const auto now, jet::CopyFileBytes(files, store.database()));
    return CompareFiles(now, then);
}

QString DifferenceText(const TableDifference& difference) {
    if (difference.is_same()) return SnapshotsTexts::tr("no difference");
    return SnapshotsTexts::tr("%1 more, %2 fewer, %3 different")
        .arg(difference.more)
        .arg(difference.fewer)
        .arg(difference.different);
}

base::Result<Restored> RestoreCatalogue(catalogue::Catalogue& catalogue, jet::FileSystem& files,
                                        SnapshotStore& store, const RestoreEntry& entry,
                                        const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(auto state, ReadEntry(files, store, entry));
    RETURN_IF_ERROR(base::StatusOf(steps.stop));
    const base::Status closed = catalogue.CatalogueConnection->Close();
    base::Result<Restored> restored =
        closed.ok()
            ? Restore(files, store, std::move(state), ToLocalSeconds(catalogue.clock->Now()), steps)
            : closed;
    RETURN_IF_ERROR(catalogue::Main(catalogue));
    return restored;
}

QString RestoredText(const Restored& restored) {
    if (restored.snapshot_before)
        return SnapshotsTexts::tr("The catalogue was restored. The state before is snapshot %1.")
            .arg(*restored.snapshot_before);
    if (!restored.damaged_file.empty())
        return SnapshotsTexts::tr("The catalogue was restored. The damaged file is kept as %1.")
            .arg(QString::fromStdU16String(base::TextOf(restored.damaged_file.filename())));
    return SnapshotsTexts::tr("The catalogue was restored.");
}

bool OfferNewestSnapshot(catalogue::Catalogue& catalogue, jet::FileSystem& files,
                         platform::UserPrompts& prompts, const base::Status& failure) {
    if (!IsTheFilesFault(failure)) return false;
    SnapshotStore store(files, DatabaseOf(catalogue));
    const auto newest = store.NewestGood();
    if (!newest.ok() || !*newest) return false;
    const RestoreEntry entry = EntryOf(**newest);
    platform::Message question;
    question.text = OfferText(entry);
    question.icon = platform::MessageIcon::kExclamation;
    question.buttons = platform::MessageButtons::kYesNo;
    if (prompts.Ask(question) != platform::MessageAnswer::kYes) return false;
    const auto restored = RestoreCatalogue(catalogue, files, store, entry);
    if (!restored.ok()) {
        catalogue::ShowError(prompts, restored.status());
        return false;
    }
    platform::Message done;
    done.text = RestoredText(*restored);
    done.icon = platform::MessageIcon::kInformation;
    prompts.Ask(done);
    return true;
}

}  // namespace snapshots
