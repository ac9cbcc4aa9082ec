// A command of the shell out of words.
#pragma once

#include <string>
#include <vector>

namespace test_support {

inline std::string ShellQuoted(const std::string& word) {
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

inline std::string ShellCommand(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words)
        line += ShellQuoted(word) + " ";
    return line;
}

}  // namespace test_support
