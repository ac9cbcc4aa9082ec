// Starts a program that goes on by itself: it leaves no zombie, has no terminal and none of our
// open files.
#pragma once

#include "base/status.h"

#include <future>
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

struct WatchedProgram {
    int error_number = 0;    // of errno; 0: the program runs
    std::future<int> ended;  // its exit code, as a shell has it: 128 + n after signal n
};

// The same for a program whose end tells something. Nobody has to wait for that end.
WatchedProgram SpawnWatched(const std::vector<std::string>& arguments);

}  // namespace platform
