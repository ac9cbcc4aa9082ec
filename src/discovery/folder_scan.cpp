#include "discovery/folder_scan.h"

#include "base/trim_spaces.h"
#include "catalogue/date_texts.h"
#include "catalogue/error_report.h"
#include "catalogue/path_names.h"
#include "catalogue/process_values.h"
#include "catalogue/quoting.h"
#include "checksum/checksum_text.h"
#include "jet/connection.h"
#include "jet/recordset.h"
#include "platform/clock.h"
#include "platform/text_view.h"

#include <utility>

namespace discovery {

FolderScan::FolderScan(catalogue::Catalogue& catalogue, platform::UserEvents& events,
                       ScanObserver& observer)
    : catalogue_(catalogue), events_(events), observer_(observer),
      known_(*catalogue.CatalogueConnection, catalogue.values->paths) {}

base::Status FolderScan::Run(const QString& folder, const std::stop_token& stop) {
    const jet::NamedChange named(*catalogue_.CatalogueConnection, kScanName);
    found_count_ = 0;
    added_ids_.clear();
    queue_.clear();
    links_.clear();
    met_folders_.clear();
    met_linked_files_.clear();
    stop_ = stop;
    start_listing_ = {};
    passed_over_ = {};
    const QString real = platform::RealPath(ListedFolder(folder));
    Queue({folder, real != platform::AbsolutePath(ListedFolder(folder))});
    while (!queue_.empty()) {
        const Folder first = queue_.front();
        observer_.ListingFolder(first.path);
        RETURN_IF_ERROR(base::StatusOf(stop_));
        RETURN_IF_ERROR(ListFolder({ListedFolder(first.path), first.is_behind_link}));
        queue_.pop_front();
        observer_.FolderListed();
        if (queue_.empty()) RETURN_IF_ERROR(FollowNextLink());
    }
    return {};
}

base::Status FolderScan::AddFile(const QString& path) {
    found_count_ = 0;
    added_ids_.clear();
    if (!IsTableFileName(path))
        return {base::StatusCode::kInvalidArgument, path.toStdString() + " is not a table file"};
    for (const QString& name : {path, platform::RealPath(path)}) {
        if (name.isEmpty()) continue;  // nothing is there, as ChecksumOf will say
        ASSIGN_OR_RETURN(const bool is_known, known_.Contains(name));
        if (is_known) return {};
    }
    ASSIGN_OR_RETURN(const QString checksum_text, ChecksumOf(path));
    return Store(path, checksum_text);
}

void FolderScan::Queue(const Folder& folder) {
    queue_.push_back(folder);
    observer_.FolderQueued(folder.path);
}

// Links wait until all real folders have been listed, so that a file is found under its real path
// first.
base::Status FolderScan::FollowNextLink() {
    while (queue_.empty() && !links_.empty()) {
        const Link link = links_.front();
        links_.pop_front();
        if (link.is_folder)
            Queue({link.path, true});
        else
            RETURN_IF_ERROR(HandleLinkedFile(link.path));
    }
    return {};
}

base::Status FolderScan::ListFolder(const Folder& folder) {
    if (platform::IsPseudoFileSystem(folder.path)) return {};
    const QString identity = platform::Identity(folder.path);
    if (met_folders_.contains(identity)) return {};
    met_folders_.insert(identity);
    const bool is_start = met_folders_.size() == 1;
    bool is_first = true;
    base::Status failure;
    // A folder that cannot be listed adds nothing, and the walk goes on.
    const base::Status listed =
        platform::ListFolder(folder.path, [&](const platform::FolderEntry& entry) {
            if (!std::exchange(is_first, false)) events_.ProcessEvents();
            if (failure.ok()) failure = base::StatusOf(stop_);
            if (failure.ok()) failure = HandleEntry(folder, entry);
        });
    if (is_start) start_listing_ = listed;
    if (!listed.ok()) passed_over_.Note(folder.path, listed);
    return failure;
}

base::Status FolderScan::HandleEntry(const Folder& folder, const platform::FolderEntry& entry) {
    const QString path = folder.path + entry.name;
    if (entry.is_folder) {
        const QString listed = path + platform::NativeSeparator();
        if (entry.is_link)
            links_.push_back({listed, true});
        else
            Queue({listed, folder.is_behind_link});
        return {};
    }
    if (!IsTableFileName(path)) return {};
    if (entry.is_link) {
        links_.push_back({path, false});
        return {};
    }
    return folder.is_behind_link ? HandleLinkedFile(path) : HandleFile(path);
}

// A file that several links lead to is one table.
base::Status FolderScan::HandleLinkedFile(const QString& path) {
    const QString identity = platform::Identity(path);
    if (identity.isEmpty() || met_linked_files_.contains(identity)) return {};
    met_linked_files_.insert(identity);
    const QString real = platform::RealPath(path);
    ASSIGN_OR_RETURN(const bool is_known, known_.Contains(real));
    if (is_known) return {};
    return HandleFile(path);
}

// Recycle-bin folders are scanned like any other. A file that cannot be read, or whose path is too
// long, is skipped; the next scan tries it again.
base::Status FolderScan::HandleFile(const QString& path) {
    ASSIGN_OR_RETURN(const bool is_known, known_.Contains(path));
    if (is_known) return {};
    const auto checksum_text = ChecksumOf(path);
    base::Status stored = checksum_text.ok() ? Store(path, *checksum_text) : checksum_text.status();
    if (stored.ok() || (checksum_text.ok() && !catalogue::IsValueTrouble(stored))) return stored;
    passed_over_.Note(path, stored);
    return {};
}

base::Result<QString> FolderScan::ChecksumOf(const QString& path) {
    ASSIGN_OR_RETURN(const auto value, crc_.CalculateFile(platform::ToPath(path)));
    return QString::fromStdU16String(checksum::ChecksumText(value));
}

base::Status FolderScan::Store(const QString& path, const QString& checksum_text) {
    const QString display_name = BaseName(path);
    const QString stored_path = catalogue_.values->paths.Stored(path);
    const QString file_date = catalogue::GeneralDate(platform::LastModified(path));
    known_.BeginAttempt();
    base::Status stored = Insert({stored_path, display_name, file_date, checksum_text});
    if (!stored.ok()) {
        known_.NoteRefused();
        return stored;
    }
    known_.NoteStored(stored_path);
    RETURN_IF_ERROR(NoteId());
    observer_.TableAdded(display_name, checksum_text);
    ++found_count_;
    return {};
}

base::Status FolderScan::NoteId() {
    ASSIGN_OR_RETURN(auto rows, catalogue_.CatalogueConnection->Execute(u"Select @@IDENTITY"));
    ASSIGN_OR_RETURN(const jet::Value id, rows.Fields(std::size_t{0}));
    added_ids_.push_back(jet::ToInteger(id));
    return {};
}

base::Status FolderScan::Insert(const NewRow& row) {
    using catalogue::QuoteSql;
    const QString date_added = catalogue::StoredDate(catalogue_.clock->Now());
    const QString statement =
        QStringLiteral(
            "INSERT INTO TABLES (DisplayName,FileName,FIleDate,CRC,DateAdded) Values ('") +
        QuoteSql(row.display_name) + QStringLiteral("', '") + QuoteSql(row.file_name) +
        QStringLiteral("','") + QuoteSql(row.file_date) + QStringLiteral("','") +
        QuoteSql(row.checksum_text) + QStringLiteral("','") + QuoteSql(date_added) +
        QStringLiteral("')");
    return catalogue_.CatalogueConnection->Execute(statement.toStdU16String()).status();
}

QString BaseName(const QString& path) {
    const QString name = catalogue::GetFileName(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? name : name.left(dot);
}

bool IsTableFileName(const QString& path) {
    return path.right(4).toUpper() == QLatin1String(".VPT");
}

QString ListedFolder(const QString& folder) {
    return catalogue::WithTrailingSeparator(
        platform::ToQString(base::TrimSpaces(platform::View(folder))));
}

}  // namespace discovery
