#include "platform/files.h"

#include "platform/linux/file_names.h"
#include "platform/linux/system_error.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

// nullopt: there is no file of that name.
std::optional<struct stat> FileFacts(const QString& path) {
    struct stat facts {};
    const std::string name = SystemPath(path);
    if (name.empty() || stat(name.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return {};
    return facts;
}

enum class EntryKind { kFile, kFolder, kOther };

EntryKind KindOf(DIR* directory, const dirent& entry) {
    if (entry.d_type == DT_DIR) return EntryKind::kFolder;
    if (entry.d_type == DT_REG) return EntryKind::kFile;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return EntryKind::kOther;
    struct stat facts {};
    if (fstatat(dirfd(directory), entry.d_name, &facts, 0) != 0) return EntryKind::kOther;
    if (S_ISDIR(facts.st_mode)) return EntryKind::kFolder;
    return S_ISREG(facts.st_mode) ? EntryKind::kFile : EntryKind::kOther;
}

bool IsDotEntry(std::string_view name) {
    return name == "." || name == "..";
}

}  // namespace

QChar NativeSeparator() {
    return u'/';
}

std::filesystem::path ToPath(const QString& path) {
    return SystemPath(path);
}

bool FileExists(const QString& path) {
    return FileFacts(path).has_value();
}

QDateTime LastModified(const QString& path) {
    const auto facts = FileFacts(path);
    if (!facts) return {};
    const qint64 milliseconds = facts->st_mtim.tv_nsec / 1'000'000;
    return QDateTime::fromMSecsSinceEpoch(qint64{facts->st_mtim.tv_sec} * 1000 + milliseconds);
}

base::Result<qint64> FileSize(const QString& path) {
    const auto facts = FileFacts(path);
    if (!facts)
        return FileError(base::StatusCode::kNotFound, "File not found", path, kFileNotFound);
    return qint64{facts->st_size};
}

base::Status ListFolder(const QString& folder,
                        const std::function<void(const FolderEntry&)>& visit) {
    const std::string name = SystemPath(folder);
    if (name.empty()) return FolderError(ENOENT, folder);
    const Directory directory(opendir(name.c_str()));
    if (!directory) return FolderError(errno, folder);
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(directory.get());
        if (entry == nullptr) return errno == 0 ? base::Status() : FolderError(errno, folder);
        if (IsDotEntry(entry->d_name)) continue;
        const EntryKind kind = KindOf(directory.get(), *entry);
        if (kind == EntryKind::kOther) continue;
        visit({DecodeFileName(entry->d_name), kind == EntryKind::kFolder});
    }
}

QString FolderIdentity(const QString& folder) {
    struct stat facts {};
    const std::string name = SystemPath(folder);
    if (name.empty() || stat(name.c_str(), &facts) != 0 || !S_ISDIR(facts.st_mode)) return {};
    return QString::number(facts.st_dev) + u':' + QString::number(facts.st_ino);
}

base::Status ChangeDirectory(const QString& folder) {
    const std::string name = SystemPath(folder);
    if (name.empty()) return FolderError(ENOENT, folder);
    if (chdir(name.c_str()) != 0) return FolderError(errno, folder);
    return {};
}

}  // namespace platform
