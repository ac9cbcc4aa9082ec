// What a maintenance command works on and whom it tells.
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
    // Called again and again during a long run. Must hold back the user's input: the commands have
    // no window of their own that would keep a second command or the closing of the program away
    // from their rows.
    platform::UserEvents& events;
    std::function<void()> refresh_tree;
    catalogue::Progress progress = {};  // may be empty
};

}  // namespace maintenance
