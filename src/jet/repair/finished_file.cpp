#include "jet/repair/finished_file.h"

#include "base/file_names.h"
#include "jet/check/check.h"
#include "jet/errors.h"

namespace jet {
namespace {

std::filesystem::path FolderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

}  // namespace

std::filesystem::path FinishedFile::PathFor(const std::filesystem::path& place) {
    std::filesystem::path path = place;
    path += "-new";
    return path;
}

base::Result<std::unique_ptr<FinishedFile>>
FinishedFile::Write(FileSystem& files, NewFile& content, const std::filesystem::path& place) {
    std::unique_ptr<FinishedFile> file(new FinishedFile(files, place));
    RETURN_IF_ERROR(file->WriteAll(content));
    RETURN_IF_ERROR(file->Check());
    return file;
}

FinishedFile::~FinishedFile() {
    if (is_written_) files_.Remove(path_).Ignore();
}

// The lock comes before the old content goes: two that write the same file do not mix.
base::Status FinishedFile::WriteAll(NewFile& content) {
    const bool was_there = files_.Exists(path_);
    auto file = files_.Open(path_, OpenMode::kOpenOrCreate);
    is_written_ = !was_there;
    if (!file.ok()) return file.status();
    const base::Status locked = (*file)->Lock(FileLock::kExclusive, kBehindContent);
    if (locked.code() == base::StatusCode::kBusy) {
        is_written_ = false;
        return JetError(ErrorNumber::kFileInUse, base::Utf8Of(path_));
    }
    RETURN_IF_ERROR(locked);
    is_written_ = true;
    RETURN_IF_ERROR((*file)->Truncate(0));
    RETURN_IF_ERROR(content.Write(**file));
    RETURN_IF_ERROR((*file)->Sync());
    return files_.SyncFolder(FolderOf(path_));
}

base::Status FinishedFile::Check() {
    PageStoreOptions options;
    options.read_only = true;
    ASSIGN_OR_RETURN(const auto store, OpenPageStore(files_, path_, options));
    const CheckReport report = CheckIntegrity(*store);
    RETURN_IF_ERROR(store->Close());
    if (report.sound()) return {};
    for (const Finding& finding : report.findings)
        if (finding.severity == Severity::kFault)
            return ErrorBecause(ErrorNumber::kDiskError,
                                "The new file is not sound: " + Describe(finding));
    return JetError(ErrorNumber::kDiskError);
}

base::Status FinishedFile::PutInPlace() {
    RETURN_IF_ERROR(files_.Rename(path_, place_));
    is_written_ = false;
    return files_.SyncFolder(FolderOf(place_));
}

}  // namespace jet
