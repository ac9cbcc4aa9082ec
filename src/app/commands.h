// Commands: the actions of the main window's commands that reach beyond it, and the objects that
// they need.
#pragma once

#include "browser/frmPinball.h"
#include "browser/frmSplash.h"
#include "catalogue/catalogue.h"
#include "catalogue/process_values.h"
#include "dialogs/help_key.h"
#include "dialogs/qt_user_events.h"
#include "launcher/play_table.h"
#include "maintenance/command_context.h"
#include "platform/process_starter.h"
#include "platform/shell.h"
#include "platform/sound_player.h"
#include "platform/window_control.h"

#include <QtCore/QPointer>

#include <functional>

namespace dialogs {
class frmSettings;
}

namespace app {

// Interfaces to the world outside the program. Borrowed; they outlive the commands.
struct OutsideWorld {
    platform::Shell& shell;
    platform::ProcessStarter& programs;
    platform::SoundPlayer& sounds;
    platform::WindowControl& windows;
};

class Commands {
public:
    // All arguments are borrowed. `catalogue` and `prompts` outlive the commands, and the commands
    // outlive the use of `window`.
    Commands(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
             const OutsideWorld& outside, browser::frmPinball& window);

private:
    browser::CommandActions Actions();
    void AttachPlay();

    void UpdateCrcs();
    void ImportFromTableFiles();
    void ImportLauncherData();
    void ShowAbout();
    void ViewTableInfo();
    void LoadPicture();
    // Opens the settings and returns when they are closed.
    void AskForExecutable();
    // Opens the settings and returns at once.
    void ShowSettings();
    // False: the settings are not open.
    bool RaiseSettings();
    launcher::MainWindowActions WindowActions();
    maintenance::CommandContext Context();

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    OutsideWorld outside_;
    browser::frmPinball& window_;
    std::function<void()> refresh_tree_;
    browser::SplashDisplay splash_;
    dialogs::QtUserEvents events_;
    dialogs::QtUserEvents held_back_events_{dialogs::UserInput::kHeldBack};
    dialogs::HelpKey help_key_{outside_.shell, catalogue_.values->ApplicationFolder};
    QPointer<dialogs::frmSettings> settings_;  // as long as it is open
    launcher::Launcher launcher_;
};

}  // namespace app
