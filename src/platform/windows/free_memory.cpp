#include "platform/free_memory.h"

#include "platform/windows/windows_header.h"

namespace platform {

void ReleaseFreeMemory() {
    HeapCompact(GetProcessHeap(), 0);
}

}  // namespace platform
