#include "platform/free_memory.h"

#include <malloc.h>

namespace platform {

void ReleaseFreeMemory() {
    ::malloc_trim(0);
}

}  // namespace platform
