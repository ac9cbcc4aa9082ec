#include "support/programs.h"

#include "support/shell_words.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include <sys/wait.h>

namespace test_support {
namespace {

ProgramRun RunShell(const std::string& line) {
    ProgramRun run;
    FILE* pipe = ::popen(line.c_str(), "r");
    if (pipe == nullptr) return run;
    std::array<char, 65536> buffer{};
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe))
        run.output.append(buffer.data(), size);
    const int state = ::pclose(pipe);
    run.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    return run;
}

}  // namespace

const char* const kHardFileName = "name \"quoted\", $HOME 'and' \\.mdb";

ProgramRun RunProgram(const std::vector<std::string>& command) {
    return RunShell(ShellCommand(command) + "2>&1");
}

bool HasTool(const std::string& name) {
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::optional<std::string> OutputOf(const std::vector<std::string>& command) {
    ProgramRun run = RunShell(ShellCommand(command) + "2>/dev/null");
    if (run.status != 0) return std::nullopt;
    return std::move(run.output);
}

}  // namespace test_support
