// FileSystem and File: what the engine needs of an operating system. A program passes in an
// implementation (the one of this system is platform::MakeFileSystem()); tests pass one that
// fails on purpose. Errors: kNotFound, kPermissionDenied, kBusy (another program keeps it to
// itself), kNoSpace, kIoError. A file may be opened, renamed and removed while it is open
// elsewhere. Nothing here throws.
#pragma once

#include "base/file_names.h"
#include "base/status.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace jet {

enum class OpenMode : std::uint8_t {
    kRead,          // existing file, reading only
    kReadWrite,     // existing file
    kCreate,        // new or emptied file, read and write
    kOpenOrCreate,  // existing file, or a new empty one; read and write
};

enum class FileLock : std::uint8_t { kNone, kShared, kExclusive };
// Where locks begin that keep nobody from reading the file: behind the last byte of the largest
// one.
inline constexpr std::uint64_t kBehindContent = std::uint64_t{1} << 32;

class File {
public:
    virtual ~File() = default;  // closes; releases the lock
    virtual base::Result<std::uint64_t> Size() const = 0;
    // Fills `bytes` from `offset` on. kIoError: the file ends before.
    virtual base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
    virtual base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual base::Status Truncate(std::uint64_t size) = 0;
    // What was written is on the disk, not only in the system's cache, when this returns ok.
    virtual base::Status Sync() = 0;
    // Lock of all bytes from `from` on, where none need be, against other processes and other File
    // objects; never waits. It comes in the place of the one that this object had. kBusy: one of
    // them is locked already. Some systems let nobody else read or write what is locked.
    virtual base::Status Lock(FileLock lock, std::uint64_t from) = 0;
    // Whether `path` still leads to this file. No: another one has come in its place since it was
    // opened. The answer for systems where that cannot be is yes.
    virtual bool IsAt(const std::filesystem::path&) const { return true; }
};

class FileSystem {
public:
    virtual ~FileSystem() = default;
    virtual base::Result<std::unique_ptr<File>> Open(const std::filesystem::path& path,
                                                     OpenMode mode) = 0;
    virtual bool Exists(const std::filesystem::path& path) = 0;
    virtual base::Status Remove(const std::filesystem::path& path) = 0;
    // Replaces `to` when it exists, in one step, even while it is open. Who may read and write it
    // stays; where `to` is a link, the file that it leads to is replaced. Requires: `from` is not
    // open.
    virtual base::Status Rename(const std::filesystem::path& from,
                                const std::filesystem::path& to) = 0;
    // Makes creations, removals and renames in `folder` permanent. kNotFound: no such folder.
    virtual base::Status SyncFolder(const std::filesystem::path& folder) = 0;
    // For what is kept beside a database; the engine itself needs none of these. The names of
    // the files in `folder`, in no order. kNotFound: no such folder.
    virtual base::Result<std::vector<std::string>> FileNames(const std::filesystem::path& folder) {
        return base::Status(base::StatusCode::kUnsupported,
                            base::Utf8Of(folder) + " cannot be listed.");
    }
    // ok when there is such a folder already.
    virtual base::Status MakeFolder(const std::filesystem::path& folder) {
        return {base::StatusCode::kUnsupported, base::Utf8Of(folder) + " cannot be made."};
    }
    // "user@computer", for the message that says who holds a file. UTF-8.
    virtual std::string OwnerName() = 0;
};

}  // namespace jet
