// Program: what a command works with.
#pragma once

#include "catalogue/application_folder_choice.h"
#include "cli/arguments.h"
#include "cli/console.h"
#include "cli/exit_status.h"
#include "jet/pages/file_system.h"
#include "platform/clock.h"
#include "platform/process_starter.h"
#include "platform/settings_store.h"
#include "platform/window_control.h"

#include <initializer_list>

namespace cli {

// Interfaces to the world outside. Borrowed.
struct Outside {
    jet::FileSystem& files;
    platform::SettingsStore& settings;
    platform::Clock& clock;
    platform::ProcessStarter& programs;
    platform::WindowControl& windows;
    catalogue::KnownFolders folders;
};

struct Program {
    Outside& outside;
    Console& console;
    const Arguments& arguments;

    bool is_dry_run() const { return arguments.Has("dry-run"); }
};

// Runs the command that the words name. The answer is the exit status.
int Run(const QStringList& words, Outside& outside, Console& console);

// Tells a failure and answers the exit status that stands for it.
int Fail(Program& program, const base::Status& failure);
// Tells each of several outcomes that is a failure, the same text once. The answer is the exit
// status of the first; kDone: all are well.
int Finish(Program& program, std::initializer_list<base::Status> outcomes);
// "option '--x' ..." or the like, and how to get help.
int FailUsage(Console& console, const QString& text);
int FailUsage(Console& console, const base::Status& wrong);

}  // namespace cli
