#include "dialogs/help.h"

#include "catalogue/program_files.h"
#include "dialogs/help_pages.h"
#include "platform/application_folder.h"
#include "platform/files.h"

#include <QtCore/QDir>

#include <optional>

namespace dialogs {
namespace {

// nullopt when there is no help file: desktops show a message of their own for a missing file.
std::optional<QString> PresentHelpFile(const QString& application_folder,
                                       const QString& program_folder) {
    const QString file = HelpFile(application_folder, program_folder);
    if (platform::FileExists(file)) return file;
    return std::nullopt;
}

}  // namespace

QString HelpFile(const QString& application_folder, const QString& program_folder) {
    const QString name = catalogue::kHelpFile.toString();
    QString own = platform::FileIn(application_folder, name);
    const QString shared = QDir::cleanPath(program_folder + QStringLiteral("/../share/tavolo"));
    for (const QString& file :
         {own, platform::FileIn(program_folder, name), platform::FileIn(shared, name)})
        if (platform::FileExists(file)) return file;
    return own;
}

void OpenHelp(platform::Shell& shell, const QString& application_folder,
              const QString& program_folder) {
    if (const auto file = PresentHelpFile(application_folder, program_folder))
        shell.Open(*file).Ignore();
}

void OpenHelpAtWindow(platform::Shell& shell, const QString& application_folder,
                      const QString& window, const QString& program_folder) {
    if (const auto file = PresentHelpFile(application_folder, program_folder))
        shell.OpenHelp(*file, HelpPageOf(window)).Ignore();
}

}  // namespace dialogs
