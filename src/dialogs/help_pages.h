// The help pages of the windows.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace dialogs {

// The page (a file in docs/help) of the window with this object name: "settings.html" for
// "frmSettings". "index.html" for any other name.
QString HelpPageOf(const QString& window);
bool HasHelpPage(const QString& window);
// The object names of all windows with a page.
QStringList WindowsWithHelp();

}  // namespace dialogs
