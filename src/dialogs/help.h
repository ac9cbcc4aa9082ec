// The help command: the desktop's viewer on the program's help file.
#pragma once

#include "platform/shell.h"

#include <QtCore/QString>

namespace dialogs {

// `folder`/tavolo.chm; when there is none (another application folder was asked for on the command
// line) and the program's own folder has one, that.
QString HelpFile(const QString& application_folder, const QString& program_folder);

// Opens the help file. A missing file or viewer shows nothing.
void OpenHelp(platform::Shell& shell, const QString& application_folder);
// The same at the page of a window, where the viewer can be told a page.
void OpenHelpAtWindow(platform::Shell& shell, const QString& application_folder,
                      const QString& window);

}  // namespace dialogs
