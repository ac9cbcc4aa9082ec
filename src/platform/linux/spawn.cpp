#include "platform/linux/spawn.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string_view>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace platform {
namespace {

// What the middle process reports through the pipe: the id of its child, or why fork() failed. The
// child itself sends a second report when exec() fails.
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
    // Smaller than PIPE_BUF, so written as a whole. A failure shows as a missing report.
    [[maybe_unused]] const auto written = write(pipe_end, &report, sizeof report);
}

// The arguments of exec(), prepared before fork(): after it, memory must not be allocated. Points
// into the texts that it was made from.
struct ProgramImage {
    std::vector<char*> arguments, environment;
};

char* Pointer(const std::string& text) {
    return const_cast<char*>(text.c_str());
}

bool IsReplaced(std::string_view entry, const std::vector<std::string>& variables) {
    return std::any_of(variables.begin(), variables.end(), [&](const std::string& variable) {
        return entry.starts_with(std::string_view(variable).substr(0, variable.find('=') + 1));
    });
}

ProgramImage MakeImage(const std::vector<std::string>& arguments,
                       const std::vector<std::string>& variables) {
    ProgramImage image;
    for (const std::string& argument : arguments)
        image.arguments.push_back(Pointer(argument));
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (!IsReplaced(*entry, variables)) image.environment.push_back(*entry);
    for (const std::string& variable : variables)
        image.environment.push_back(Pointer(variable));
    image.arguments.push_back(nullptr);
    image.environment.push_back(nullptr);
    return image;
}

// Runs in the new process: only async-signal-safe calls are allowed after fork().
[[noreturn]] void BecomeProgram(const ProgramImage& image, int pipe_end) {
    ResetSignals();
    DetachFromFiles();
    execve(image.arguments[0], image.arguments.data(), image.environment.data());
    Tell(pipe_end, {errno, 0});
    _exit(127);
}

[[noreturn]] void RunMiddleProcess(const ProgramImage& image, int pipe_end) {
    setsid();
    const pid_t program = fork();
    if (program == 0) BecomeProgram(image, pipe_end);
    Tell(pipe_end, program < 0 ? Report{errno, 0} : Report{0, program});
    _exit(0);
}

// The exit code, as a shell reports it.
int WaitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// False at the end of the pipe: exec() has closed the other end, so the program runs.
bool ReadReport(int pipe_end, Report& report) {
    ssize_t count = 0;
    do {
        count = read(pipe_end, &report, sizeof report);
    } while (count < 0 && errno == EINTR);
    return count == ssize_t{sizeof report};
}

// The two reports may come in either order; a failure takes precedence over the process id.
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

SpawnResult Spawn(const std::vector<std::string>& arguments,
                  const std::vector<std::string>& variables) {
    const ProgramImage image = MakeImage(arguments, variables);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return {errno, 0};
    const pid_t middle = fork();
    if (middle == 0) RunMiddleProcess(image, ends[1]);
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

WatchedProgram SpawnWatched(const std::vector<std::string>& arguments) {
    const ProgramImage image = MakeImage(arguments, {});
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return {errno, {}};
    const pid_t program = fork();
    if (program == 0) {
        setsid();
        BecomeProgram(image, ends[1]);
    }
    const int fork_error = errno;
    close(ends[1]);
    Report failure;
    const bool failed = program > 0 && ReadReport(ends[0], failure);
    close(ends[0]);
    if (program < 0) return {fork_error, {}};
    std::promise<int> exit_code;
    WatchedProgram watched{failed ? failure.error_number : 0, exit_code.get_future()};
    // The program may outlive this process; init reaps it then.
    std::thread([program, code = std::move(exit_code)]() mutable {
        code.set_value(WaitFor(program));
    }).detach();
    return watched;
}

}  // namespace platform
