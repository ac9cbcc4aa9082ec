// frmSettings: chooses the simulator's executable.
#pragma once

#include "catalogue/catalogue.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

class QLineEdit;
class QToolButton;

namespace dialogs {

class frmSettings : public QDialog {
    Q_OBJECT

public:
    // `catalogue` and `prompts` are borrowed and outlive the window. Shown modally by exec().
    frmSettings(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                QWidget* parent = nullptr);

private:
    void BuildLayout();
    void ChooseFile();
    void StoreAndClose();

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    QLineEdit* txtDet_ = nullptr;
};

}  // namespace dialogs
