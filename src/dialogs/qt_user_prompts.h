// QtUserPrompts: the program's questions as real boxes, the same on every desktop.
// Object names: "MessageBox" with the buttons "cmdOK", "cmdCancel", "cmdYes" and "cmdNo";
// "FileDialog", unless the request gives the dialog a name; "FolderDialog".
#pragma once

#include "platform/user_prompts.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace dialogs {

class QtUserPrompts final : public platform::UserPrompts {
public:
    // The window that the boxes belong to, while no modal dialog is open: that one comes first.
    // Borrowed; may be deleted earlier.
    explicit QtUserPrompts(QWidget* owner = nullptr);
    void SetOwner(QWidget* owner);

    platform::MessageAnswer Ask(const platform::Message& message) override;
    QString ChooseFileToOpen(const platform::FileDialog& dialog) override;
    QString ChooseFileToSave(const platform::FileDialog& dialog) override;
    QString ChooseFolder(const QString& title) override;

private:
    QWidget* Owner() const;

    QPointer<QWidget> owner_;
};

}  // namespace dialogs
