// CommandContext: what a maintenance command works on, and the interfaces it reports through.
#pragma once

#include "catalogue/catalogue.h"
#include "catalogue/progress_meter.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"

#include <functional>

namespace maintenance {

// Everything is borrowed and outlives the command.
struct CommandContext {
    catalogue::Catalogue& catalogue;
    platform::UserPrompts& prompts;
    // Called repeatedly during a long run. Must hold back the user's input: the commands have no
    // modal window that would prevent a second command, or the closing of the program, while their
    // rows are open.
    platform::UserEvents& events;
    std::function<void()> refresh_tree;
    catalogue::Progress progress = {};  // may be empty
};

}  // namespace maintenance
