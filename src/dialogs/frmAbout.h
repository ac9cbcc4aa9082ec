// frmAbout: the program's name, version, credits and web site, and the way to the
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
    // Everything is borrowed and outlives the window. Shown modally by exec().
    frmAbout(platform::UserPrompts& prompts, platform::Shell& shell,
             platform::ProcessStarter& starter, QWidget* parent = nullptr);

private:
    QWidget* BuildHeading();
    QWidget* BuildCredits();
    QWidget* BuildButtons();

    platform::UserPrompts& prompts_;
    platform::Shell& shell_;
    platform::ProcessStarter& starter_;
};

}  // namespace dialogs
