// What a maintenance command works on and whom it tells.
#pragma once

#include "catalogue/pin_subs.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"

#include <cstdint>
#include <functional>

namespace maintenance {

// Told how far a long run has come, at most once per percent. `done` equals `total` when the run is
// over, whichever way it ended; both are 0 when there was nothing to do.
using Progress = std::function<void(std::int64_t done, std::int64_t total)>;

// Everything is borrowed and outlives the command.
struct CommandContext {
    catalogue::Catalogue& catalogue;
    platform::UserPrompts& prompts;
    // Called again and again during a long run. Must hold back the user's input: the commands have
    // no window of their own that would keep a second command or the closing of the program away
    // from their rows.
    platform::UserEvents& events;
    std::function<void()> refresh_tree;
    Progress progress = {};  // may be empty
};

}  // namespace maintenance
