// A child of this process that writes into a pipe.
#pragma once

#include "support/windows/system_header.h"

#include <string>
#include <vector>

namespace test_support {

std::wstring Wide(const std::string& utf8);
// As the C runtime of the started program takes it apart again.
std::wstring CommandLine(const std::vector<std::string>& words);

struct Pipe {
    HANDLE read = nullptr;   // this process's only
    HANDLE write = nullptr;  // children get it
};
Pipe MakePipe();

// Null: it could not be started, or is none that can be waited for (`started` tells).
struct Child {
    bool started = false;
    HANDLE process = nullptr;
};
// `output`: what the child has as both of its outputs; null: nothing.
Child StartChild(const wchar_t* program, std::wstring command_line, HANDLE output);

// Reads until nobody can write any more.
std::string ReadAll(HANDLE pipe);

}  // namespace test_support
