// What a program was called with. Needs no Qt (target `platform_files`).
#pragma once

#include <string>
#include <vector>

namespace platform {

// Without the program's own name; each as base::DecodeFileName reads it. What main was given is
// looked at where that has everything.
std::vector<std::string> ProgramArguments(int argc, char** argv);

}  // namespace platform
