#include "platform/files.h"

#include "platform/linux/directory.h"
#include "platform/linux/existing_name.h"
#include "platform/linux/file_names.h"
#include "platform/linux/system_error.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <system_error>
#include <unistd.h>

namespace platform {
namespace {

using CString = std::unique_ptr<char, decltype(&std::free)>;

// nullopt when there is no regular file of this name.
std::optional<struct stat> FileFacts(const QString& path) {
    struct stat facts {};
    const std::string name = ExistingSystemPath(path);
    if (name.empty() || stat(name.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return {};
    return facts;
}

constexpr mode_t kForAll = 0666;  // less what the user has taken off
constexpr mode_t kForUser = 0600;
constexpr mode_t kFolderForUser = 0700;

// Creates a new file in the folder of `target` and stores its name in `copy`. Returns a descriptor
// for writing; -1 on failure, with the reason in errno.
int CreateBeside(const std::string& target, std::string& copy, mode_t mode) {
    constexpr int kMaxTries = 100;
    int descriptor = -1;
    for (int i = 0; descriptor < 0 && i < kMaxTries; ++i) {
        copy = target + ".new" + std::to_string(i);
        descriptor = open(copy.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (descriptor < 0 && errno != EEXIST) break;
    }
    return descriptor;
}

// Those above `target` that are missing. A failure shows when the file is created.
void MakeFoldersForUser(const std::string& target) {
    for (auto end = target.find('/', 1); end != std::string::npos; end = target.find('/', end + 1))
        mkdir(target.substr(0, end).c_str(), kFolderForUser);
}

// 0, or the errno of the failure.
int WriteAll(int descriptor, QByteArrayView bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            write(descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (count < 0 && errno != EINTR) return errno;
        if (count > 0) bytes = bytes.sliced(count);
    }
    return 0;
}

// The flags of open() for QFile's mode, which creates and truncates files as QFile does.
int SystemFlags(QIODevice::OpenMode mode) {
    const bool reads = mode.testFlag(QIODevice::ReadOnly);
    const bool writes = mode.testFlag(QIODevice::WriteOnly);
    int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    flags |= !writes ? O_RDONLY : reads ? O_RDWR : O_WRONLY;
    if (writes) flags |= O_CREAT;
    if (writes && !reads && !mode.testFlag(QIODevice::Append)) flags |= O_TRUNC;
    return flags;
}

base::Status SystemFailure(int error_number, const QString& path) {
    const auto code = error_number == ENOSPC || error_number == EDQUOT ? base::StatusCode::kNoSpace
                      : error_number == EEXIST ? base::StatusCode::kAlreadyExists
                                               : base::StatusCode::kIoError;
    // The name comes first, as in the messages of the engine.
    return {code, path.toStdString() + ": " + std::generic_category().message(error_number),
            error_number};
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

bool IsLink(DIR* directory, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_LNK;
    struct stat facts {};
    return fstatat(dirfd(directory), entry.d_name, &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(facts.st_mode);
}

bool IsDotEntry(std::string_view name) {
    return name == "." || name == "..";
}

}  // namespace

QChar NativeSeparator() {
    return u'/';
}

QString ExistingName(const QString& path) {
    const std::string name = ExistingSystemPath(path);
    return name.empty() ? path : DecodeFileName(name);
}

std::filesystem::path ToPath(const QString& path) {
    return ExistingSystemPath(path);
}

QString AbsolutePath(const QString& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(SystemPath(path), error);
    std::filesystem::path clean = absolute.lexically_normal();
    if (!clean.has_filename() && clean.has_relative_path()) clean = clean.parent_path();
    return error ? path : DecodeFileName(clean.native());
}

QString RealPath(const QString& path) {
    const std::string name = ExistingSystemPath(path);
    if (name.empty()) return {};
    const CString real(realpath(name.c_str(), nullptr), &std::free);
    return real ? DecodeFileName(real.get()) : QString();
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

bool OpenFile(QFile& file, const QString& path, QIODevice::OpenMode mode) {
    // A file that is created gets the name as given.
    const std::string name =
        mode.testFlag(QIODevice::WriteOnly) ? SystemPath(path) : ExistingSystemPath(path);
    file.setFileName(name.empty() ? path : DecodeFileName(name));
    if (name.empty() || QFile::encodeName(file.fileName()) == name.c_str()) return file.open(mode);
    const int descriptor = open(name.c_str(), SystemFlags(mode), 0666);
    struct stat facts {};
    if (descriptor >= 0 && fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode))
        return file.open(descriptor, mode, QFileDevice::AutoCloseHandle);
    if (descriptor >= 0) close(descriptor);
    return file.open(mode);  // fails, and sets errorString()
}

base::Status SaveFile(const QString& path, QByteArrayView bytes) {
    // The file that a link leads to is replaced, not the link.
    const std::string name = SystemPath(path);
    if (name.empty()) return SystemFailure(ENOENT, path);
    const CString real(realpath(name.c_str(), nullptr), &std::free);
    const std::string target = real ? real.get() : name;
    struct stat before {};
    const bool exists = stat(target.c_str(), &before) == 0;
    if (exists && !S_ISREG(before.st_mode)) return SystemFailure(EISDIR, path);
    if (exists && access(target.c_str(), W_OK) != 0) return SystemFailure(errno, path);
    std::string copy;
    const int descriptor = CreateBeside(target, copy, kForAll);
    if (descriptor < 0) return SystemFailure(errno, path);
    int error = WriteAll(descriptor, bytes);
    if (error == 0 && exists && fchmod(descriptor, before.st_mode & 07777) != 0) error = errno;
    if (error == 0 && fdatasync(descriptor) != 0) error = errno;
    if (close(descriptor) != 0 && error == 0) error = errno;
    if (error == 0 && rename(copy.c_str(), target.c_str()) != 0) error = errno;
    if (error == 0) return {};
    unlink(copy.c_str());
    return SystemFailure(error, path);
}

base::Status SaveCacheFile(const QString& path, QByteArrayView bytes) {
    const std::string target = SystemPath(path);
    if (target.empty()) return SystemFailure(ENOENT, path);
    MakeFoldersForUser(target);
    std::string copy;
    const int descriptor = CreateBeside(target, copy, kForUser);
    if (descriptor < 0) return SystemFailure(errno, path);
    int error = WriteAll(descriptor, bytes);
    if (close(descriptor) != 0 && error == 0) error = errno;
    if (error == 0 && rename(copy.c_str(), target.c_str()) != 0) error = errno;
    if (error == 0) return {};
    unlink(copy.c_str());
    return SystemFailure(error, path);
}

void RemoveFile(const QString& path) {
    const std::string name = SystemPath(path);
    if (!name.empty()) unlink(name.c_str());
}

base::Status CopyNewFile(const QString& from, const QString& to) {
    namespace fs = std::filesystem;
    const fs::path target = SystemPath(to);
    std::error_code error;
    // Through a second name: on a full disk copy_file leaves the part that it has written.
    fs::path copy = target;
    copy += ".new";
    if (fs::exists(target, error)) return SystemFailure(EEXIST, to);
    fs::copy_file(ToPath(from), copy, fs::copy_options::overwrite_existing, error);
    if (!error)
        fs::permissions(copy, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add,
                        error);
    if (!error) fs::rename(copy, target, error);
    if (!error) return {};
    std::error_code ignored;
    fs::remove(copy, ignored);
    return SystemFailure(error.value(), to);
}

bool FolderExists(const QString& folder) {
    std::error_code error;
    return std::filesystem::is_directory(ToPath(folder), error);
}

base::Status MakeFolder(const QString& folder) {
    std::error_code error;
    std::filesystem::create_directories(ToPath(folder), error);
    return error ? SystemFailure(error.value(), folder) : base::Status();
}

base::Status ListFolder(const QString& folder,
                        const std::function<void(const FolderEntry&)>& visit) {
    const std::string name = ExistingSystemPath(folder);
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
        visit({DecodeFileName(entry->d_name), kind == EntryKind::kFolder,
               IsLink(directory.get(), *entry)});
    }
}

QString Identity(const QString& path) {
    struct stat facts {};
    const std::string name = ExistingSystemPath(path);
    if (name.empty() || stat(name.c_str(), &facts) != 0) return {};
    return QString::number(facts.st_dev) + u':' + QString::number(facts.st_ino);
}

// Source of the numbers: linux/magic.h, and the kernel's sources for those that are missing there.
bool IsPseudoFileSystem(const QString& folder) {
    constexpr long kConfigFs = 0x62656570, kFuseControl = 0x65735543, kMessageQueues = 0x19800202,
                   kRpcPipes = 0x67596969, kNfsServer = 0x6E667364;
    const std::string name = ExistingSystemPath(folder);
    struct statfs facts {};
    if (name.empty() || statfs(name.c_str(), &facts) != 0) return false;
    switch (static_cast<long>(facts.f_type)) {
    case PROC_SUPER_MAGIC:
    case SYSFS_MAGIC:
    case DEVPTS_SUPER_MAGIC:
    case DEBUGFS_MAGIC:
    case TRACEFS_MAGIC:
    case SECURITYFS_MAGIC:
    case SELINUX_MAGIC:
    case CGROUP_SUPER_MAGIC:
    case CGROUP2_SUPER_MAGIC:
    case PSTOREFS_MAGIC:
    case BPF_FS_MAGIC:
    case EFIVARFS_MAGIC:
    case BINFMTFS_MAGIC:
    case NSFS_MAGIC:
    case kConfigFs:
    case kFuseControl:
    case kMessageQueues:
    case kRpcPipes:
    case kNfsServer:
        return true;
    default:
        return false;
    }
}

base::Status ChangeDirectory(const QString& folder) {
    const std::string name = ExistingSystemPath(folder);
    if (name.empty()) return FolderError(ENOENT, folder);
    if (chdir(name.c_str()) != 0) return FolderError(errno, folder);
    return {};
}

}  // namespace platform
