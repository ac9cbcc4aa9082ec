// FileSystem and File: what the engine needs of an operating system. A program passes in an
// implementation (the one of this system is platform::MakeFileSystem()); tests pass one that
// fails on purpose. Errors: kNotFound, kPermissionDenied, kBusy, kNoSpace, kIoError. Nothing here
// throws.
#pragma once

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
    // Advisory lock of the whole file against other processes and other File objects; never waits.
    // kBusy: it is locked already.
    virtual base::Status Lock(FileLock lock) = 0;
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
    // Replaces `to` when it exists, in one step. Who may read and write it stays; where `to` is a
    // link, the file that it leads to is replaced.
    virtual base::Status Rename(const std::filesystem::path& from,
                                const std::filesystem::path& to) = 0;
    // Makes creations, removals and renames in `folder` permanent.
    virtual base::Status SyncFolder(const std::filesystem::path& folder) = 0;
    // For what is kept beside a database; the engine itself needs none of these. The names of
    // the files in `folder`, in no order. kNotFound: no such folder.
    virtual base::Result<std::vector<std::string>> FileNames(const std::filesystem::path& folder) {
        return base::Status(base::StatusCode::kUnsupported, folder.string() + " cannot be listed.");
    }
    // ok when there is such a folder already.
    virtual base::Status MakeFolder(const std::filesystem::path& folder) {
        return {base::StatusCode::kUnsupported, folder.string() + " cannot be made."};
    }
    // "user@computer", for the message that says who holds a file. UTF-8.
    virtual std::string OwnerName() = 0;
};

}  // namespace jet
