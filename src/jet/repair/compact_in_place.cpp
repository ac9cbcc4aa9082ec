// The order of steps, and what a process that is stopped behind each of them leaves: docs/jet.md,
// "Compacting".
#include "jet/repair/compact.h"
#include "jet/repair/database_copy.h"
#include "jet/repair/finished_file.h"

namespace jet {

base::Result<CompactReport> CompactInPlace(FileSystem& files, const std::filesystem::path& path,
                                           const CompactProgress& progress,
                                           const BeforeReplacing& before_replacing) {
    PageStoreOptions options;
    options.flush_delay = std::chrono::milliseconds(0);  // nothing is committed here
    ASSIGN_OR_RETURN(const auto store, OpenPageStore(files, path, options));
    RETURN_IF_ERROR(store->Flush());
    CompactReport report;
    ASSIGN_OR_RETURN(const auto content, CopyDatabase(*store, report, progress));
    ASSIGN_OR_RETURN(const auto finished, FinishedFile::Write(files, *content, path));
    if (progress) RETURN_IF_ERROR(progress(report.rows, report.rows));
    if (before_replacing) RETURN_IF_ERROR(before_replacing(report));
    RETURN_IF_ERROR(finished->PutInPlace());
    RETURN_IF_ERROR(store->Close());
    return report;
}

}  // namespace jet
