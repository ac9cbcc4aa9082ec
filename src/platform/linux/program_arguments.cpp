#include "platform/program_arguments.h"

namespace platform {

std::vector<std::string> ProgramArguments(int argc, char** argv) {
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

}  // namespace platform
