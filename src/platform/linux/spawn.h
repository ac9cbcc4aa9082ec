// Starts a program that goes on by itself: it is nobody's child, needs no wait and leaves no
// zombie, has no terminal and none of our open files.
#pragma once

#include "base/status.h"

#include <string>
#include <vector>

namespace platform {

struct SpawnResult {
    int error_number = 0;  // of errno; 0: the program runs
    int process_id = 0;
};

// arguments[0] is the path of the program. It runs in the current directory with our environment,
// in which `variables`, each of the form NAME=value, take the place of those of the same name.
// Requires: `arguments` is not empty.
SpawnResult Spawn(const std::vector<std::string>& arguments,
                  const std::vector<std::string>& variables = {});

}  // namespace platform
