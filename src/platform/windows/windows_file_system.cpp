// Files of Windows. Every file is opened so that others may read, write, rename and remove it
// meanwhile; what excludes them is the lock (LockFileEx), which ends with the handle. A folder is
// not synced by itself: NTFS keeps its own journal of names, and renames are written through.
#include "base/file_names.h"
#include "base/unicode.h"
#include "platform/file_system.h"
#include "platform/windows/file_identity.h"
#include "platform/windows/file_replacement.h"
#include "platform/windows/last_error.h"
#include "platform/windows/owned_handle.h"
#include "platform/windows/system_path.h"

#include <algorithm>
#include <array>
#include <limits>

namespace platform {
namespace {

using base::Result;
using base::Status;
using base::StatusCode;
using jet::FileLock;
using jet::OpenMode;

constexpr std::size_t kMaxTransfer = 1U << 30;  // a call's count of bytes has 32 bits

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

class WindowsFile final : public jet::File {
public:
    WindowsFile(OwnedHandle handle, std::filesystem::path path)
        : handle_(std::move(handle)), path_(std::move(path)) {}
    // The system ends a lock with its handle too, but takes its time.
    ~WindowsFile() override { Unlock(); }

    Result<std::uint64_t> Size() const override {
        LARGE_INTEGER size{};
        if (!GetFileSizeEx(handle_.get(), &size)) return Failure();
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        while (!bytes.empty()) {
            const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMaxTransfer));
            OVERLAPPED place = At(offset);
            DWORD count = 0;
            const bool done = ReadFile(handle_.get(), bytes.data(), wanted, &count, &place) != 0;
            if (!done && GetLastError() != ERROR_HANDLE_EOF) return Failure();
            if (!done || count == 0)
                return {StatusCode::kIoError, base::Utf8Of(path_) + ": the file ends too early"};
            offset += count;
            bytes = bytes.subspan(count);
        }
        return {};
    }

    Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {
            const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMaxTransfer));
            OVERLAPPED place = At(offset);
            DWORD count = 0;
            if (!WriteFile(handle_.get(), bytes.data(), wanted, &count, &place)) return Failure();
            if (count == 0) return ErrorStatus(ERROR_DISK_FULL, path_);
            offset += count;
            bytes = bytes.subspan(count);
        }
        return {};
    }

    Status Truncate(std::uint64_t size) override {
        FILE_END_OF_FILE_INFO end{};
        end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
        if (!SetFileInformationByHandle(handle_.get(), FileEndOfFileInfo, &end, sizeof end))
            return Failure();
        return {};
    }

    Status Sync() override { return FlushFileBuffers(handle_.get()) ? Status() : Failure(); }

    // The system does not exchange one lock for another: the old one goes first, and comes back
    // when the new one cannot be had. Nobody in this program changes a lock that it holds.
    Status Lock(FileLock lock, std::uint64_t from) override {
        const FileLock before = lock_;
        const std::uint64_t from_before = locked_from_;
        Unlock();
        const DWORD error = TakeLock(lock, from);
        if (error == ERROR_SUCCESS) return {};
        TakeLock(before, from_before);
        if (error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING)
            return {StatusCode::kBusy, base::Utf8Of(path_) + " is in use",
                    static_cast<std::int32_t>(error)};
        return ErrorStatus(error, path_);
    }

    bool IsAt(const std::filesystem::path& path) const override {
        const auto name = SystemPath(path);
        if (!name.ok()) return false;
        const OwnedHandle there(CreateFileW(name->c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        const auto ours = IdentityOf(handle_);
        return there.is_open() && ours && ours == IdentityOf(there);
    }

private:
    // Of the call that has just failed.
    Status Failure() const { return ErrorStatus(GetLastError(), path_); }

    DWORD TakeLock(FileLock lock, std::uint64_t from) {
        if (lock == FileLock::kNone) return ERROR_SUCCESS;
        const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY |
                            (lock == FileLock::kExclusive ? DWORD{LOCKFILE_EXCLUSIVE_LOCK} : 0);
        OVERLAPPED place = At(from);
        const OVERLAPPED size = At(SizeFrom(from));
        if (!LockFileEx(handle_.get(), flags, 0, size.Offset, size.OffsetHigh, &place))
            return GetLastError();
        lock_ = lock;
        locked_from_ = from;
        return ERROR_SUCCESS;
    }

    void Unlock() {
        if (lock_ == FileLock::kNone) return;
        OVERLAPPED place = At(locked_from_);
        const OVERLAPPED size = At(SizeFrom(locked_from_));
        UnlockFileEx(handle_.get(), 0, size.Offset, size.OffsetHigh, &place);
        lock_ = FileLock::kNone;
    }

    // Up to the last byte that a file can have.
    static std::uint64_t SizeFrom(std::uint64_t from) {
        return static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) - from;
    }

    OwnedHandle handle_;
    std::filesystem::path path_;
    FileLock lock_ = FileLock::kNone;
    std::uint64_t locked_from_ = 0;
};

