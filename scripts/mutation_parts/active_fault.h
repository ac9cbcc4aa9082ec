// The switch of the planted faults; scripts/mutation writes it into every file that holds one, in
// its copy of the tree only. TAVOLO_FAULT=number chooses the one fault of a process and its
// children. With TAVOLO_FAULTS_REACHED=file the number of every fault whose line is reached is
// appended to that file, once per test and process. Threads: any.
#pragma once
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <unistd.h>

namespace planted_faults {

inline constexpr int kMaxFaults = 4096;
inline std::atomic<bool> g_reached[kMaxFaults];

inline void Report(const std::string& line) {
    static const int file = [] {
        const char* name = std::getenv("TAVOLO_FAULTS_REACHED");
        return name ? ::open(name, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644) : -1;
    }();
    if (file < 0) return;
    // A test that limits the size of files holds the report up until it has ended.
    static std::mutex one_at_a_time;
    static std::string waiting;
    const std::lock_guard lock(one_at_a_time);
    waiting += line;
    if (::write(file, waiting.data(), waiting.size()) >= 0)
        waiting.clear();
    else if (errno != EFBIG)
        std::abort();
}

inline bool IsReporting() {
    static const bool reporting = std::getenv("TAVOLO_FAULTS_REACHED") != nullptr;
    return reporting;
}

inline int Chosen() {
    static const int number = [] {
        const char* text = std::getenv("TAVOLO_FAULT");
        return text ? std::atoi(text) : -1;
    }();
    return number;
}

inline bool IsActive(int number) {
    if (IsReporting() && !g_reached[number].exchange(true)) Report(std::to_string(number) + "\n");
    return number == Chosen();
}

}  // namespace planted_faults

// Both halves of a planted line are there to be compiled, not to be admired.
#pragma GCC diagnostic ignored "-Wunused-variable"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#pragma GCC diagnostic ignored "-Wunused-value"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wparentheses"
#pragma GCC diagnostic ignored "-Wdangling-else"
#pragma GCC diagnostic ignored "-Wduplicated-branches"
#pragma GCC diagnostic ignored "-Wtautological-compare"
