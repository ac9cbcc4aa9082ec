// Memory that the program no longer needs.
#pragma once

namespace platform {

// Hands back to the system what was freed but is kept by the allocator, between blocks that are in
// use. Takes some milliseconds for a hundred megabytes. Threads: any.
void ReleaseFreeMemory();

}  // namespace platform
