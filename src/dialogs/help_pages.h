// Which page of the help tells about which window.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace dialogs {

// Windows are named by their object names ("frmSettings"). The numbers are those of the context map
// in docs/help/tavolo.hhp. An unknown window has the first page, index.html.
QString HelpPageOf(const QString& window);
bool HasHelpPage(const QString& window);
// Every window that has a page.
QStringList WindowsWithHelp();

}  // namespace dialogs
