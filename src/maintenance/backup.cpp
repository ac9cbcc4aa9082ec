#include "maintenance/backup.h"

#include "base/file_names.h"
#include "catalogue/catalogue.h"
#include "catalogue/long_run.h"
#include "catalogue/process_values.h"
#include "catalogue/program_files.h"
#include "jet/connection.h"
#include "maintenance/texts.h"
#include "platform/application_folder.h"
#include "platform/file_system.h"
#include "platform/files.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace maintenance {
namespace {

constexpr std::uint64_t kKilobyte = 1 << 10;
constexpr std::uint64_t kChunkBytes = 1 << 20;

base::Status CopyBytes(const jet::File& from, jet::File& to, const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(const std::uint64_t size, from.Size());
    std::vector<std::byte> chunk(static_cast<std::size_t>(std::min(size, kChunkBytes)));
    for (std::uint64_t offset = 0; offset < size;) {
        const std::span<std::byte> piece =
            std::span(chunk).first(static_cast<std::size_t>(std::min(size - offset, kChunkBytes)));
        RETURN_IF_ERROR(from.ReadAt(offset, piece));
        RETURN_IF_ERROR(to.WriteAt(offset, piece));
        offset += piece.size();
        if (steps.progress)
            steps.progress(static_cast<std::int64_t>(offset / kKilobyte),
                           static_cast<std::int64_t>(size / kKilobyte));
    }
    return to.Sync();
}

// The file is closed when this returns, so that it can be renamed on every system.
base::Status WriteCopy(jet::FileSystem& files, const std::filesystem::path& database,
                       const std::filesystem::path& copy, const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(const auto from, files.Open(database, jet::OpenMode::kRead));
    ASSIGN_OR_RETURN(const auto to, files.Open(copy, jet::OpenMode::kCreate));
    return CopyBytes(*from, *to, steps);
}

QString SuccessText(const QString& folder) {
    return MaintenanceTexts::tr(
               "Database copied to:%1\r\nRename to %2 WHILE TAVOLO IS NOT RUNNING to restore.")
        .arg(platform::FileIn(folder, catalogue::kBackupFile.toString()),
             platform::FileIn(folder, catalogue::kCatalogueFile.toString()));
}

}  // namespace

base::Status CopyDatabase(jet::FileSystem& files, const QString& database, const QString& backup,
                          const base::RunSteps& steps) {
    // Exactly this name: ToPath would find a file that differs in letter case.
    const std::filesystem::path target = base::PathOf(backup.toStdU16String());
    std::filesystem::path copy = target;
    copy += ".new";
    base::Status done = WriteCopy(files, platform::ToPath(database), copy, steps);
    if (done.ok()) done = files.Rename(copy, target);
    if (!done.ok()) {
        files.Remove(copy).Ignore();
        return done;
    }
    // The copy is complete and in place. Without this a power cut may bring back the earlier
    // backup, which is a good one, too.
    files.SyncFolder(target.parent_path()).Ignore();
    return {};
}

base::Status MakeBackup(catalogue::Catalogue& catalogue, jet::FileSystem& files,
                        const base::RunSteps& steps) {
    RETURN_IF_ERROR(catalogue.CatalogueConnection->Flush());
    const QString& folder = catalogue.values->ApplicationFolder;
    return CopyDatabase(files, platform::FileIn(folder, catalogue::kCatalogueFile.toString()),
                        platform::FileIn(folder, catalogue::kBackupFile.toString()), steps);
}

base::Status BackupData(CommandContext context, jet::FileSystem& files, const QString& caption) {
    RETURN_IF_ERROR(catalogue::RunLong(
        context.catalogue, {MaintenanceTexts::tr("Backup Data")},
        [&](const base::RunSteps& steps) { return MakeBackup(context.catalogue, files, steps); }));
    platform::Message message;
    message.text = SuccessText(context.catalogue.values->ApplicationFolder);
    message.title = caption;
    message.icon = platform::MessageIcon::kInformation;
    context.prompts.Ask(message);
    return {};
}

base::Status BackupData(CommandContext context, const QString& caption) {
    return BackupData(std::move(context), *platform::MakeFileSystem(), caption);
}

}  // namespace maintenance