bool MayCreate(OpenMode mode) {
    return mode == OpenMode::kCreate || mode == OpenMode::kOpenOrCreate;
}

OwnedHandle OpenHandle(const std::wstring& name, OpenMode mode) {
    const DWORD access = mode == OpenMode::kRead ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    // A pipe's server that is opened in a file's place learns who we are, and may not act as we.
    constexpr DWORD kFlags =
        FILE_ATTRIBUTE_NORMAL | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
    return OwnedHandle(CreateFileW(name.c_str(), access, kShareAll, nullptr,
                                   MayCreate(mode) ? OPEN_ALWAYS : OPEN_EXISTING, kFlags, nullptr));
}

class WindowsFileSystem final : public jet::FileSystem {
public:
    Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                            OpenMode mode) override {
        ASSIGN_OR_RETURN(const std::wstring name, SystemPath(path));
        if (MayCreate(mode)) TakeBackReplaced(name);
        OwnedHandle handle = OpenHandle(name, mode);
        if (!handle.is_open() && GetLastError() == ERROR_FILE_NOT_FOUND) {
            if (!TakeBackReplaced(name)) return ErrorStatus(ERROR_FILE_NOT_FOUND, path);
            handle = OpenHandle(name, mode);
        }
        if (!handle.is_open()) return ErrorStatus(GetLastError(), path);
        if (GetFileType(handle.get()) != FILE_TYPE_DISK)
            return Status(StatusCode::kPermissionDenied, base::Utf8Of(path) + " is not a file");
        auto file = std::make_unique<WindowsFile>(std::move(handle), path);
        // Emptied behind the opening, so that the file keeps its attributes.
        if (mode == OpenMode::kCreate) RETURN_IF_ERROR(file->Truncate(0));
        return std::unique_ptr<jet::File>(std::move(file));
    }

    bool Exists(const std::filesystem::path& path) override {
        const auto name = SystemPath(path);
        if (!name.ok()) return false;
        return GetFileAttributesW(name->c_str()) != INVALID_FILE_ATTRIBUTES ||
               TakeBackReplaced(*name);
    }

    Status Remove(const std::filesystem::path& path) override {
        ASSIGN_OR_RETURN(const std::wstring name, SystemPath(path));
        DropReplaced(name);
        return DeleteFileW(name.c_str()) ? Status() : ErrorStatus(GetLastError(), path);
    }

    Status Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        ASSIGN_OR_RETURN(const std::wstring from_name, SystemPath(from));
        ASSIGN_OR_RETURN(const std::wstring to_name, SystemPath(to));
        return PutInPlace(from_name, to_name, from);
    }

    Status SyncFolder(const std::filesystem::path& folder) override {
        const std::filesystem::path place = folder.empty() ? std::filesystem::path(L".") : folder;
        ASSIGN_OR_RETURN(const std::wstring name, SystemPath(place));
        const DWORD attributes = GetFileAttributesW(name.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) return ErrorStatus(GetLastError(), place);
        const bool is_folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return is_folder ? Status() : ErrorStatus(ERROR_PATH_NOT_FOUND, place);
    }

    Result<std::vector<std::string>> FileNames(const std::filesystem::path& folder) override {
        ASSIGN_OR_RETURN(std::wstring pattern, SystemPath(folder));
        pattern += pattern.ends_with(L'\\') ? L"*" : L"\\*";
        std::vector<std::string> names;
        WIN32_FIND_DATAW entry{};
        const HANDLE search = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &entry,
                                               FindExSearchNameMatch, nullptr, 0);
        if (search == INVALID_HANDLE_VALUE) return ErrorStatus(GetLastError(), folder);
        do {
            if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
                names.push_back(base::Utf8Of(static_cast<const wchar_t*>(entry.cFileName)));
        } while (FindNextFileW(search, &entry) != 0);
        const DWORD error = GetLastError();
        FindClose(search);
        if (error != ERROR_NO_MORE_FILES) return ErrorStatus(error, folder);
        return names;
    }

    Status MakeFolder(const std::filesystem::path& folder) override {
        ASSIGN_OR_RETURN(const std::wstring name, SystemPath(folder));
        if (CreateDirectoryW(name.c_str(), nullptr)) return {};
        const DWORD error = GetLastError();
        return error == ERROR_ALREADY_EXISTS ? Status() : ErrorStatus(error, folder);
    }

    // The computer's short name, as other engines write it.
    std::string OwnerName() override {
        std::array<wchar_t, 257> user{L"user"};
        std::array<wchar_t, 257> computer{L"localhost"};
        auto user_size = static_cast<DWORD>(user.size());
        auto computer_size = static_cast<DWORD>(computer.size());
        GetUserNameW(user.data(), &user_size);
        GetComputerNameW(computer.data(), &computer_size);
        return base::Utf8Of(user.data()) + "@" + base::Utf8Of(computer.data());
    }
};

}  // namespace

std::unique_ptr<jet::FileSystem> MakeFileSystem() {
    return std::make_unique<WindowsFileSystem>();
}

}  // namespace platform
