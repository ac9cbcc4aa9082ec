// How a failure that a command has no words of its own for is told to the user: everywhere in this
// way.
#pragma once

#include "base/status.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

namespace catalogue {

// True when a value is the trouble and not the database: too long for its column, or refused by an
// index. Other rows can be stored all the same.
inline bool IsValueTrouble(const base::Status& status) {
    return status.code() == base::StatusCode::kConstraint ||
           status.code() == base::StatusCode::kInvalidArgument;
}

// A box with the failure's own description, the program's title and the exclamation icon. Does
// nothing when `status` is ok.
inline void ShowError(platform::UserPrompts& prompts, const base::Status& status) {
    if (status.ok()) return;
    platform::Message message;
    message.text = QString::fromStdString(status.message());
    message.icon = platform::MessageIcon::kExclamation;
    prompts.Ask(message);
}

}  // namespace catalogue
