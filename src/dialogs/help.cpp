#include "dialogs/help.h"

#include "dialogs/help_pages.h"
#include "platform/application_folder.h"
#include "platform/files.h"

#include <QtCore/QDir>

namespace dialogs {

QString HelpFile(const QString& application_folder, const QString& program_folder) {
    const QString name = QStringLiteral("tavolo.chm");
    const QString own = platform::FileIn(application_folder, name);
    const QString shared = QDir::cleanPath(program_folder + QStringLiteral("/../share/tavolo"));
    for (const QString& file :
         {own, platform::FileIn(program_folder, name), platform::FileIn(shared, name)})
        if (platform::FileExists(file)) return file;
    return own;
}

void OpenHelp(platform::Shell& shell, const QString& application_folder) {
    shell.Open(HelpFile(application_folder, platform::ProgramFolder())).Ignore();
}

void OpenHelpAtWindow(platform::Shell& shell, const QString& application_folder,
                      const QString& window) {
    shell.OpenHelp(HelpFile(application_folder, platform::ProgramFolder()), HelpPageOf(window))
        .Ignore();
}

}  // namespace dialogs
