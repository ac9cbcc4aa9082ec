// Commands: the actions of the main window's commands that reach beyond it, and the objects that
// they need.
#pragma once

#include "app/path_hint.h"
#include "browser/frmPinball.h"
#include "browser/frmSplash.h"
#include "catalogue/catalogue.h"
#include "catalogue/passed_over.h"
#include "catalogue/process_values.h"
#include "dialogs/help_key.h"
#include "dialogs/qt_user_events.h"
#include "launcher/play_table.h"
#include "maintenance/command_context.h"
#include "platform/process_starter.h"
#include "platform/shell.h"
#include "platform/sound_player.h"
#include "platform/window_control.h"
#include "snapshots/snapshot_keeper.h"
#include "widgets/enter_key.h"
#include "widgets/focus_return.h"

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
             const OutsideWorld& outside, snapshots::SnapshotKeeper& keeper,
             browser::frmPinball& window);

    // Shows the window to somebody who has handed tables over, or nothing (an empty path); says so
    // if they have to wait.
    void ExpectTables(const QString& path);
    // Adds the table file, or those of the folder, unless the catalogue has them, and selects the
    // first of them in the tree. `path` is absolute. Says what goes wrong.
    void TakeTables(const QString& path);
    // False: a command is at work, a dialog is open, or a record is changed and not yet stored.
    bool MayTakeTables() const;
    // A command is at work; dialogs apart.
    bool is_at_work() const;

    // Says in the status bar when most table files are not found here, and leads to the path map.
    void HintAtPathMap();

    // What is called before and after the commands that replace fields of many tables: scan and
    // imports.
    struct Watch {
        std::function<void()> before;
        std::function<void()> after;
    };
    void SetWatch(Watch watch) { watch_ = std::move(watch); }

private:
    // Lets windows be painted while a command works on the catalogue.
    class PaintEvents final : public platform::UserEvents {
    public:
        void ProcessEvents() override;
        bool is_processing() const { return is_processing_; }

    private:
        dialogs::QtUserEvents events_{dialogs::UserInput::kHeldBack};
        bool is_processing_ = false;
    };

    // `run` between the two calls of the watch.
    void Watched(const std::function<void()>& run);
    browser::CommandActions Actions();
    // Lets the commands that change many rows make a snapshot before they begin.
    void MakeSnapshotsBefore(browser::CommandActions& actions);
    void AttachPlay();

    // What the scan has skipped; ok: nothing.
    base::Status Scan();
    void LookForNewTables();
    void BackUp();
    // Opens the folder of the selected table file.
    void ShowInFolder();
    void Compact();
    // Says it if it was; otherwise all is said.
    void TellIfStopped(const base::Status& done);
    void UpdateCrcs();
    base::Status ImportFromTableFiles();
    void ImportLauncherData();
    void ShowAbout();
    void ViewTableInfo();
    void LoadPicture();
    void ShowPathMap();
    void Restore();
    // Start the program again, for another application folder.
    void OpenExample();
    void OpenFolder();
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
    snapshots::SnapshotKeeper& keeper_;
    browser::frmPinball& window_;
    std::function<void()> refresh_tree_;
    Watch watch_;
    browser::SplashDisplay splash_;
    dialogs::QtUserEvents events_;
    PaintEvents held_back_events_;
    bool is_taking_tables_ = false;
    widgets::EnterKey enter_key_;
    widgets::FocusReturn focus_return_;
    dialogs::HelpKey help_key_{outside_.shell, catalogue_.values->ApplicationFolder};
    QPointer<dialogs::frmSettings> settings_;  // as long as it is open
    launcher::Launcher launcher_;
    PathHint path_hint_;
};

}  // namespace app
