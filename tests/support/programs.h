// Programs that tests start and wait for: those of this build, and tools of other hands that tell
// what a file holds. One backend for each system, in linux/ and windows/.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace test_support {

struct ProgramRun {
    int status = -1;     // what it ended with; -1: it could not be started or was stopped
    std::string output;  // of both kinds
};

// A program of this build: its path and what it is called with. UTF-8.
ProgramRun RunProgram(const std::vector<std::string>& command);

// The name of a file that must be quoted wherever it is written.
extern const char* const kHardFileName;

// Whether this machine has the tool.
bool HasTool(const std::string& name);
// Standard output of a tool of this machine; nullopt: it failed. Words that name files, or
// files to be made in folders that are there, reach the tool as it knows them.
std::optional<std::string> OutputOf(const std::vector<std::string>& command);

}  // namespace test_support
