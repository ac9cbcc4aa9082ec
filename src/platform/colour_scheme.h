// Whether the desktop wants dark windows. Threads: the user-interface thread; one watch in a
// process.
#pragma once

#include <functional>
#include <memory>

namespace platform {

class ColourSchemeWatch {
public:
    virtual ~ColourSchemeWatch() = default;
};

// Calls `changed` with what the desktop wants (true: dark windows) as soon as that is known, which
// may be at once, and each time that it changes, as long as the result lives. nullptr: there is no
// desktop that could tell.
std::unique_ptr<ColourSchemeWatch> WatchColourScheme(std::function<void(bool is_dark)> changed);

}  // namespace platform
