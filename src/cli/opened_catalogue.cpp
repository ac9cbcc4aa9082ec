#include "cli/opened_catalogue.h"

#include "catalogue/data_source.h"
#include "catalogue/start_up.h"
#include "jet/pages/page_copy.h"
#include "jet/tables/database.h"
#include "platform/files.h"

namespace cli {

OpenedCatalogue::OpenedCatalogue(Program& program)
    : connection_(std::make_unique<jet::Connection>(program.outside.files)),
      catalogue_{connection_.get(), &values_, &program.outside.settings, &program.outside.clock} {
    values_.ApplicationFolder = catalogue::ChooseApplicationFolder(
        program.arguments.Value("folder"), program.outside.folders);
}

base::Result<std::unique_ptr<OpenedCatalogue>> OpenedCatalogue::Open(Program& program,
                                                                     Access access) {
    std::unique_ptr<OpenedCatalogue> opened(new OpenedCatalogue(program));
    jet::FileSystem& files = program.outside.files;
    catalogue::PrepareValues(opened->catalogue_);
    if (const base::Status& failure = opened->values_.PathMapFailure; !failure.ok())
        program.console.Complain(QString::fromStdString(failure.message()));
    if (access == Access::kWrite)
        catalogue::PrepareFirstStart(opened->values_.ApplicationFolder, program.outside.folders);
    opened->history_ = std::make_unique<history::HistoryFile>(
        files, platform::ToPath(catalogue::CataloguePath(opened->catalogue_)));
    switch (access) {
    case Access::kRead:
        RETURN_IF_ERROR(opened->OpenForReading(files));
        break;
    case Access::kTrial: {
        const QString first = catalogue::CatalogueOfFirstStart(opened->values_.ApplicationFolder,
                                                               program.outside.folders);
        RETURN_IF_ERROR(opened->OpenCopy(
            files, first.isEmpty() ? catalogue::CataloguePath(opened->catalogue_) : first));
        catalogue::UpgradeCatalogue(opened->catalogue_).Ignore();
        break;
    }
    case Access::kWrite:
        opened->connection_->UseNotes(opened->history_.get());
        RETURN_IF_ERROR(catalogue::Main(opened->catalogue_));
        break;
    }
    return opened;
}

base::Status OpenedCatalogue::OpenForReading(jet::FileSystem& files) {
    const QString path = catalogue::CataloguePath(catalogue_);
    base::Status opened = connection_->Open(
        u"Data Source=" + catalogue::DataSourceValue(path.toStdU16String()) + u";Mode=Read");
    return opened.code() == base::StatusCode::kBusy ? OpenCopy(files, path) : opened;
}

base::Status OpenedCatalogue::OpenCopy(jet::FileSystem& files, const QString& name) {
    const std::filesystem::path path = platform::ToPath(name);
    ASSIGN_OR_RETURN(auto pages, jet::CopyPages(files, path));
    ASSIGN_OR_RETURN(auto database, jet::OpenDatabase(std::move(pages), path.string()));
    connection_ = std::make_unique<jet::Connection>(std::move(database));
    catalogue_.CatalogueConnection = connection_.get();
    return {};
}

QString CataloguePath(const Program& program) {
    catalogue::ProcessValues values;
    values.ApplicationFolder = catalogue::ChooseApplicationFolder(program.arguments.Value("folder"),
                                                                  program.outside.folders);
    return catalogue::CataloguePath({nullptr, &values, nullptr, nullptr});
}

Access AccessForChanges(const Program& program) {
    return program.is_dry_run() ? Access::kTrial : Access::kWrite;
}

}  // namespace cli
