// frmUtility: asks which path column to change, and from which folder to which.
#pragma once

#include "catalogue/catalogue.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

#include <functional>
#include <vector>

class QLineEdit;
class QRadioButton;

namespace maintenance {

class frmUtility : public QDialog {
    Q_OBJECT

public:
    // `catalogue` and `prompts` are borrowed and outlive the window. Shown modally by exec().
    frmUtility(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
               std::function<void()> refresh_tree, QWidget* parent = nullptr);

private:
    QWidget* BuildKinds();
    QWidget* BuildPaths();
    QWidget* BuildButtons();
    void ChangePaths();
    QString SelectedKind() const;
    void WarnOfMissingPath();

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    std::function<void()> refresh_tree_;
    std::vector<QRadioButton*> optType_;  // by index
    QLineEdit* txtExisting_ = nullptr;
    QLineEdit* txtNew_ = nullptr;
};

}  // namespace maintenance
