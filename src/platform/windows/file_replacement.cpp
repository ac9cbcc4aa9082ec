#include "platform/windows/file_replacement.h"

#include "platform/windows/last_error.h"
#include "platform/windows/owned_handle.h"

#include <cstddef>
#include <cstring>
#include <vector>

namespace platform {
namespace {

using base::Status;

// FileRenameInfoEx and its flags (Windows 10, version 1709), which older headers do not have.
constexpr auto kRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
constexpr DWORD kReplaceIfExists = 0x1;
constexpr DWORD kPosixSemantics = 0x2;  // an open file gives its name away

bool IsThere(const std::wstring& name) {
    return GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool IsFolder(const std::wstring& name) {
    const DWORD attributes = GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::wstring ReplacedName(const std::wstring& name) {
    return name + L"-replaced";
}

// The file that a link leads to; the name itself where it is none.
std::wstring TargetOf(const std::wstring& name) {
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return name;
    const OwnedHandle file(CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                       OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file.is_open()) return name;
    constexpr DWORD kForm = FILE_NAME_NORMALIZED | VOLUME_NAME_DOS;
    std::wstring target(GetFinalPathNameByHandleW(file.get(), nullptr, 0, kForm), L'\0');
    const DWORD size = GetFinalPathNameByHandleW(file.get(), target.data(),
                                                 static_cast<DWORD>(target.size()), kForm);
    if (size == 0 || size >= target.size()) return name;
    target.resize(size);
    return target;
}

// Gives `to` the list of who may use `from`. File systems without such lists are content.
DWORD CopyAccess(const std::wstring& from, const std::wstring& to) {
    constexpr SECURITY_INFORMATION kWho = DACL_SECURITY_INFORMATION;
    DWORD size = 0;
    GetFileSecurityW(from.c_str(), kWho, nullptr, 0, &size);
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return ERROR_SUCCESS;
    std::vector<std::byte> list(size);
    if (!GetFileSecurityW(from.c_str(), kWho, list.data(), size, &size)) return GetLastError();
    return SetFileSecurityW(to.c_str(), kWho, list.data()) ? ERROR_SUCCESS : GetLastError();
}

// Whether a call has failed because the system or the file system does not know it.
bool IsUnknownCall(DWORD error) {
    return error == ERROR_INVALID_PARAMETER || error == ERROR_NOT_SUPPORTED ||
           error == ERROR_INVALID_FUNCTION || error == ERROR_INVALID_LEVEL ||
           error == ERROR_CALL_NOT_IMPLEMENTED;
}

// FILE_RENAME_INFO with the flags of FileRenameInfoEx in front.
std::vector<std::byte> RenameOrder(const std::wstring& to) {
    const std::size_t name_bytes = to.size() * sizeof(wchar_t);
    // The system wants room for a zero character that the name's size does not count.
    std::vector<std::byte> order(sizeof(FILE_RENAME_INFO) + name_bytes);
    constexpr DWORD kFlags = kReplaceIfExists | kPosixSemantics;
    const auto size = static_cast<DWORD>(name_bytes);
    std::memcpy(order.data(), &kFlags, sizeof kFlags);
    std::memcpy(order.data() + offsetof(FILE_RENAME_INFO, FileNameLength), &size, sizeof size);
    std::memcpy(order.data() + offsetof(FILE_RENAME_INFO, FileName), to.data(), name_bytes);
    return order;
}

// In one step, even over a file that is open.
DWORD RenameOverOpenFile(const std::wstring& from, const std::wstring& to) {
    const OwnedHandle file(CreateFileW(from.c_str(), DELETE | GENERIC_WRITE, kShareAll, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.is_open()) return GetLastError();
    std::vector<std::byte> order = RenameOrder(to);
    if (!SetFileInformationByHandle(file.get(), kRenameInfoEx, order.data(),
                                    static_cast<DWORD>(order.size())))
        return GetLastError();
    return FlushFileBuffers(file.get()) ? ERROR_SUCCESS : GetLastError();
}

DWORD RenameInTwoSteps(const std::wstring& from, const std::wstring& to) {
    const std::wstring aside = ReplacedName(to);
    DropReplaced(to);
    if (ReplaceFileW(to.c_str(), from.c_str(), aside.c_str(), 0, nullptr, nullptr)) {
        DeleteFileW(aside.c_str());
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    TakeBackReplaced(to);
    return error;
}

DWORD Rename(const std::wstring& from, const std::wstring& to) {
    DWORD error = RenameOverOpenFile(from, to);
    if (!IsUnknownCall(error)) return error;
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return ERROR_SUCCESS;
    error = GetLastError();
    const bool is_open = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    return is_open && IsThere(to) ? RenameInTwoSteps(from, to) : error;
}

}  // namespace

Status PutInPlace(const std::wstring& from, const std::wstring& to,
                  const std::filesystem::path& path) {
    TakeBackReplaced(from);
    if (!IsThere(from)) return ErrorStatus(GetLastError(), path);
    DropReplaced(from);
    const std::wstring place = TargetOf(to);
    if (IsFolder(place)) return ErrorStatus(ERROR_ACCESS_DENIED, path);
    DWORD error = IsThere(place) ? CopyAccess(place, from) : ERROR_SUCCESS;
    if (error == ERROR_SUCCESS) error = Rename(from, place);
    return error == ERROR_SUCCESS ? Status() : ErrorStatus(error, path);
}

bool TakeBackReplaced(const std::wstring& name) {
    const std::wstring aside = ReplacedName(name);
    return !IsThere(name) && IsThere(aside) &&
           MoveFileExW(aside.c_str(), name.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
}

void DropReplaced(const std::wstring& name) {
    DeleteFileW(ReplacedName(name).c_str());  // mostly there is none
}

}  // namespace platform
