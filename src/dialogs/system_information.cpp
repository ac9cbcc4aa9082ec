#include "dialogs/system_information.h"

namespace dialogs {

void StartSysInfo(platform::Shell& shell, platform::ProcessStarter& starter,
                  platform::UserPrompts& prompts) {
    const QString tool = shell.SystemInformationTool();
    if (!tool.isEmpty() && starter.StartTool(tool).ok()) return;
    platform::Message message;
    message.text = QStringLiteral("System Information Is Unavailable At This Time");
    prompts.Ask(message);
}

}  // namespace dialogs
