// OwnerFile: the sister file (the database's name with the ending .ldb) that says who has the
// database open for writing: 32 bytes computer name, 32 bytes user name, zero padded, in its first
// slot. Other engines of this format keep the same file and lock ranges of it, so it is locked as a
// whole while it is ours, and a locked one means that the database is in use. An unlocked one
// is left from a dead process and is taken over. The lock that counts between programs of ours is
// the one of the database file; this file tells its holder's name.
#pragma once

#include "jet/pages/file_system.h"

#include <filesystem>
#include <memory>
#include <string>

namespace jet {

class OwnerFile {
public:
    // tables.mdb gives tables.ldb, as other engines do; any other name gets ".ldb" appended.
    static std::filesystem::path PathFor(const std::filesystem::path& database);

    // Enters this process. kBusy (3356): another program holds it. kPermissionDenied, kNoSpace,
    // kIoError: it cannot be made.
    static base::Result<std::unique_ptr<OwnerFile>> Take(FileSystem& files,
                                                         const std::filesystem::path& database);
    // For a reader: ok unless another program holds the file (3356).
    static base::Status CheckFree(FileSystem& files, const std::filesystem::path& database);
    // Who has the database, as a 3356 message; 3045 when the file holds no name (readers leave
    // none).
    static base::Status BusyStatus(FileSystem& files, const std::filesystem::path& database);

    ~OwnerFile();  // removes it
    OwnerFile(const OwnerFile&) = delete;
    OwnerFile& operator=(const OwnerFile&) = delete;

private:
    OwnerFile(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file);

    FileSystem& files_;
    std::filesystem::path path_;
    std::unique_ptr<File> file_;
};

}  // namespace jet
