// Starts programs that run independently of this one: in a session of their own, without our
// terminal and open files, and leaving no zombie.
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

// Runs the program arguments[0] (a path) in the current directory and in our environment, with
// `variables` (each NAME=value) added or replaced. Requires: `arguments` is not empty.
SpawnResult Spawn(const std::vector<std::string>& arguments,
                  const std::vector<std::string>& variables = {});

struct WatchedProgram {
    int error_number = 0;    // of errno; 0: the program runs
    std::future<int> ended;  // its exit code, as a shell reports it: 128 + n after signal n
};

// The same for a program whose exit code is of interest; its end need not be awaited.
WatchedProgram SpawnWatched(const std::vector<std::string>& arguments);

}  // namespace platform
