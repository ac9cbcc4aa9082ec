#include "app/given_tables.h"

#include "catalogue/path_names.h"
#include "discovery/folder_scan.h"
#include "platform/error_numbers.h"
#include "platform/files.h"
#include "tableinfo/update_from_table_files.h"

namespace app {
namespace {

// No window is there yet.
class NoWindow final : public platform::UserEvents, public discovery::ScanObserver {
public:
    void ProcessEvents() override {}
    void FolderQueued(const QString&) override {}
    void ListingFolder(const QString&) override {}
    void FolderListed() override {}
    void TableAdded(const QString&, const QString&) override {}
};

}  // namespace

base::Status AddGivenTables(catalogue::Catalogue& catalogue, const QString& path) {
    NoWindow none;
    discovery::FolderScan scan(catalogue, none, none);
    if (platform::FolderExists(path))
        RETURN_IF_ERROR(scan.Run(path));
    else if (platform::FileExists(path))
        RETURN_IF_ERROR(scan.AddFile(platform::ExistingName(path)));
    else
        return {base::StatusCode::kNotFound, "File not found: " + path.toStdString(),
                platform::kFileNotFound};
    if (scan.found_count() == 0) return {};
    return tableinfo::UpdateFromTableFiles(catalogue, 0, nullptr);
}

std::function<bool(const QString& file_name)> IsGiven(const QString& path) {
    if (!platform::FolderExists(path))
        return [name = platform::ExistingName(path)](const QString& file_name) {
            return file_name.compare(name, Qt::CaseInsensitive) == 0;
        };
    return [folder = catalogue::WithTrailingSeparator(path)](const QString& file_name) {
        return file_name.startsWith(folder, Qt::CaseInsensitive);
    };
}

}  // namespace app
