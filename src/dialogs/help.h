// Opens the program's help file in the desktop's viewer.
#pragma once

#include "platform/application_folder.h"
#include "platform/shell.h"

#include <QtCore/QString>

namespace dialogs {

// The path of tavolo.chm: in the application folder, otherwise beside the program, otherwise in the
// installed program's share/tavolo. The first of these when none exists.
QString HelpFile(const QString& application_folder, const QString& program_folder);

// Opens the help file. Does nothing when the file or a viewer is missing.
void OpenHelp(platform::Shell& shell, const QString& application_folder,
              const QString& program_folder = platform::ProgramFolder());
// The same at the page of the window with the object name `window`, if the viewer supports that.
void OpenHelpAtWindow(platform::Shell& shell, const QString& application_folder,
                      const QString& window,
                      const QString& program_folder = platform::ProgramFolder());

}  // namespace dialogs
