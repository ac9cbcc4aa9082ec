#include "platform/windows/programs.h"

namespace platform {
namespace {

bool HasEnded(const OwnedHandle& process) {
    return WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0;
}

}  // namespace

Programs::Started Programs::Start(const std::wstring& program, std::wstring command_line,
                                  ShownAs shown_as) {
    STARTUPINFOW how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESHOWWINDOW;
    how.wShowWindow = shown_as == ShownAs::kMinimised ? SW_SHOWMINIMIZED : SW_SHOWNORMAL;
    PROCESS_INFORMATION made{};
    // Our own mode, which keeps the system's boxes about missing disks away, is not for others.
    constexpr DWORD kFlags = CREATE_DEFAULT_ERROR_MODE | CREATE_UNICODE_ENVIRONMENT;
    if (!CreateProcessW(program.c_str(), command_line.data(), nullptr, nullptr, FALSE, kFlags,
                        nullptr, nullptr, &how, &made))
        return {GetLastError(), 0};
    const OwnedHandle thread(made.hThread);
    std::erase_if(running_, [](const auto& entry) { return HasEnded(entry.second); });
    running_[made.dwProcessId] = OwnedHandle(made.hProcess);
    return {ERROR_SUCCESS, made.dwProcessId};
}

bool Programs::IsRunning(DWORD process_id) const {
    const auto ours = running_.find(process_id);
    if (ours != running_.end()) return !HasEnded(ours->second);
    const OwnedHandle process(OpenProcess(SYNCHRONIZE, FALSE, process_id));
    // One that may not be asked is there.
    return process.is_open() ? !HasEnded(process) : GetLastError() == ERROR_ACCESS_DENIED;
}

}  // namespace platform
