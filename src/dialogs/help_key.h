// HelpKey: F1 anywhere in the program opens the help at the page of the window in front.
#pragma once

#include "platform/shell.h"

#include <QtCore/QObject>
#include <QtCore/QString>

namespace dialogs {

class HelpKey : public QObject {
    Q_OBJECT

public:
    // Watches the keys of the whole application while it lives. `shell` is borrowed and outlives
    // it.
    HelpKey(platform::Shell& shell, QString application_folder, QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    platform::Shell& shell_;
    QString application_folder_;
};

}  // namespace dialogs
