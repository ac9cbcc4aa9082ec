#include "platform/linux/spawn.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {
namespace {

// What the middle process tells us: its own child's id, or why there is none. A second report
// follows when that child cannot become the program.
using Report = SpawnResult;

void ResetSignals() {
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    for (int signal_number = 1; signal_number < NSIG; ++signal_number)
        sigaction(signal_number, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void DetachFromFiles() {
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int standard_file = 0; standard_file <= 2; ++standard_file)
        if (nothing >= 0) dup2(nothing, standard_file);
    close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
}

void Tell(int pipe_end, Report report) {
    // Smaller than PIPE_BUF: written whole. A failure shows as a missing report.
    [[maybe_unused]] const auto written = write(pipe_end, &report, sizeof report);
}

// Runs in the grandchild. Only calls that are allowed after fork().
[[noreturn]] void BecomeProgram(char* const* arguments, int pipe_end) {
    ResetSignals();
    DetachFromFiles();
    execv(arguments[0], arguments);
    Tell(pipe_end, {errno, 0});
    _exit(127);
}

[[noreturn]] void RunMiddleProcess(char* const* arguments, int pipe_end) {
    setsid();
    const pid_t program = fork();
    if (program == 0) BecomeProgram(arguments, pipe_end);
    Tell(pipe_end, program < 0 ? Report{errno, 0} : Report{0, program});
    _exit(0);
}

void WaitFor(pid_t child) {
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

// False at the end of the pipe: the program runs, its end was closed by exec.
bool ReadReport(int pipe_end, Report& report) {
    ssize_t count = 0;
    do {
        count = read(pipe_end, &report, sizeof report);
    } while (count < 0 && errno == EINTR);
    return count == ssize_t{sizeof report};
}

// The two reports come in either order; a failure outweighs the process id.
SpawnResult CollectReports(int pipe_end) {
    SpawnResult result{EAGAIN, 0};
    bool failed = false;
    for (Report report; ReadReport(pipe_end, report);) {
        if (!failed) result = report;
        failed = failed || report.error_number != 0;
    }
    return result;
}

}  // namespace

SpawnResult Spawn(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return {errno, 0};
    const pid_t middle = fork();
    if (middle == 0) RunMiddleProcess(pointers.data(), ends[1]);
    const int fork_error = errno;
    close(ends[1]);
    SpawnResult result{fork_error, 0};
    if (middle > 0) {
        result = CollectReports(ends[0]);
        WaitFor(middle);
    }
    close(ends[0]);
    return result;
}

}  // namespace platform
