// The worker is this program again: the first thing that it does for its tests is the work, and
// then it ends.
#include "support/worker_process.h"

#include "base/file_names.h"
#include "support/windows/child_process.h"

#include <gtest/gtest.h>

#include <shellapi.h>

#include <cstdlib>
#include <map>

namespace test_support {
namespace {

constexpr const char* kWorkerWord = "worker";
constexpr UINT kKilled = 0xDEAD;
constexpr UINT kCannotTell = 120;

std::map<std::string, WorkerProcess::Work>& Works() {
    static std::map<std::string, WorkerProcess::Work> works;
    return works;
}

std::vector<std::string> OwnWords() {
    int count = 0;
    wchar_t** const list = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    for (int i = 0; i < count; ++i)
        words.push_back(base::Utf8Of(list[i]));
    LocalFree(list);
    return words;
}

std::string OwnProgram() {
    std::wstring name(32768, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
    return base::Utf8Of(name);
}

// program "worker" NAME PIPE WORDS...
class WorkOfWorker final : public testing::Environment {
public:
    void SetUp() override {
        const std::vector<std::string> words = OwnWords();
        if (words.size() < 4 || words[1] != kWorkerWord) return;
        const auto pipe = reinterpret_cast<HANDLE>(std::stoull(words[3]));
        const int status =
            Works().at(words[2])({words.begin() + 4, words.end()}, [pipe](std::uint32_t number) {
                DWORD count = 0;
                if (!WriteFile(pipe, &number, sizeof number, &count, nullptr))
                    ExitProcess(kCannotTell);
            });
        ExitProcess(static_cast<UINT>(status));
    }
};

}  // namespace

struct WorkerProcess::Process {
    HANDLE handle = nullptr;
    HANDLE told = nullptr;  // the end of the pipe that is read
};

WorkerProcess::WorkerProcess(const std::string& name, const Words& words)
    : process_(std::make_unique<Process>()) {
    const Pipe pipe = MakePipe();
    const auto number = reinterpret_cast<std::uintptr_t>(pipe.write);
    Words command = {OwnProgram(), kWorkerWord, name, std::to_string(number)};
    command.insert(command.end(), words.begin(), words.end());
    process_->handle = StartChild(nullptr, CommandLine(command), nullptr).process;
    CloseHandle(pipe.write);
    process_->told = pipe.read;
    EXPECT_NE(process_->handle, nullptr);
}

WorkerProcess::~WorkerProcess() {
    Kill();
    CloseHandle(process_->told);
}

std::optional<std::uint32_t> WorkerProcess::Next() {
    std::uint32_t number = 0;
    DWORD count = 0;
    const bool is_told =
        ReadFile(process_->told, &number, sizeof number, &count, nullptr) && count == sizeof number;
    return is_told ? std::optional(number) : std::nullopt;
}

std::optional<int> WorkerProcess::Kill() {
    if (process_->handle == nullptr) return std::nullopt;
    TerminateProcess(process_->handle, kKilled);
    WaitForSingleObject(process_->handle, INFINITE);
    DWORD status = kKilled;
    GetExitCodeProcess(process_->handle, &status);
    CloseHandle(process_->handle);
    process_->handle = nullptr;
    return status == kKilled ? std::nullopt : std::optional(static_cast<int>(status));
}

KnownWork::KnownWork(const char* name, WorkerProcess::Work work) {
    if (Works().empty()) testing::AddGlobalTestEnvironment(new WorkOfWorker);
    Works()[name] = work;
}

// To start a program takes a hundred times as long as to fork one.
int WorkersToKill(int many) {
    return many / 10;
}

}  // namespace test_support
