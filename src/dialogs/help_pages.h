// Which page of the help tells about which window.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace dialogs {

// The page, a file of docs/help, about the window with the object name `window` ("frmSettings" has
// "settings.html"). An unknown window has the first page, index.html.
QString HelpPageOf(const QString& window);
bool HasHelpPage(const QString& window);
// Every window that has a page.
QStringList WindowsWithHelp();

}  // namespace dialogs
