// Viewers of help files (.chm), and how one is told the page to begin with.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace platform {

struct ViewerCommand {
    QString program;  // without a folder
    QStringList arguments;
};

// The desktop entry ("kchmviewer.desktop") of the viewer that the user has chosen; empty: the
// desktop does not say. Waits for the desktop's answer for a second at most.
QString DefaultHelpViewer();

// nullopt: this viewer cannot be told a page.
std::optional<ViewerCommand> ViewerAtPage(const QString& desktop_entry, const QString& file,
                                          const QString& page);

}  // namespace platform
