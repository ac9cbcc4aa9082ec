// HelpKey: F1 opens the help at the page of the active window.
#pragma once

#include "platform/shell.h"

#include <QtCore/QObject>
#include <QtCore/QString>

namespace dialogs {

class HelpKey : public QObject {
    Q_OBJECT

public:
    // Filters the application's key events as long as the object exists. `shell` is borrowed and
    // outlives it.
    HelpKey(platform::Shell& shell, QString application_folder, QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    platform::Shell& shell_;
    QString application_folder_;
};

}  // namespace dialogs
