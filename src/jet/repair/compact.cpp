#include "jet/repair/compact.h"

#include "jet/errors.h"
#include "jet/repair/database_copy.h"
#include "jet/repair/finished_file.h"

namespace jet {

base::Result<CompactReport> Compact(FileSystem& files, const std::filesystem::path& from,
                                    const std::filesystem::path& to,
                                    const CompactProgress& progress) {
    if (files.Exists(to)) return JetError(ErrorNumber::kDatabaseExists);
    PageStoreOptions options;
    options.read_only = true;
    ASSIGN_OR_RETURN(const auto store, OpenPageStore(files, from, options));
    CompactReport report;
    ASSIGN_OR_RETURN(const auto content, CopyDatabase(*store, report, progress));
    ASSIGN_OR_RETURN(const auto finished, FinishedFile::Write(files, *content, to));
    RETURN_IF_ERROR(finished->PutInPlace());
    return report;
}

base::Result<CompactReport> MeasureCompact(PageStore& source, const CompactProgress& progress) {
    CompactReport report;
    RETURN_IF_ERROR(CopyDatabase(source, report, progress).status());
    return report;
}

}  // namespace jet
