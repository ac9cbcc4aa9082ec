// ConfirmChange: asks before a command changes the whole catalogue.
#pragma once

#include "maintenance/texts.h"
#include "platform/user_prompts.h"

namespace maintenance {

// True: the user said Yes.
inline bool ConfirmChange(platform::UserPrompts& prompts, const QString& text) {
    platform::Message question;
    question.text = text;
    question.title = MaintenanceTexts::tr("Warning");
    question.icon = platform::MessageIcon::kExclamation;
    question.buttons = platform::MessageButtons::kYesNo;
    question.no_is_default = true;
    return prompts.Ask(question) == platform::MessageAnswer::kYes;
}

}  // namespace maintenance
