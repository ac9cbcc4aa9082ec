// How the programs of the command line tell a failure.
#pragma once

#include "base/status.h"

#include <cstdio>

namespace app {

// "who: message" and a line end on the error output. `who`: the program, or the file it is about.
inline void PrintFailure(const char* who, const base::Status& failure) {
    std::fprintf(stderr, "%s: %s\n", who, failure.message().c_str());
}

}  // namespace app
