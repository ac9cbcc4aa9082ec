// UserPrompts: the modal boxes in which commands ask or tell the user something. Tests answer
// through a fake.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace platform {

enum class MessageIcon { kNone, kInformation, kExclamation, kCritical };
enum class MessageButtons { kOk, kOkCancel, kYesNo };
enum class MessageAnswer { kOk, kCancel, kYes, kNo };

struct Message {
    QString text;
    QString title;  // empty: the program's title
    MessageIcon icon = MessageIcon::kNone;
    MessageButtons buttons = MessageButtons::kOk;
    // Of Yes and No, the one that Enter presses is No: what Yes does destroys something.
    bool no_is_default = false;
    bool operator==(const Message&) const = default;
};

struct FileDialog {
    QString title;
    QString filter;     // "Pictures (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif"
    QString file_name;  // name or full path that the dialog offers
    QString folder;     // where the dialog opens when file_name has no folder
    QString default_extension;
    QString name;            // object name of the dialog; empty: "FileDialog"
    bool must_exist = true;  // for opening; false: the caller checks the file
    bool operator==(const FileDialog&) const = default;
};

class UserPrompts {
public:
    virtual ~UserPrompts() = default;
    // Shows a message and returns the button. Closing the box counts as Cancel or No.
    virtual MessageAnswer Ask(const Message& message) = 0;
    // Return the chosen file's full path; empty when the user cancels.
    virtual QString ChooseFileToOpen(const FileDialog& dialog) = 0;
    virtual QString ChooseFileToSave(const FileDialog& dialog) = 0;
    // Returns the chosen folder's full path; empty when the user cancels. An empty title stands for
    // "Select a folder.". `start`: where the dialog opens; empty: where it likes.
    virtual QString ChooseFolder(const QString& title = {}, const QString& start = {}) = 0;
};

}  // namespace platform
