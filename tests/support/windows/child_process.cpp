#include "support/windows/child_process.h"

#include "base/unicode.h"

#include <array>

namespace test_support {
namespace {

HANDLE OpenNothing() {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                       &inherited, OPEN_EXISTING, 0, nullptr);
}

// Backslashes count only before a quote, and are doubled there.
std::wstring Quoted(const std::wstring& word) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        if (c == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

}  // namespace

std::wstring Wide(const std::string& utf8) {
    const std::u16string text = base::ToUtf16(utf8);
    return {text.begin(), text.end()};
}

std::wstring CommandLine(const std::vector<std::string>& words) {
    std::wstring line;
    for (const std::string& word : words)
        line += (line.empty() ? L"" : L" ") + Quoted(Wide(word));
    return line;
}

Pipe MakePipe() {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Pipe pipe;
    CreatePipe(&pipe.read, &pipe.write, &inherited, 0);
    SetHandleInformation(pipe.read, HANDLE_FLAG_INHERIT, 0);
    return pipe;
}

Child StartChild(const wchar_t* program, std::wstring command_line, HANDLE output) {
    const HANDLE nothing = OpenNothing();
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = nothing;
    start.hStdOutput = output != nullptr ? output : nothing;
    start.hStdError = start.hStdOutput;
    PROCESS_INFORMATION made{};
    Child child;
    child.started = CreateProcessW(program, command_line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   nullptr, &start, &made) != 0;
    CloseHandle(nothing);
    if (made.hThread != nullptr) CloseHandle(made.hThread);
    child.process = made.hProcess;
    return child;
}

std::string ReadAll(HANDLE pipe) {
    std::string text;
    std::array<char, 65536> buffer{};
    DWORD count = 0;
    while (ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) != 0)
        text.append(buffer.data(), count);
    return text;
}

}  // namespace test_support
