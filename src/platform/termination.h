// The system's request to end: the user logs out, or somebody asks the program to stop. It comes
// from outside of every window and is answered from the event loop. Threads: the user-interface
// thread; one watch in a process.
#pragma once

#include <functional>
#include <memory>

namespace platform {

class TerminationWatch {
public:
    virtual ~TerminationWatch() = default;
};

// Calls `ask` for each request as long as the result lives; without it such a request ends the
// process where it stands. nullptr: the system cannot be asked.
std::unique_ptr<TerminationWatch> WatchTermination(std::function<void()> ask);

}  // namespace platform
