#include "app/given_tables.h"

#include "catalogue/path_names.h"
#include "discovery/folder_scan.h"
#include "jet/connection.h"
#include "platform/error_numbers.h"
#include "platform/files.h"
#include "tableinfo/update_from_table_files.h"

namespace app {

base::Result<std::int64_t> AddGivenTables(catalogue::Catalogue& catalogue, const QString& path,
                                          platform::UserEvents& events,
                                          const catalogue::Progress& progress,
                                          catalogue::PassedOver* passed_over) {
    const jet::NamedChange named(*catalogue.CatalogueConnection, u"Add Tables");
    discovery::UnwatchedScan observer;
    discovery::FolderScan scan(catalogue, events, observer);
    if (platform::FolderExists(path))
        RETURN_IF_ERROR(scan.Run(path));
    else if (platform::FileExists(path))
        RETURN_IF_ERROR(scan.AddFile(platform::ExistingName(path)));
    else
        return base::Status(base::StatusCode::kNotFound, "File not found: " + path.toStdString(),
                            platform::kFileNotFound);
    if (passed_over) passed_over->Note(scan.passed_over());
    // Those that were there may have been edited since; what was typed counts more.
    RETURN_IF_ERROR(tableinfo::UpdateRowsFromTableFiles(catalogue, scan.added_ids(), events,
                                                        progress, passed_over));
    RETURN_IF_ERROR(scan.start_listing());
    return scan.found_count();
}

std::function<bool(const QString& file_name)> IsGiven(const QString& path) {
    // The catalogue may have them under the path that links in this one lead to.
    const QString real = platform::RealPath(path);
    if (!platform::FolderExists(path))
        return [name = platform::ExistingName(path), real](const QString& file_name) {
            return file_name.compare(name, Qt::CaseInsensitive) == 0 ||
                   (!real.isEmpty() && file_name.compare(real, Qt::CaseInsensitive) == 0);
        };
    return [folder = catalogue::WithTrailingSeparator(path),
            real_folder = catalogue::WithTrailingSeparator(real)](const QString& file_name) {
        return file_name.startsWith(folder, Qt::CaseInsensitive) ||
               file_name.startsWith(real_folder, Qt::CaseInsensitive);
    };
}

}  // namespace app
