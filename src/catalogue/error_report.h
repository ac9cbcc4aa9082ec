// How a command shows a failure for which it has no text of its own. Other places than a box (the
// status bar) take the text from FailureText, too.
#pragma once

#include "base/status.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

namespace catalogue {

// True when the value was at fault and not the database: too long for its column, or refused by an
// index. Other rows can still be stored.
inline bool IsValueTrouble(const base::Status& status) {
    return status.code() == base::StatusCode::kConstraint ||
           status.code() == base::StatusCode::kInvalidArgument;
}

// The failure's own description.
inline QString FailureText(const base::Status& failure) {
    return QString::fromStdString(failure.message());
}

// The same behind what was not done, and with which file: "The tables cannot be read from
// /a/pinball.mdb: The disk cannot be read."
inline QString FailureText(const QString& what, const QString& file, const base::Status& failure) {
    return what + u' ' + file + QStringLiteral(": ") + FailureText(failure);
}

// A box with FailureText, the program's title and the exclamation icon. Does
// nothing when `status` is ok.
inline void ShowError(platform::UserPrompts& prompts, const base::Status& status) {
    if (status.ok()) return;
    platform::Message message;
    message.text = FailureText(status);
    message.icon = platform::MessageIcon::kExclamation;
    prompts.Ask(message);
}

}  // namespace catalogue
