// StartSysInfo: the desktop's own system-information tool.
#pragma once

#include "platform/process_starter.h"
#include "platform/shell.h"
#include "platform/user_prompts.h"

namespace dialogs {

// Starts the tool; tells the user when there is none or it cannot be started.
void StartSysInfo(platform::Shell& shell, platform::ProcessStarter& starter,
                  platform::UserPrompts& prompts);

}  // namespace dialogs
