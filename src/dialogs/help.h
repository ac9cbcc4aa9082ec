// The help command: the desktop's viewer on the program's help file.
#pragma once

#include "platform/application_folder.h"
#include "platform/shell.h"

#include <QtCore/QString>

namespace dialogs {

// tavolo.chm in the application folder; when there is none (another folder was asked for on the
// command line), the one that came with the program: beside it, or in share/tavolo where it is
// installed.
QString HelpFile(const QString& application_folder, const QString& program_folder);

// Opens the help file. A missing file or viewer shows nothing.
void OpenHelp(platform::Shell& shell, const QString& application_folder,
              const QString& program_folder = platform::ProgramFolder());
// The same at the page of a window, where the viewer can be told a page.
void OpenHelpAtWindow(platform::Shell& shell, const QString& application_folder,
                      const QString& window,
                      const QString& program_folder = platform::ProgramFolder());

}  // namespace dialogs
