// Files of a POSIX system. Locks are open file description locks (fcntl F_OFD_SETLK): they conflict
// with those of other processes and of other descriptors of this process, and end with the process.
// They are advisory.
#include "platform/file_system.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

using base::Result;
using base::Status;
using base::StatusCode;

StatusCode CodeOf(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return StatusCode::kNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
        return StatusCode::kPermissionDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return StatusCode::kNoSpace;
    default:
        return StatusCode::kIoError;
    }
}

Status Failure(int error, const std::string& what) {
    return {CodeOf(error), what + ": " + std::generic_category().message(error), error};
}

int FlagsOf(jet::OpenMode mode) {
    switch (mode) {
    case jet::OpenMode::kRead:
        return O_RDONLY;
    case jet::OpenMode::kReadWrite:
        return O_RDWR;
    case jet::OpenMode::kCreate:
        return O_RDWR | O_CREAT | O_TRUNC;
    case jet::OpenMode::kOpenOrCreate:
        return O_RDWR | O_CREAT;
    }
    return O_RDONLY;
}

// Repeats `call` as long as a signal interrupts it.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

class PosixFile final : public jet::File {
public:
    PosixFile(int descriptor, std::string name) : descriptor_(descriptor), name_(std::move(name)) {}
    ~PosixFile() override { ::close(descriptor_); }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    Result<std::uint64_t> Size() const override {
        struct stat info {};
        if (::fstat(descriptor_, &info) != 0) return Failure(errno, name_);
        return static_cast<std::uint64_t>(info.st_size);
    }

    Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        while (!bytes.empty()) {
            const ssize_t count = Uninterrupted([&] {
                return ::pread(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
            });
            if (count < 0) return Failure(errno, name_);
            if (count == 0) return {StatusCode::kIoError, name_ + ": the file ends too early"};
            offset += static_cast<std::uint64_t>(count);
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
        return {};
    }

    Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {
            const ssize_t count = Uninterrupted([&] {
                return ::pwrite(descriptor_, bytes.data(), bytes.size(),
                                static_cast<off_t>(offset));
            });
            if (count < 0) return Failure(errno, name_);
            if (count == 0) return Failure(ENOSPC, name_);
            offset += static_cast<std::uint64_t>(count);
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
        return {};
    }

    Status Truncate(std::uint64_t size) override {
        const int done =
            Uninterrupted([&] { return ::ftruncate(descriptor_, static_cast<off_t>(size)); });
        return done == 0 ? Status() : Failure(errno, name_);
    }

    Status Sync() override {
        const int done = Uninterrupted([&] { return ::fdatasync(descriptor_); });
        return done == 0 ? Status() : Failure(errno, name_);
    }

    Status Lock(jet::FileLock lock, std::uint64_t from) override {
        struct flock range {};
        range.l_whence = SEEK_SET;
        range.l_start = static_cast<off_t>(from);
        const int type = lock == jet::FileLock::kNone     ? F_UNLCK
                         : lock == jet::FileLock::kShared ? F_RDLCK
                                                          : F_WRLCK;
        range.l_type = static_cast<short>(type);
        const int done = Uninterrupted([&] { return ::fcntl(descriptor_, F_OFD_SETLK, &range); });
        if (done == 0) return {};
        if (errno == EAGAIN || errno == EACCES)
            return {StatusCode::kBusy, name_ + " is in use", errno};
        return Failure(errno, name_);
    }

    bool IsAt(const std::filesystem::path& path) const override {
        struct stat here {};
        struct stat there {};
        return ::fstat(descriptor_, &here) == 0 && ::stat(path.c_str(), &there) == 0 &&
               here.st_dev == there.st_dev && here.st_ino == there.st_ino;
    }

private:
    int descriptor_;
    std::string name_;
};

class PosixFileSystem final : public jet::FileSystem {
public:
    Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                            jet::OpenMode mode) override {
        // O_NONBLOCK: opening a pipe must not block; regular files ignore it.
        const int flags = FlagsOf(mode) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
        const int descriptor = Uninterrupted([&] { return ::open(path.c_str(), flags, 0666); });
        if (descriptor < 0) return Failure(errno, path.string());
        auto file = std::make_unique<PosixFile>(descriptor, path.string());
        struct stat info {};
        if (::fstat(descriptor, &info) != 0) return Failure(errno, path.string());
        if (!S_ISREG(info.st_mode))
            return Status(StatusCode::kPermissionDenied, path.string() + " is not a file");
        return std::unique_ptr<jet::File>(std::move(file));
    }

    bool Exists(const std::filesystem::path& path) override {
        std::error_code error;
        return std::filesystem::exists(path, error);
    }

    Status Remove(const std::filesystem::path& path) override {
        return ::unlink(path.c_str()) == 0 ? Status() : Failure(errno, path.string());
    }

    Status Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        // A file that is replaced stays what its folder says of it: a link, and who may use it.
        std::filesystem::path place = to;
        struct stat info {};
        if (::stat(to.c_str(), &info) == 0) {
            std::error_code error;
            const std::filesystem::path target = std::filesystem::canonical(to, error);
            if (error) return Failure(error.value(), to.string());
            place = target;
            if (::chmod(from.c_str(), info.st_mode & 07777) != 0)
                return Failure(errno, from.string());
        }
        return ::rename(from.c_str(), place.c_str()) == 0 ? Status()
                                                          : Failure(errno, from.string());
    }

    Status SyncFolder(const std::filesystem::path& folder) override {
        const std::string name = folder.empty() ? "." : folder.string();
        const int descriptor =
            Uninterrupted([&] { return ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        if (descriptor < 0) return Failure(errno, name);
        const int done = Uninterrupted([&] { return ::fsync(descriptor); });
        const int error = errno;
        ::close(descriptor);
        // EINVAL: a file system (some network ones) that cannot sync a folder.
        return done == 0 || error == EINVAL ? Status() : Failure(error, name);
    }

    Result<std::vector<std::string>> FileNames(const std::filesystem::path& folder) override {
        std::error_code error;
        std::vector<std::string> names;
        std::filesystem::directory_iterator entry(folder, error);
        for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
            if (entry->is_regular_file(error) && !error)
                names.push_back(entry->path().filename().string());
        if (error) return Failure(error.value(), folder.string());
        return names;
    }

    Status MakeFolder(const std::filesystem::path& folder) override {
        const bool is_made = ::mkdir(folder.c_str(), 0777) == 0;
        if (is_made || errno == EEXIST) return {};
        return Failure(errno, folder.string());
    }

    // The list of users is read once.
    std::string OwnerName() override {
        static const std::string name = FindOwnerName();
        return name;
    }

private:
    static std::string FindOwnerName() {
        char computer[256] = "localhost";
        ::gethostname(computer, sizeof computer - 1);
        passwd entry{};
        passwd* found = nullptr;
        char buffer[4096];
        ::getpwuid_r(::geteuid(), &entry, buffer, sizeof buffer, &found);
        const std::string user = found != nullptr ? entry.pw_name : std::to_string(::geteuid());
        return user + "@" + computer;
    }
};

}  // namespace

std::unique_ptr<jet::FileSystem> MakeFileSystem() {
    return std::make_unique<PosixFileSystem>();
}

}  // namespace platform
