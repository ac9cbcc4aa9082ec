// StartSysInfo: starts the desktop's system-information tool.
#pragma once

#include "platform/process_starter.h"
#include "platform/shell.h"
#include "platform/user_prompts.h"

namespace dialogs {

// Tells the user when there is no tool or it cannot be started.
void StartSysInfo(platform::Shell& shell, platform::ProcessStarter& starter,
                  platform::UserPrompts& prompts);

}  // namespace dialogs
