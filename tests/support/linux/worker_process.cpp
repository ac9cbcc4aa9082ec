#include "support/worker_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>

#include <sys/wait.h>
#include <unistd.h>

namespace test_support {
namespace {

std::map<std::string, WorkerProcess::Work>& Works() {
    static std::map<std::string, WorkerProcess::Work> works;
    return works;
}

constexpr int kCannotTell = 120;

[[noreturn]] void RunWork(WorkerProcess::Work work, const WorkerProcess::Words& words, int pipe) {
    ::_exit(work(words, [pipe](std::uint32_t number) {
        if (::write(pipe, &number, sizeof number) != sizeof number) ::_exit(kCannotTell);
    }));
}

}  // namespace

struct WorkerProcess::Process {
    pid_t id = -1;
    int told = -1;  // the end of the pipe that is read
};

WorkerProcess::WorkerProcess(const std::string& name, const Words& words)
    : process_(std::make_unique<Process>()) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const Work work = Works().at(name);
    process_->id = ::fork();
    if (process_->id == 0) RunWork(work, words, ends[1]);
    ::close(ends[1]);
    process_->told = ends[0];
    EXPECT_GT(process_->id, 0);
}

WorkerProcess::~WorkerProcess() {
    Kill();
    ::close(process_->told);
}

std::optional<std::uint32_t> WorkerProcess::Next() {
    std::uint32_t number = 0;
    if (::read(process_->told, &number, sizeof number) != sizeof number) return std::nullopt;
    return number;
}

std::optional<int> WorkerProcess::Kill() {
    if (process_->id <= 0) return std::nullopt;
    ::kill(process_->id, SIGKILL);
    int state = 0;
    ::waitpid(process_->id, &state, 0);
    process_->id = -1;
    if (WIFSIGNALED(state)) return std::nullopt;
    return WEXITSTATUS(state);
}

KnownWork::KnownWork(const char* name, WorkerProcess::Work work) {
    Works()[name] = work;
}

int WorkersToKill(int many) {
    return many;
}

}  // namespace test_support
