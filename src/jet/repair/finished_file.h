// FinishedFile: a new database file on its way to its place. It is written beside that place,
// synced and checked by the checker; only then it counts. Until it has been put in place nothing
// else has been touched, and what was written goes away with this object.
#pragma once

#include "jet/repair/new_file.h"

namespace jet {

class FinishedFile {
public:
    // Beside `place`: its name + "-new". A file of that name is left from a process that was
    // stopped, and is replaced; kBusy (3045): it is being written.
    // kCorruption: the checker has found a fault in what was written.
    static base::Result<std::unique_ptr<FinishedFile>> Write(FileSystem& files, NewFile& content,
                                                             const std::filesystem::path& place);
    static std::filesystem::path PathFor(const std::filesystem::path& place);

    ~FinishedFile();  // removes it, unless it is in its place
    FinishedFile(const FinishedFile&) = delete;
    FinishedFile& operator=(const FinishedFile&) = delete;

    // Replaces what is there in one step. A failure of the last sync leaves the new file in place.
    base::Status PutInPlace();

private:
    FinishedFile(FileSystem& files, std::filesystem::path place)
        : files_(files), place_(std::move(place)), path_(PathFor(place_)) {}
    base::Status WriteAll(NewFile& content);
    base::Status Check();

    FileSystem& files_;
    std::filesystem::path place_;
    std::filesystem::path path_;
    bool is_written_ = false;  // by us: it is to be removed
};

}  // namespace jet
