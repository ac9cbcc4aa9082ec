// How a failure that a command has no words of its own for is told to the user: everywhere in this way.
#pragma once

#include "base/status.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

namespace catalogue {

// A box with the failure's own description, the program's title and the exclamation icon. Does nothing when `status` is ok.
inline void ShowError(platform::UserPrompts& prompts, const base::Status& status) {
    if (status.ok()) return;
    platform::Message message;
    message.text = QString::fromStdString(status.message());
    message.icon = platform::MessageIcon::kExclamation;
    prompts.Ask(message);
}

}  // namespace catalogue
