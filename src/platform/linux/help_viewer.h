// The desktop's viewer of help files (.chm) and its command line for opening a page.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace platform {

struct ViewerCommand {
    QString program;  // without a folder
    QStringList arguments;
};

// The desktop entry of the user's viewer ("kchmviewer.desktop"); empty when the desktop does not
// name one within a second.
QString DefaultHelpViewer();

// nullopt when this viewer has no option for a page.
std::optional<ViewerCommand> ViewerAtPage(const QString& desktop_entry, const QString& file,
                                          const QString& page);

}  // namespace platform
