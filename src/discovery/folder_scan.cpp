#include "discovery/folder_scan.h"

#include "base/trim_spaces.h"
#include "catalogue/date_texts.h"
#include "catalogue/error_report.h"
#include "catalogue/path_names.h"
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
      known_(*catalogue.CatalogueConnection) {}

base::Status FolderScan::Run(const QString& folder) {
    found_count_ = 0;
    queue_.clear();
    links_.clear();
    met_folders_.clear();
    met_linked_files_.clear();
    const QString real = platform::RealPath(ListedFolder(folder));
    Queue({folder, real != platform::AbsolutePath(ListedFolder(folder))});
    while (!queue_.empty()) {
        const Folder first = queue_.front();
        observer_.ListingFolder(first.path);
        RETURN_IF_ERROR(ListFolder({ListedFolder(first.path), first.is_behind_link}));
        queue_.pop_front();
        observer_.FolderListed();
        if (queue_.empty()) RETURN_IF_ERROR(FollowNextLink());
    }
    return {};
}

base::Status FolderScan::AddFile(const QString& path) {
    found_count_ = 0;
    if (!IsTableFileName(path))
        return {base::StatusCode::kInvalidArgument, path.toStdString() + " is not a table file"};
    return HandleFile(path);
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
    bool is_first = true;
    base::Status failure;
    // A folder that cannot be listed adds nothing, and the walk goes on.
    platform::ListFolder(folder.path, [&](const platform::FolderEntry& entry) {
        if (!std::exchange(is_first, false)) events_.ProcessEvents();
        if (failure.ok()) failure = HandleEntry(folder, entry);
    }).Ignore();
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

// Recycle-bin folders are scanned like any other.
base::Status FolderScan::HandleFile(const QString& path) {
    ASSIGN_OR_RETURN(const bool is_known, known_.Contains(path));
    return is_known ? base::Status() : Add(path);
}

// A file that cannot be read, or whose path is too long, is skipped silently; the next scan tries
// it again.
base::Status FolderScan::Add(const QString& path) {
    const auto value = crc_.CalculateFile(platform::ToPath(path));
    if (!value.ok()) return {};
    const QString checksum_text = QString::fromStdU16String(checksum::ChecksumText(*value));
    const QString display_name = BaseName(path);
    const base::Status stored = Insert(path, display_name, checksum_text);
    if (!stored.ok()) {
        known_.NoteRefused();
        return catalogue::IsValueTrouble(stored) ? base::Status() : stored;
    }
    known_.NoteStored(path);
    observer_.TableAdded(display_name, checksum_text);
    ++found_count_;
    return {};
}

base::Status FolderScan::Insert(const QString& path, const QString& display_name,
                                const QString& checksum_text) {
    using catalogue::QuoteSql;
    const QString file_date = catalogue::GeneralDate(platform::LastModified(path));
    const QString date_added = catalogue::StoredDate(catalogue_.clock->Now());
    const QString statement =
        QStringLiteral(
            "INSERT INTO TABLES (DisplayName,FileName,FIleDate,CRC,DateAdded) Values ('") +
        QuoteSql(display_name) + QStringLiteral("', '") + QuoteSql(path) + QStringLiteral("','") +
        QuoteSql(file_date) + QStringLiteral("','") + QuoteSql(checksum_text) +
        QStringLiteral("','") + QuoteSql(date_added) + QStringLiteral("')");
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
