#include "dialogs/executable_setting.h"

#include "catalogue/error_report.h"
#include "catalogue/process_values.h"
#include "catalogue/program_settings.h"
#include "dialogs/texts.h"
#include "platform/files.h"
#include "platform/settings_store.h"

namespace dialogs {
QString StoredExecutable(const catalogue::Catalogue& catalogue) {
    return catalogue::ReadSetting(*catalogue.settings, catalogue::kExecutableKey);
}

QString ChooseExecutable(platform::UserPrompts& prompts, const QString& current) {
    platform::FileDialog dialog;
    dialog.name = QStringLiteral("ComDialog");
    dialog.title = DialogsTexts::tr("Select Visual Pinball Executable");
    dialog.filter = DialogsTexts::tr("Executables") + QStringLiteral(" (*.Exe)|*.Exe");
    dialog.file_name = current;
    const QString chosen = prompts.ChooseFileToOpen(dialog);
    return chosen.isEmpty() ? current : chosen;
}

bool StoreExecutable(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                     const QString& path) {
    if (!platform::FileExists(path)) {
        platform::Message message;
        message.text = DialogsTexts::tr("Please select a valid Executable");
        message.icon = platform::MessageIcon::kInformation;
        prompts.Ask(message);
        return false;
    }
    const base::Status stored =
        catalogue::WriteSetting(*catalogue.settings, catalogue::kExecutableKey, path);
    catalogue.values->VisualPinballExe = path;
    catalogue::ShowError(prompts, stored);
    return true;
}

}  // namespace dialogs
