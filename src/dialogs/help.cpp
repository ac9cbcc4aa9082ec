#include "dialogs/help.h"

#include "catalogue/program_files.h"
#include "dialogs/help_pages.h"
#include "platform/application_folder.h"
#include "platform/files.h"

#include <QtCore/QStringList>

namespace dialogs {
namespace {

// Where the help can be, the first that has it counting: names of files and folders in them.
QStringList HelpPlaces(const QString& application_folder, const QString& program_folder) {
    return {application_folder, program_folder,
            platform::AbsolutePath(program_folder + QStringLiteral("/../share/tavolo"))};
}

QString FirstPresent(const QStringList& places, const QString& name) {
    for (const QString& place : places)
        if (QString file = platform::FileIn(place, name); platform::FileExists(file)) return file;
    return {};
}

struct Opening {
    platform::Shell& shell;
    QString help_file;  // empty: there is none; desktops show a message of their own for that
    QString page_file;  // the same
    const ShowHelpPage& own_viewer;
    std::function<base::Status()> open_file;
};

void Open(const Opening& opening) {
    const bool has_own = opening.own_viewer && !opening.page_file.isEmpty();
    if (!opening.help_file.isEmpty() && (!has_own || opening.shell.HasHelpViewer()) &&
        opening.open_file().ok())
        return;
    if (has_own) opening.own_viewer(opening.page_file);
}

}  // namespace

QString HelpFile(const QString& application_folder, const QString& program_folder) {
    const QStringList places = HelpPlaces(application_folder, program_folder);
    const QString name = catalogue::kHelpFile.toString();
    const QString present = FirstPresent(places, name);
    return present.isEmpty() ? platform::FileIn(places.front(), name) : present;
}

QString HelpPageFile(const QString& application_folder, const QString& program_folder,
                     const QString& page) {
    const QString name = QStringLiteral("help") + platform::NativeSeparator() + page;
    return FirstPresent(HelpPlaces(application_folder, program_folder), name);
}

void OpenHelp(platform::Shell& shell, const QString& application_folder,
              const QString& program_folder, const ShowHelpPage& own_viewer) {
    const QString file = FirstPresent(HelpPlaces(application_folder, program_folder),
                                      catalogue::kHelpFile.toString());
    Open({shell, file,
          HelpPageFile(application_folder, program_folder, QStringLiteral("index.html")),
          own_viewer, [&] { return shell.Open(file); }});
}

void OpenHelpAtWindow(platform::Shell& shell, const QString& application_folder,
                      const QString& window, const QString& program_folder,
                      const ShowHelpPage& own_viewer) {
    const QString file = FirstPresent(HelpPlaces(application_folder, program_folder),
                                      catalogue::kHelpFile.toString());
    const QString page = HelpPageOf(window);
    Open({shell, file, HelpPageFile(application_folder, program_folder, page), own_viewer,
          [&] { return shell.OpenHelp(file, page); }});
}

}  // namespace dialogs
