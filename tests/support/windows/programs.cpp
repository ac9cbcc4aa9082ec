// The tools are those of the Debian system around Wine, which starts its programs too. Such a
// program is no process of Windows: it is not given pipes, which are Wine's own, and cannot be
// waited for. So a shell writes into a file, and says behind the output what the tool ended with.
#include "support/programs.h"

#include "support/shell_words.h"
#include "support/temporary_folder.h"
#include "support/wait_for.h"
#include "support/windows/child_process.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace test_support {
namespace {

constexpr std::string_view kStatusMark = "\n<status>";
constexpr std::string_view kEndMark = "<end>";
constexpr std::chrono::seconds kMaxRunLength{60};

bool HasDrive(const std::string& word) {
    return word.size() > 2 && word[1] == ':' && (word[2] == '\\' || word[2] == '/');
}

// How the system around Wine calls a file of this one, or one that is to be made.
std::string NameOutside(const std::string& word) {
    using GetName = char*(CDECL*)(const wchar_t*);
    static const auto get_name = reinterpret_cast<GetName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
    std::error_code failed;
    if (get_name == nullptr || (word.find('\\') == std::string::npos && !HasDrive(word)))
        return word;
    const std::filesystem::path full = std::filesystem::absolute(Wide(word), failed);
    if (failed || !std::filesystem::exists(full.parent_path(), failed)) return word;
    char* const name = get_name(full.c_str());
    if (name == nullptr) return word;
    const std::string copy = name;
    HeapFree(GetProcessHeap(), 0, name);
    return copy;
}

HANDLE OpenForChildren(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                       CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::string TextIn(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

ProgramRun RunOutside(const std::string& line) {
    const TemporaryFolder folder;
    const std::filesystem::path path = folder.path() / "output";
    const std::string script = "{ " + line + "; } 2>/dev/null; printf '\\n<status>%d<end>' $?";
    const HANDLE output = OpenForChildren(path);
    const Child child = StartChild(L"Z:\\bin\\sh", CommandLine({"/bin/sh", "-c", script}), output);
    CloseHandle(output);
    ProgramRun run;
    const auto is_done = [&] {
        run.output = TextIn(path);
        return run.output.ends_with(kEndMark);
    };
    if (!child.started || !WaitFor(is_done, kMaxRunLength)) return run;
    const std::size_t mark = run.output.rfind(kStatusMark);
    if (mark == std::string::npos) return run;
    run.status = std::atoi(run.output.c_str() + mark + kStatusMark.size());
    run.output.resize(mark);
    return run;
}

}  // namespace

const char* const kHardFileName = "name 'quoted' %PATH% & ^.mdb";

ProgramRun RunProgram(const std::vector<std::string>& command) {
    ProgramRun run;
    const Pipe pipe = MakePipe();
    const Child child = StartChild(nullptr, CommandLine(command), pipe.write);
    CloseHandle(pipe.write);
    if (child.process != nullptr) {
        run.output = ReadAll(pipe.read);
        WaitForSingleObject(child.process, INFINITE);
        DWORD status = 0;
        if (GetExitCodeProcess(child.process, &status)) run.status = static_cast<int>(status);
        CloseHandle(child.process);
    }
    CloseHandle(pipe.read);
    std::erase(run.output, '\r');
    return run;
}

bool HasTool(const std::string& name) {
    return RunOutside("command -v " + name).status == 0;
}

std::optional<std::string> OutputOf(const std::vector<std::string>& command) {
    std::vector<std::string> words;
    for (const std::string& word : command)
        words.push_back(NameOutside(word));
    ProgramRun run = RunOutside(ShellCommand(words));
    if (run.status != 0) return std::nullopt;
    return std::move(run.output);
}

}  // namespace test_support
