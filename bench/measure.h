// What every benchmark needs: a failure ends the program with its text, as a benchmark of something
// that failed says nothing; how long something takes.
#pragma once

#include "base/status.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace bench {

inline void Require(const base::Status& status) {
    if (status.ok()) return;
    std::fprintf(stderr, "%s\n", status.message().c_str());
    std::exit(1);
}

template <typename Work>
double Seconds(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace bench
