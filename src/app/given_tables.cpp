#include "app/given_tables.h"

#include "app/texts.h"
#include "base/marked_text.h"
#include "catalogue/path_names.h"
#include "discovery/folder_scan.h"
#include "jet/connection.h"
#include "platform/error_numbers.h"
#include "platform/files.h"
#include "tableinfo/update_from_table_files.h"

namespace app {
namespace {

// Those that were there may have been edited since; what was typed counts more.
base::Status FillAddedRows(catalogue::Catalogue& catalogue, const discovery::FolderScan& scan,
                           const base::RunSteps& steps, catalogue::PassedOver* passed_over) {
    if (passed_over) passed_over->Note(scan.passed_over());
    platform::NoUserEvents events;
    return tableinfo::UpdateRowsFromTableFiles(catalogue, scan.added_ids(), events, steps.progress,
                                               passed_over);
}

// Tells of the folders that are listed, and of those that are known to wait.
class ListedFolders final : public discovery::ScanObserver {
public:
    explicit ListedFolders(const base::RunSteps& steps) : steps_(steps) {}
    void FolderQueued(const QString&) override { ++known_; }
    void ListingFolder(const QString&) override {}
    void FolderListed() override {
        ++listed_;
        if (steps_.progress) steps_.progress(listed_, known_);
    }
    void TableAdded(const QString&, const QString&) override {}

private:
    const base::RunSteps& steps_;
    std::int64_t known_ = 0;
    std::int64_t listed_ = 0;
};

}  // namespace

base::Result<std::int64_t> AddGivenTables(catalogue::Catalogue& catalogue, const QString& path,
                                          const base::RunSteps& steps,
                                          catalogue::PassedOver* passed_over) {
    const jet::NamedChange named(*catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Add Tables"));
    ListedFolders observer(steps);
    platform::NoUserEvents events;
    discovery::FolderScan scan(catalogue, events, observer);
    base::Status scanned;
    if (platform::FolderExists(path))
        scanned = scan.Run(path, steps.stop);
    else if (platform::FileExists(path))
        RETURN_IF_ERROR(scan.AddFile(platform::ExistingName(path)));
    else
        return base::Status(base::StatusCode::kNotFound,
                            AppTexts::tr("File not found: %1").arg(path).toStdString(),
                            platform::kFileNotFound);
    if (!base::IsStopped(scanned)) RETURN_IF_ERROR(scanned);
    RETURN_IF_ERROR(FillAddedRows(catalogue, scan, steps, passed_over));
    RETURN_IF_ERROR(scan.start_listing());
    return scan.found_count();
}

base::Result<std::int64_t> AddNewTables(catalogue::Catalogue& catalogue, const QStringList& folders,
                                        const base::RunSteps& steps,
                                        catalogue::PassedOver& passed_over) {
    const jet::NamedChange named(*catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Look for New Tables"));
    ListedFolders observer(steps);
    platform::NoUserEvents events;
    discovery::FolderScan scan(catalogue, events, observer);  // one, as it reads what is known once
    std::int64_t added = 0;
    for (const QString& folder : folders) {
        if (steps.stop.stop_requested()) break;
        if (!platform::FolderExists(folder)) {
            passed_over.Note(folder,
                             {base::StatusCode::kNotFound,
                              AppTexts::tr("There is no folder %1").arg(folder).toStdString()});
            continue;
        }
        const base::Status scanned = scan.Run(folder, steps.stop);
        if (!base::IsStopped(scanned)) RETURN_IF_ERROR(scanned);
        RETURN_IF_ERROR(FillAddedRows(catalogue, scan, steps, &passed_over));
        added += scan.found_count();
    }
    return added;
}

std::function<bool(const QString& file_name)> IsGiven(const QString& path,
                                                      const catalogue::LocalPaths& paths) {
    // The catalogue may have them under the path that links in this one lead to.
    const QString real = platform::RealPath(path);
    std::function<bool(const QString& name)> is_meant;
    if (platform::FolderExists(path))
        is_meant = [folder = catalogue::WithTrailingSeparator(path),
                    real_folder = catalogue::WithTrailingSeparator(real)](const QString& name) {
            return name.startsWith(folder, Qt::CaseInsensitive) ||
                   name.startsWith(real_folder, Qt::CaseInsensitive);
        };
    else
        is_meant = [name = platform::ExistingName(path), real](const QString& file_name) {
            return file_name.compare(name, Qt::CaseInsensitive) == 0 ||
                   (!real.isEmpty() && file_name.compare(real, Qt::CaseInsensitive) == 0);
        };
    return [is_meant, map = paths.map()](const QString& stored) {
        return is_meant(stored) || (map->PairOf(stored) && is_meant(map->Local(stored)));
    };
}

}  // namespace app
