#include "platform/windows/documents.h"

#include "platform/windows/disk.h"
#include "platform/windows/last_error.h"
#include "platform/windows/registry.h"

#include <objbase.h>
#include <shellapi.h>

namespace platform {
namespace {

// Extensions of the desktop may need COM on this thread. Where it is there already, this counts.
class ComOnThisThread {
public:
    ComOnThisThread()
        : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
    ~ComOnThisThread() {
        if (SUCCEEDED(result_)) CoUninitialize();
    }
    ComOnThisThread(const ComOnThisThread&) = delete;
    ComOnThisThread& operator=(const ComOnThisThread&) = delete;

private:
    HRESULT result_;
};

bool IsFile(const std::filesystem::path& path) {
    const auto facts = FactsOf(path);
    return facts && !facts->is_folder;
}

}  // namespace

base::Status OpenDocument(const std::wstring& target) {
    if (target.empty() || target.find(L'\0') != std::wstring::npos)
        return {base::StatusCode::kInvalidArgument, "There is nothing to open."};
    const ComOnThisThread com;
    SHELLEXECUTEINFOW order{};
    order.cbSize = sizeof order;
    // Its failures are ours to tell.
    order.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
    order.lpVerb = L"open";
    order.lpFile = target.c_str();
    order.nShow = SW_SHOWNORMAL;
    if (ShellExecuteExW(&order)) return {};
    const DWORD error = GetLastError();
    if (error == ERROR_CANCELLED) return {};  // the user has said no to a question of the system
    const auto answer = reinterpret_cast<std::intptr_t>(order.hInstApp);  // the older numbers
    if (error == ERROR_NO_ASSOCIATION || answer == SE_ERR_NOASSOC)
        return {base::StatusCode::kNotFound, "Nothing on this computer opens it.",
                static_cast<std::int32_t>(error)};
    return ErrorStatus(error, target);
}

std::filesystem::path HelpViewer() {
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
    const std::filesystem::path viewer = std::filesystem::path(folder) / L"hh.exe";
    return IsFile(viewer) ? viewer : std::filesystem::path();
}

std::filesystem::path InformationTool() {
    const auto tool =
        RegistryText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", L"PATH");
    if (tool) return *tool;
    const auto folder =
        RegistryText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Shared Tools Location", L"MSINFO");
    if (!folder) return {};
    const std::filesystem::path path = *folder + L"\\MSINFO32.EXE";
    return IsFile(path) ? path : std::filesystem::path();
}

}  // namespace platform
