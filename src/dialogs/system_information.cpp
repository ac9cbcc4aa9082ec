#include "dialogs/system_information.h"

#include "dialogs/texts.h"

namespace dialogs {

void StartSysInfo(platform::Shell& shell, platform::ProcessStarter& starter,
                  platform::UserPrompts& prompts) {
    const QString tool = shell.SystemInformationTool();
    if (!tool.isEmpty() && starter.StartTool(tool).ok()) return;
    platform::Message message;
    message.text = DialogsTexts::tr("System Information Is Unavailable At This Time");
    prompts.Ask(message);
}

}  // namespace dialogs
