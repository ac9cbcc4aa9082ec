// WorkerProcess: a piece of work in a process of its own, which a test may kill at any instant.
//
//     int Count(const WorkerProcess::Words& words, const WorkerProcess::Tell& tell) { ... }
//     const test_support::KnownWork kCount("count", Count);
//     ...
//     WorkerProcess worker("count", {"17"});
//     worker.Next();   // the first number it told
//     worker.Kill();
//
// One backend for each system, in linux/ and windows/: the process is forked where that can be
// done, and has all that the test's process had; elsewhere it is the test's program, started again.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

class WorkerProcess {
public:
    using Words = std::vector<std::string>;
    using Tell = std::function<void(std::uint32_t)>;
    // The answer is what the process ends with.
    using Work = int (*)(const Words& words, const Tell& tell);

    // Starts the work that is known as `name`. Fails the test when it cannot be started.
    WorkerProcess(const std::string& name, const Words& words);
    ~WorkerProcess();  // kills
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    // Waits for the next number that the work tells. nullopt: the process is gone, and has told no
    // more.
    std::optional<std::uint32_t> Next();
    // Waits until the process is gone. What it ended with if it came to its end by itself; nullopt:
    // it was killed.
    std::optional<int> Kill();

private:
    struct Process;
    std::unique_ptr<Process> process_;
};

// Makes a work known by its name. At namespace scope only.
class KnownWork {
public:
    KnownWork(const char* name, WorkerProcess::Work work);
};

// Of a test that wants to kill `many` workers: as many as take no more than the test's time.
int WorkersToKill(int many);

}  // namespace test_support
