// LockFile: the sister file (the database's name with the ending .ldb) that says who has the
// database open for writing: 32 bytes computer name, 32 bytes user name, zero padded, in its first
// slot. Other engines of this format keep the same file and lock bytes of it, so all that they may
// lock is locked while it is ours, and a locked one means that the database is in use. An unlocked
// one is left from a dead process and is taken over. Programs that use this engine exclude each
// other by a lock of the database file; this file only names the holder.
#pragma once

#include "jet/pages/file_system.h"

#include <filesystem>
#include <memory>
#include <string>

namespace jet {

class LockFile {
public:
    // tables.mdb gives tables.ldb, as other engines do; any other name gets ".ldb" appended.
    static std::filesystem::path PathFor(const std::filesystem::path& database);

    // Writes the name of this process. kBusy (3356): another program holds it. kPermissionDenied,
    // kNoSpace, kIoError: it cannot be made.
    static base::Result<std::unique_ptr<LockFile>> Take(FileSystem& files,
                                                        const std::filesystem::path& database);
    // For a reader: ok unless another program holds the file (3356).
    static base::Status CheckFree(FileSystem& files, const std::filesystem::path& database);
    // The error that names the holder, 3356; 3045 when the file has no name (readers do not write
    // one).
    static base::Status BusyStatus(FileSystem& files, const std::filesystem::path& database);

    ~LockFile();  // removes it
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

private:
    LockFile(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file);

    FileSystem& files_;
    std::filesystem::path path_;
    std::unique_ptr<File> file_;
};

}  // namespace jet
