// main is given the words in the code page of the user, which has not every letter.
#include "platform/program_arguments.h"

#include "base/file_names.h"
#include "platform/windows/windows_header.h"

#include <shellapi.h>

namespace platform {

std::vector<std::string> ProgramArguments(int, char**) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(base::Utf8Of(words[i]));
    LocalFree(words);
    return arguments;
}

}  // namespace platform
