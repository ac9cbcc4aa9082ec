// Opens the program's help: the help file in the desktop's viewer; where there is none, the pages
// of which it is made in a viewer of the program's own.
#pragma once

#include "platform/application_folder.h"
#include "platform/shell.h"

#include <QtCore/QString>

#include <functional>

namespace dialogs {

// The path of tavolo.chm: in the application folder, otherwise beside the program, otherwise in the
// installed program's share/tavolo. The first of these when none exists.
QString HelpFile(const QString& application_folder, const QString& program_folder);
// The path of a page ("settings.html") in the folder "help" of the same places; empty: none has it.
QString HelpPageFile(const QString& application_folder, const QString& program_folder,
                     const QString& page);

// Shows a page; its argument is the page's path.
using ShowHelpPage = std::function<void(const QString& page_file)>;

// Opens the help file. `own_viewer` (may be empty) shows the first page instead where the desktop
// has no viewer or cannot open the file. Does nothing when file and pages are missing.
void OpenHelp(platform::Shell& shell, const QString& application_folder,
              const QString& program_folder = platform::ProgramFolder(),
              const ShowHelpPage& own_viewer = {});
// The same at the page of the window with the object name `window`, if the viewer supports that.
void OpenHelpAtWindow(platform::Shell& shell, const QString& application_folder,
                      const QString& window,
                      const QString& program_folder = platform::ProgramFolder(),
                      const ShowHelpPage& own_viewer = {});

}  // namespace dialogs
