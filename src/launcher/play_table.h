// Launcher: starts the simulator on a table, watches its window until the play ends, and closes it.
// The simulator shows the state of a play in the title of its window: "Visual Pinball - [name*]"
// while the table is played, without the asterisk when the play is over. The watch looks for that
// window in a loop and processes the program's pending events in between; a play that is started by
// such an event is watched inside the watch of the first one. The watch does not wait for the
// window to appear: a simulator whose window is not there yet is not watched. That is different
// with ProcessValues::WaitForSimulator: the window is waited for as long as the simulator runs, at
// most kPatienceMs, the system is asked every kAskEveryMs, and it is told when nothing was played.
// Threads: the user-interface thread.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "platform/process_starter.h"
#include "platform/sound_player.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"
#include "platform/window_control.h"

#include <QtCore/QString>

#include <functional>
#include <optional>

namespace launcher {

inline constexpr int kPatienceMs = 30'000;
inline constexpr int kAskEveryMs = 100;

// What a launch does to the main window.
struct MainWindowActions {
    std::function<Qt::WindowStates()> state;
    std::function<void()> minimise;
    std::function<void(Qt::WindowStates)> restore;
    // Shows the dialog in which the simulator's executable is chosen; returns at once.
    std::function<void()> show_settings;
    // Shows in passing how a play went; may be empty.
    std::function<void(const QString& text)> tell = {};
};

// Borrowed; all live longer than the launcher.
struct LauncherParts {
    catalogue::Catalogue& catalogue;
    platform::WindowControl& windows;
    platform::ProcessStarter& programs;
    platform::SoundPlayer& sounds;
    platform::UserEvents& events;
    platform::StatusDisplay& status;
    platform::UserPrompts& prompts;
};

// The command line that plays the table file `table` in the simulator `executable`.
QString SimulatorCommandLine(const QString& executable, const QString& table);

class Launcher {
public:
    Launcher(LauncherParts parts, MainWindowActions main_window);

    // Counts the play of the table `id`, whether or not it can be started, then plays the table
    // file `path`; `display_name` is shown while it is being loaded. Returns when the play has
    // ended. Shows failures to the user.
    void PlayTable(const QString& path, const QString& display_name, qint64 id);

    // Call when the main window is gone for good: ends all watches; the simulators keep running.
    void EndWatches() { watching_ = false; }

    // Process id of the last simulator that was started; 0: none yet.
    std::int64_t last_task_id() const { return last_task_id_; }

private:
    // One play; a second one can start inside the watch of the first.
    struct Play {
        QString path;
        QString display_name;
        std::optional<Qt::WindowStates> state_before;
    };

    void AskForExecutable();
    base::Status Run(Play& play);
    base::Status Start(const Play& play);
    void Watch(const QString& title_key);
    bool IsPlaying(const QString& title_key);
    // Until the table is played. False: it never is; `display_name` is told with the reason.
    bool WaitForPlay(const QString& title_key, const QString& display_name);
    void CloseSimulator(const QString& title_key);
    void ShowFailure(const base::Status& failure);

    LauncherParts parts_;
    MainWindowActions main_window_;
    std::int64_t last_task_id_ = 0;
    bool watching_ = true;
};

}  // namespace launcher
