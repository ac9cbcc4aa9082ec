// QtUserPrompts: UserPrompts as Qt's message and file boxes, which are alike on all desktops.
// Object names: "MessageBox" with the buttons "cmdOK", "cmdCancel", "cmdYes" and "cmdNo";
// "FileDialog", unless the request gives the dialog a name; "FolderDialog".
#pragma once

#include "platform/user_prompts.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace dialogs {

class QtUserPrompts final : public platform::UserPrompts {
public:
    // `owner`: the parent of the boxes while no modal dialog is open. Borrowed; may be deleted
    // before this object.
    explicit QtUserPrompts(QWidget* owner = nullptr);
    void SetOwner(QWidget* owner);

    platform::MessageAnswer Ask(const platform::Message& message) override;
    QString ChooseFileToOpen(const platform::FileDialog& dialog) override;
    QString ChooseFileToSave(const platform::FileDialog& dialog) override;
    QString ChooseFolder(const QString& title, const QString& start = {}) override;

private:
    QWidget* Owner() const;

    QPointer<QWidget> owner_;
};

}  // namespace dialogs
