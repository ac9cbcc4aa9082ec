#include "app/first_start.h"

#include "app/texts.h"
#include "catalogue/error_report.h"
#include "example/example_folder.h"
#include "platform/application_folder.h"
#include "platform/files.h"

namespace app {
namespace {

bool MayMake(const QString& folder, platform::UserPrompts& prompts) {
    const auto answer = prompts.Ask(
        {AppTexts::tr("The folder %1 is not there. Make it, with a new catalogue?").arg(folder),
         {},
         platform::MessageIcon::kInformation,
         platform::MessageButtons::kYesNo});
    return answer == platform::MessageAnswer::kYes;
}

// False: something is missing, which is told.
bool IsWhole(const QString& folder, const catalogue::KnownFolders& folders,
             platform::UserPrompts& prompts) {
    const QStringList missing = catalogue::MissingForFirstStart(folder, folders);
    if (missing.isEmpty()) return true;
    prompts.Ask({AppTexts::tr("Tavolo is not completely installed. It lacks:\n%1\n"
                              "Please install it again.")
                     .arg(missing.join(u'\n')),
                 {},
                 platform::MessageIcon::kExclamation});
    return false;
}

}  // namespace

QString FolderOf(const Arguments& arguments, const catalogue::KnownFolders& folders) {
    if (arguments.demo && arguments.folder.isEmpty())
        return platform::FileIn(folders.user_data, example::kUsersFolder.toString());
    return catalogue::ChooseApplicationFolder(arguments.folder, folders);
}

bool PrepareFolder(const QString& folder, const Arguments& arguments,
                   const catalogue::KnownFolders& folders, platform::UserPrompts& prompts) {
    if (arguments.demo) {
        const QString delivered =
            platform::FileIn(folders.delivered, example::kDeliveredFolder.toString());
        const base::Status copied = example::CopyExample(delivered, folder);
        catalogue::ShowError(prompts, copied);
        return copied.ok();
    }
    if (!arguments.folder.isEmpty() && !platform::FolderExists(folder)) {
        // Asked about the installation first: a folder that stays empty is of no use.
        if (!platform::FileExists(
                platform::FileIn(folders.delivered, QStringLiteral("pinball.mdb"))))
            return IsWhole(folders.user_data, folders, prompts);
        if (!MayMake(folder, prompts)) return false;
        const base::Status made = platform::MakeFolder(folder);
        catalogue::ShowError(prompts, made);
        if (!made.ok()) return false;
    }
    if (!IsWhole(folder, folders, prompts)) return false;
    catalogue::PrepareFirstStart(folder, folders);
    return true;
}

}  // namespace app
