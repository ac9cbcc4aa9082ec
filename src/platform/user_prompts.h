// UserPrompts: everything a command asks or tells the user in a modal box, so that a test can
// answer in its place.
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
    bool operator==(const Message&) const = default;
};

struct FileDialog {
    QString title;
    QString filter;     // "Pictures (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif"
    QString file_name;  // preset name or full path
    QString folder;     // where it opens when file_name has no folder
    QString default_extension;
    QString name;  // of the dialog; empty: "FileDialog"
    bool must_exist =
        true;  // to open: false when the caller itself tells of a file that is not there
    bool operator==(const FileDialog&) const = default;
};

class UserPrompts {
public:
    virtual ~UserPrompts() = default;
    // Closing the box counts as Cancel or No.
    virtual MessageAnswer Ask(const Message& message) = 0;
    // The chosen full path; empty: cancelled.
    virtual QString ChooseFileToOpen(const FileDialog& dialog) = 0;
    virtual QString ChooseFileToSave(const FileDialog& dialog) = 0;
    // Title "Select a folder." when the caller gives none. Empty: cancelled.
    virtual QString ChooseFolder(const QString& title = {}) = 0;
};

}  // namespace platform
