#include "platform/windows/disk.h"

#include "base/file_names.h"
#include "platform/windows/file_identity.h"
#include "platform/windows/file_replacement.h"
#include "platform/windows/last_error.h"
#include "platform/windows/system_path.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace platform {
namespace {

using base::Result;
using base::Status;

constexpr std::wstring_view kVerbatim = LR"(\\?\)";
constexpr std::wstring_view kVerbatimShare = LR"(\\?\UNC\)";
constexpr std::size_t kMaxWrite = 1U << 30;  // a call's count of bytes has 32 bits

bool HasFlag(DWORD attributes, DWORD flag) {
    return (attributes & flag) != 0;
}

// Times of files count tenths of a microsecond from 1601. Source: "File Times" (Microsoft); the
// difference is that of the calendar, 134,774 days.
std::int64_t UnixMs(const FILETIME& time) {
    constexpr std::int64_t kDays = 134'774;
    constexpr std::int64_t kMsOfDay = 86'400'000;
    const auto ticks =
        static_cast<std::int64_t>((std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime);
    return ticks / 10'000 - kDays * kMsOfDay;
}

DiskFacts FactsFrom(DWORD attributes, DWORD size_high, DWORD size_low, const FILETIME& write) {
    return {HasFlag(attributes, FILE_ATTRIBUTE_DIRECTORY),
            (std::uint64_t{size_high} << 32) | size_low, UnixMs(write)};
}

// What is there, links followed; a folder, too.
OwnedHandle OpenForFacts(const std::wstring& name) {
    return OwnedHandle(CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::optional<DiskFacts> FactsBehindLink(const std::wstring& name) {
    const OwnedHandle target = OpenForFacts(name);
    BY_HANDLE_FILE_INFORMATION facts{};
    if (!target.is_open() || GetFileType(target.get()) != FILE_TYPE_DISK ||
        !GetFileInformationByHandle(target.get(), &facts))
        return std::nullopt;
    return FactsFrom(facts.dwFileAttributes, facts.nFileSizeHigh, facts.nFileSizeLow,
                     facts.ftLastWriteTime);
}

std::optional<DiskFacts> FactsOfName(const std::wstring& name) {
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    if (!GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &facts)) return std::nullopt;
    if (HasFlag(facts.dwFileAttributes, FILE_ATTRIBUTE_DEVICE)) return std::nullopt;
    if (HasFlag(facts.dwFileAttributes, FILE_ATTRIBUTE_REPARSE_POINT)) return FactsBehindLink(name);
    return FactsFrom(facts.dwFileAttributes, facts.nFileSizeHigh, facts.nFileSizeLow,
                     facts.ftLastWriteTime);
}

// Files that a cloud or an archive holds are reparse points as well, and no links.
bool IsLink(const WIN32_FIND_DATAW& entry) {
    return HasFlag(entry.dwFileAttributes, FILE_ATTRIBUTE_REPARSE_POINT) &&
           (entry.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            entry.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

bool IsDotEntry(std::wstring_view name) {
    return name == L"." || name == L"..";
}

std::wstring InFolder(const std::wstring& folder, std::wstring_view name) {
    const bool has_end = folder.ends_with(L'\\');
    return folder + (has_end ? L"" : L"\\") + std::wstring(name);
}

void Visit(const std::wstring& folder, const WIN32_FIND_DATAW& found,
           const std::function<void(const DiskEntry&)>& visit) {
    const std::wstring_view name(found.cFileName);
    if (IsDotEntry(name) || HasFlag(found.dwFileAttributes, FILE_ATTRIBUTE_DEVICE)) return;
    DiskEntry entry{{name.begin(), name.end()},
                    HasFlag(found.dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY),
                    IsLink(found)};
    if (entry.is_link) {
        const auto target = FactsBehindLink(InFolder(folder, name));
        if (!target) return;
        entry.is_folder = target->is_folder;
    }
    visit(entry);
}

struct SearchCloser {
    void operator()(HANDLE search) const { FindClose(search); }
};
using Search = std::unique_ptr<void, SearchCloser>;

std::filesystem::path WithoutVerbatim(std::wstring name) {
    if (name.starts_with(kVerbatimShare)) return L"\\\\" + name.substr(kVerbatimShare.size());
    if (name.starts_with(kVerbatim)) return name.substr(kVerbatim.size());
    return name;
}

// "C:\" keeps its separator, which is its folder.
std::wstring WithoutEnd(std::wstring name) {
    while (name.size() > 1 && name.ends_with(L'\\') && !name.ends_with(L":\\"))
        name.pop_back();
    return name;
}

struct NewFile {
    OwnedHandle handle;
    std::wstring name;
};

// In the folder of `target`.
Result<NewFile> CreateBeside(const std::wstring& target, const std::filesystem::path& path) {
    constexpr int kMaxTries = 100;
    DWORD error = ERROR_FILE_EXISTS;
    for (int i = 0; error == ERROR_FILE_EXISTS && i < kMaxTries; ++i) {
        NewFile made{{}, target + L".new" + std::to_wstring(i)};
        made.handle = OwnedHandle(CreateFileW(made.name.c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                              nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (made.handle.is_open()) return made;
        error = GetLastError();
    }
    return ErrorStatus(error, path);
}

// ERROR_SUCCESS or what has failed.
DWORD WriteAll(const OwnedHandle& file, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMaxWrite));
        DWORD count = 0;
        if (!WriteFile(file.get(), bytes.data(), wanted, &count, nullptr)) return GetLastError();
        if (count == 0) return ERROR_DISK_FULL;
        bytes = bytes.subspan(count);
    }
    return ERROR_SUCCESS;
}

// What hides the file that is replaced hides the new one.
void KeepAttributes(const std::wstring& from, const std::wstring& to) {
    constexpr DWORD kKept =
        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    const DWORD attributes = GetFileAttributesW(from.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && HasFlag(attributes, kKept))
        SetFileAttributesW(to.c_str(), attributes & kKept);
}

bool IsOnDrive(std::wstring_view full) {
    return full.size() > 2 && full[1] == L':';
}

}  // namespace

std::optional<DiskFacts> FactsOf(const std::filesystem::path& path) {
    const auto name = SystemPath(path);
    return name.ok() ? FactsOfName(*name) : std::nullopt;
}

Status ListEntries(const std::filesystem::path& folder,
                   const std::function<void(const DiskEntry&)>& visit) {
    ASSIGN_OR_RETURN(const std::wstring name, SystemPath(folder));
    WIN32_FIND_DATAW entry{};
    const HANDLE found =
        FindFirstFileExW(InFolder(name, L"*").c_str(), FindExInfoBasic, &entry,
                         FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (found == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        const auto facts = FactsOfName(name);
        // The root of an empty disk has not even "." in it.
        if (error == ERROR_FILE_NOT_FOUND && facts && facts->is_folder) return {};
        return ErrorStatus(error, folder);
    }
    const Search search(found);
    do
        Visit(name, entry, visit);
    while (FindNextFileW(search.get(), &entry) != 0);
    const DWORD error = GetLastError();
    return error == ERROR_NO_MORE_FILES ? Status() : ErrorStatus(error, folder);
}

Result<std::filesystem::path> FullPath(const std::filesystem::path& path) {
    ASSIGN_OR_RETURN(const std::wstring name, SystemPath(path));
    return WithoutVerbatim(WithoutEnd(name));
}

Result<std::filesystem::path> FinalPath(const std::filesystem::path& path) {
    ASSIGN_OR_RETURN(const std::wstring name, SystemPath(path));
    const OwnedHandle target = OpenForFacts(name);
    if (!target.is_open()) return ErrorStatus(GetLastError(), path);
    constexpr DWORD kForm = FILE_NAME_NORMALIZED | VOLUME_NAME_DOS;
    std::wstring final_name(GetFinalPathNameByHandleW(target.get(), nullptr, 0, kForm), L'\0');
    const DWORD size = GetFinalPathNameByHandleW(target.get(), final_name.data(),
                                                 static_cast<DWORD>(final_name.size()), kForm);
    if (size == 0) return ErrorStatus(GetLastError(), path);
    if (size >= final_name.size())
        return ErrorStatus(ERROR_FILE_NOT_FOUND, path);  // moved meanwhile
    final_name.resize(size);
    return WithoutVerbatim(WithoutEnd(std::move(final_name)));
}

std::u16string IdentityText(const std::filesystem::path& path) {
    const auto name = SystemPath(path);
    if (!name.ok()) return {};
    const auto identity = IdentityOf(OpenForFacts(*name));
    if (!identity) return {};
    constexpr std::u16string_view kDigits = u"0123456789abcdef";
    std::u16string text;
    for (int shift = 60; shift >= 0; shift -= 4)
        text += kDigits[(identity->volume >> shift) & 0xF];
    text += u':';
    for (const std::byte byte : identity->number) {
        text += kDigits[std::to_integer<std::size_t>(byte >> 4)];
        text += kDigits[std::to_integer<std::size_t>(byte & std::byte{0xF})];
    }
    return text;
}

Status ReplaceContent(const std::filesystem::path& path, std::span<const std::byte> bytes,
                      Durability durability) {
    ASSIGN_OR_RETURN(const std::wstring target, SystemPath(path));
    const DWORD before = GetFileAttributesW(target.c_str());
    if (before != INVALID_FILE_ATTRIBUTES && HasFlag(before, FILE_ATTRIBUTE_READONLY))
        return ErrorStatus(ERROR_ACCESS_DENIED, path);
    ASSIGN_OR_RETURN(NewFile made, CreateBeside(target, path));
    DWORD error = WriteAll(made.handle, bytes);
    if (error == ERROR_SUCCESS && durability == Durability::kOnDisk &&
        !FlushFileBuffers(made.handle.get()))
        error = GetLastError();
    made.handle = OwnedHandle();
    Status done = error == ERROR_SUCCESS ? Status() : ErrorStatus(error, path);
    if (done.ok()) {
        KeepAttributes(target, made.name);
        done = PutInPlace(made.name, target, path);
    }
    if (!done.ok()) DeleteFileW(made.name.c_str());
    return done;
}

Status CopyToNewFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    ASSIGN_OR_RETURN(const std::wstring source, SystemPath(from));
    ASSIGN_OR_RETURN(const std::wstring target, SystemPath(to));
    if (GetFileAttributesW(target.c_str()) != INVALID_FILE_ATTRIBUTES)
        return ErrorStatus(ERROR_FILE_EXISTS, to);
    // Through a second name: whoever looks meanwhile sees no part of a file.
    const std::wstring copy = target + L".new";
    if (!CopyFileW(source.c_str(), copy.c_str(), FALSE)) return ErrorStatus(GetLastError(), to);
    const DWORD attributes = GetFileAttributesW(copy.c_str());
    if (HasFlag(attributes, FILE_ATTRIBUTE_READONLY))
        SetFileAttributesW(copy.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    if (MoveFileExW(copy.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH)) return {};
    const DWORD error = GetLastError();
    DeleteFileW(copy.c_str());
    return ErrorStatus(error, to);
}

Status DeleteOneFile(const std::filesystem::path& path) {
    ASSIGN_OR_RETURN(const std::wstring name, SystemPath(path));
    return DeleteFileW(name.c_str()) ? Status() : ErrorStatus(GetLastError(), path);
}

Status MakeFolders(const std::filesystem::path& folder) {
    ASSIGN_OR_RETURN(const std::wstring full, SystemPath(folder));
    const std::wstring name = WithoutEnd(full);
    const auto there = FactsOfName(name);
    if (there && there->is_folder) return {};
    const std::filesystem::path above = WithoutVerbatim(name).parent_path();
    if (!there && above != WithoutVerbatim(name)) RETURN_IF_ERROR(MakeFolders(above));
    if (CreateDirectoryW(name.c_str(), nullptr)) return {};
    const DWORD error = GetLastError();
    const auto now = FactsOfName(name);  // another program may have been faster
    return now && now->is_folder ? Status() : ErrorStatus(error, folder);
}

bool MayAddFiles(const std::filesystem::path& folder) {
    const auto name = SystemPath(folder);
    if (!name.ok()) return false;
    const auto facts = FactsOfName(*name);
    if (!facts || !facts->is_folder) return false;
    const OwnedHandle as_writer(CreateFileW(name->c_str(), FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY,
                                            kShareAll, nullptr, OPEN_EXISTING,
                                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return as_writer.is_open();
}

Status EnterFolder(const std::filesystem::path& folder) {
    const auto facts = FactsOf(folder);
    if (!facts || !facts->is_folder) return ErrorStatus(ERROR_PATH_NOT_FOUND, folder);
    ASSIGN_OR_RETURN(const std::filesystem::path full, FullPath(folder));
    ASSIGN_OR_RETURN(const std::filesystem::path current, FullPath(L"."));
    const std::wstring& name = full.native();
    const bool is_elsewhere =
        IsOnDrive(name) && IsOnDrive(current.native()) &&
        CompareStringOrdinal(name.c_str(), 1, current.c_str(), 1, TRUE) != CSTR_EQUAL;
    // Where the system keeps the folders of the drives.
    const std::wstring variable = {L'=', name[0], L':'};
    const bool done = is_elsewhere ? SetEnvironmentVariableW(variable.c_str(), name.c_str()) != 0
                                   : SetCurrentDirectoryW(name.c_str()) != 0;
    return done ? Status() : ErrorStatus(GetLastError(), folder);
}

}  // namespace platform
