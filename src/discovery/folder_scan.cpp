#include "discovery/folder_scan.h"

#include "base/trim_spaces.h"
#include "checksum/checksum_text.h"
#include "jet/recordset.h"
#include "platform/files.h"

#include <utility>

namespace discovery {
namespace {

QString TrimSpaces(const QString& text) {
    const QStringView view(text);
    const auto trimmed = base::TrimSpaces({view.utf16(), static_cast<std::size_t>(view.size())});
    return QString::fromUtf16(trimmed.data(), static_cast<qsizetype>(trimmed.size()));
}

}  // namespace

FolderScan::FolderScan(catalogue::Catalogue& catalogue, platform::UserEvents& events,
                       ScanObserver& observer)
    : catalogue_(catalogue), events_(events), observer_(observer) {}

std::int64_t FolderScan::Run(const QString& folder) {
    found_count_ = 0;
    met_folders_.clear();
    Queue(folder);
    while (!queue_.empty()) {
        const QString first = queue_.front();
        observer_.ListingFolder(first);
        ListFolder(ListedFolder(first));
        queue_.pop_front();
        observer_.FolderListed();
    }
    return found_count_;
}

void FolderScan::Queue(const QString& folder) {
    queue_.push_back(folder);
    observer_.FolderQueued(folder);
}

void FolderScan::ListFolder(const QString& folder) {
    const QString identity = platform::FolderIdentity(folder);
    if (met_folders_.contains(identity)) return;
    met_folders_.insert(identity);
    bool is_first = true;
    // A folder that cannot be listed adds nothing, and the walk goes on.
    platform::ListFolder(folder, [&](const platform::FolderEntry& entry) {
        if (!std::exchange(is_first, false)) events_.ProcessEvents();
        if (entry.is_folder)
            Queue(folder + entry.name + platform::NativeSeparator());
        else
            HandleFile(folder + entry.name);
    }).Ignore();
}

// Recycle-bin folders are not left out: their files are added like any other.
void FolderScan::HandleFile(const QString& path) {
    if (!IsTableFileName(path) || IsKnown(path)) return;
    // A file that fails is passed over silently; the next scan tries it again.
    Add(path).Ignore();
}

// A question that the database cannot answer counts as known, so that nothing is added twice.
bool FolderScan::IsKnown(const QString& path) {
    const QString query = QStringLiteral("Select FileName from Tables where filename = '") +
                          catalogue::QuoteSql(path) + u'\'';
    const auto rows = catalogue_.CatalogueConnection->Execute(query.toStdU16String());
    return !rows.ok() || !(rows->Bof() && rows->Eof());
}

base::Status FolderScan::Add(const QString& path) {
    ASSIGN_OR_RETURN(const auto value, crc_.CalculateFile(platform::ToPath(path)));
    const QString checksum_text = QString::fromStdU16String(checksum::ChecksumText(value));
    const QString display_name = BaseName(path);
    RETURN_IF_ERROR(Insert(path, display_name, checksum_text));
    observer_.TableAdded(display_name, checksum_text);
    ++found_count_;
    return base::Status::Ok();
}

base::Status FolderScan::Insert(const QString& path, const QString& display_name,
                                const QString& checksum_text) {
    using catalogue::QuoteSql;
    const QString file_date = catalogue::GeneralDate(platform::LastModified(path));
    const QString date_added = catalogue::MediumDate(catalogue_.clock->Now());
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
    return catalogue::WithTrailingSeparator(TrimSpaces(folder));
}

}  // namespace discovery
