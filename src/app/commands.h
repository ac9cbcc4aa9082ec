// Commands: attaches the program's commands to the main window's menus, and owns what they need.
#pragma once

#include "browser/frmPinball.h"
#include "browser/frmSplash.h"
#include "dialogs/help_key.h"
#include "dialogs/qt_user_events.h"
#include "launcher/play_table.h"
#include "maintenance/command_context.h"
#include "platform/process_starter.h"
#include "platform/shell.h"
#include "platform/sound_player.h"
#include "platform/window_control.h"

#include <functional>
#include <memory>

namespace app {

class Commands {
public:
    // Everything is borrowed. `catalogue` and `prompts` outlive the commands; the commands live as
    // long as `window` is used.
    Commands(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
             browser::frmPinball& window);

private:
    void AttachScan();
    void AttachUtilities();
    void AttachCatalogueDialogs();
    void AttachHelp();
    void AttachPictures();
    void AttachPlay();
    launcher::MainWindowActions WindowActions();
    maintenance::CommandContext Context();

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    browser::frmPinball& window_;
    std::function<void()> refresh_tree_;
    browser::SplashDisplay splash_;
    dialogs::QtUserEvents events_;
    dialogs::QtUserEvents held_back_events_{dialogs::UserInput::kHeldBack};
    std::unique_ptr<platform::Shell> shell_ = platform::MakeShell();
    dialogs::HelpKey help_key_{*shell_, catalogue_.values->ApplicationFolder};
    std::unique_ptr<platform::ProcessStarter> starter_ = platform::MakeProcessStarter();
    std::unique_ptr<platform::SoundPlayer> sounds_ = platform::MakeSoundPlayer();
    std::unique_ptr<platform::WindowControl> windows_ = platform::MakeWindowControl();
    launcher::Launcher launcher_;
};

}  // namespace app
