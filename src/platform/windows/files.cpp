#include "platform/files.h"

#include "platform/file_error.h"
#include "platform/text_view.h"
#include "platform/windows/disk.h"
#include "platform/windows/qt_text.h"

namespace platform {
namespace {

// nullopt when there is no file of this name.
std::optional<DiskFacts> FileFacts(const QString& path) {
    const auto facts = FactsOf(DiskPath(path));
    return facts && !facts->is_folder ? facts : std::nullopt;
}

std::span<const std::byte> BytesOf(QByteArrayView bytes) {
    return std::as_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size())));
}

base::Status FolderFailure(const base::Status& failure, const QString& folder) {
    switch (failure.code()) {
    case base::StatusCode::kOk:
        return failure;
    case base::StatusCode::kNotFound:
        return FileError(base::StatusCode::kNotFound, "Path not found", folder, kPathNotFound);
    case base::StatusCode::kBusy:  // another program has it to itself
    case base::StatusCode::kPermissionDenied:
        return FileError(base::StatusCode::kPermissionDenied, "Permission denied", folder,
                         kPermissionDenied);
    default:
        return failure;
    }
}

}  // namespace

QChar NativeSeparator() {
    return u'\\';
}

// Letter case means nothing to this system: a name that exists is the name on the disk.
QString ExistingName(const QString& path) {
    return path;
}

std::filesystem::path ToPath(const QString& path) {
    return DiskPath(path);
}

QString AbsolutePath(const QString& path) {
    const auto full = FullPath(DiskPath(path));
    return full.ok() ? FromWide(full->native()) : path;
}

QString RealPath(const QString& path) {
    const auto real = FinalPath(DiskPath(path));
    return real.ok() ? FromWide(real->native()) : QString();
}

bool FileExists(const QString& path) {
    return FileFacts(path).has_value();
}

QDateTime LastModified(const QString& path) {
    const auto facts = FileFacts(path);
    return facts ? QDateTime::fromMSecsSinceEpoch(facts->last_write_ms) : QDateTime();
}

base::Result<qint64> FileSize(const QString& path) {
    const auto facts = FileFacts(path);
    if (!facts)
        return FileError(base::StatusCode::kNotFound, "File not found", path, kFileNotFound);
    return static_cast<qint64>(facts->size);
}

// What names no file (a device, a pipe, a path of another system) gets no name, which opening
// refuses in words.
bool OpenFile(QFile& file, const QString& path, QIODevice::OpenMode mode) {
    const auto full = FullPath(DiskPath(path));
    file.setFileName(full.ok() ? FromWide(full->native()) : QString());
    return file.open(mode);
}

base::Status SaveFile(const QString& path, QByteArrayView bytes) {
    return ReplaceContent(DiskPath(path), BytesOf(bytes), Durability::kOnDisk);
}

// The folders of the user's own data are nobody else's already.
base::Status SaveCacheFile(const QString& path, QByteArrayView bytes) {
    const std::filesystem::path target = DiskPath(path);
    RETURN_IF_ERROR(MakeFolders(target.parent_path()));
    return ReplaceContent(target, BytesOf(bytes), Durability::kSoon);
}

void RemoveFile(const QString& path) {
    DeleteOneFile(DiskPath(path)).Ignore();
}

base::Status CopyNewFile(const QString& from, const QString& to) {
    return CopyToNewFile(DiskPath(from), DiskPath(to));
}

bool FolderExists(const QString& folder) {
    const auto facts = FactsOf(DiskPath(folder));
    return facts && facts->is_folder;
}

base::Status MakeFolder(const QString& folder) {
    return MakeFolders(DiskPath(folder));
}

base::Status ListFolder(const QString& folder,
                        const std::function<void(const FolderEntry&)>& visit) {
    return FolderFailure(
        ListEntries(DiskPath(folder),
                    [&visit](const DiskEntry& entry) {
                        visit({ToQString(entry.name), entry.is_folder, entry.is_link});
                    }),
        folder);
}

QString Identity(const QString& path) {
    return ToQString(IdentityText(DiskPath(path)));
}

// This system shows none as folders.
bool IsPseudoFileSystem(const QString& /*folder*/) {
    return false;
}

base::Status ChangeDirectory(const QString& folder) {
    return FolderFailure(EnterFolder(DiskPath(folder)), folder);
}

}  // namespace platform
