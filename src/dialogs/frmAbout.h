// frmAbout: the program's name, version, credits and web site; a button starts the desktop's
// system-information tool.
#pragma once

#include "platform/process_starter.h"
#include "platform/shell.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

namespace dialogs {

class frmAbout : public QDialog {
    Q_OBJECT

public:
    // The interfaces are borrowed and outlive the window. `web_site`: the address that the link
    // opens; no link is shown when it is empty. Shown modally by exec().
    frmAbout(platform::UserPrompts& prompts, platform::Shell& shell,
             platform::ProcessStarter& starter, QString web_site, QWidget* parent = nullptr);

private:
    QWidget* BuildHeading();
    QWidget* BuildCredits();
    QWidget* BuildLink();
    QWidget* BuildButtons();
    void OpenWebSite();

    platform::UserPrompts& prompts_;
    platform::Shell& shell_;
    platform::ProcessStarter& starter_;
    QString web_site_;
};

}  // namespace dialogs
