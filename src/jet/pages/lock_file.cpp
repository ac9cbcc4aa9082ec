#include "jet/pages/lock_file.h"

#include "base/file_names.h"
#include "jet/errors.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t kNameSize = 32;
// Other engines lock single bytes from 0x10000001 on, far behind the names, which everybody reads.
constexpr std::uint64_t kFirstLockOfOthers = 0x10000000;
using LockSlot = std::array<std::byte, 2 * kNameSize>;

// Cuts at a whole UTF-8 character and leaves room for the final zero.
void StoreName(std::string_view name, std::byte* to) {
    std::size_t size = std::min(name.size(), kNameSize - 1);
    while (size > 0 && size < name.size() && (name[size] & 0xC0) == 0x80)
        --size;
    std::memcpy(to, name.data(), size);
}

std::string LoadName(const std::byte* from) {
    std::string name;
    for (std::size_t i = 0; i < kNameSize && from[i] != std::byte{0}; ++i)
        name += std::to_integer<char>(from[i]);
    return name;
}

LockSlot MakeSlot(const std::string& user_at_computer) {
    LockSlot slot{};
    const std::size_t at = user_at_computer.find('@');
    const std::string_view user = std::string_view(user_at_computer).substr(0, at);
    const std::string_view computer =
        at == std::string::npos ? "" : std::string_view(user_at_computer).substr(at + 1);
    StoreName(computer, slot.data());
    StoreName(user, slot.data() + kNameSize);
    return slot;
}

}  // namespace

std::filesystem::path LockFile::PathFor(const std::filesystem::path& database) {
    std::filesystem::path path = database;
    std::u16string ending = base::TextOf(database.extension());
    std::ranges::transform(ending, ending.begin(), [](char16_t c) {
        return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
    });
    if (ending == u".mdb") return path.replace_extension(".ldb");
    return path += ".ldb";
}

LockFile::LockFile(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file)
    : files_(files), path_(std::move(path)), file_(std::move(file)) {}

LockFile::~LockFile() {
    // Removed while it is still locked, so that no other process takes it over in between.
    files_.Remove(path_).Ignore();
}

base::Result<std::unique_ptr<LockFile>> LockFile::Take(FileSystem& files,
                                                       const std::filesystem::path& database) {
    std::filesystem::path path = PathFor(database);
    auto opened = files.Open(path, OpenMode::kOpenOrCreate);
    if (opened.status().code() == base::StatusCode::kBusy) return BusyStatus(files, database);
    ASSIGN_OR_RETURN(std::unique_ptr<File> file, std::move(opened));
    const base::Status locked = file->Lock(FileLock::kExclusive, kFirstLockOfOthers);
    if (locked.code() == base::StatusCode::kBusy) return BusyStatus(files, database);
    RETURN_IF_ERROR(locked);
    std::unique_ptr<LockFile> owner(new LockFile(files, std::move(path), std::move(file)));
    const LockSlot slot = MakeSlot(files.OwnerName());
    RETURN_IF_ERROR(owner->file_->WriteAt(0, slot));
    // Cut off behind the slot, never to nothing: some file systems (ext4) write a file that was
    // emptied to the disk when it is closed.
    ASSIGN_OR_RETURN(const std::uint64_t size, owner->file_->Size());
    if (size > slot.size()) RETURN_IF_ERROR(owner->file_->Truncate(slot.size()));
    return owner;
}

base::Status LockFile::CheckFree(FileSystem& files, const std::filesystem::path& database) {
    auto file = files.Open(PathFor(database), OpenMode::kRead);
    if (file.status().code() == base::StatusCode::kBusy) return BusyStatus(files, database);
    if (!file.ok()) return {};  // missing, or not readable
    if (file.value()->Lock(FileLock::kShared, kFirstLockOfOthers).code() == base::StatusCode::kBusy)
        return BusyStatus(files, database);
    return {};
}

base::Status LockFile::BusyStatus(FileSystem& files, const std::filesystem::path& database) {
    LockSlot slot{};
    auto file = files.Open(PathFor(database), OpenMode::kRead);
    const bool is_held =
        file.ok() &&
        file.value()->Lock(FileLock::kShared, kFirstLockOfOthers).code() == base::StatusCode::kBusy;
    if (!is_held || !file.value()->ReadAt(0, slot).ok())
        return JetError(ErrorNumber::kFileInUse, base::Utf8Of(database));
    return JetError(ErrorNumber::kOpenedExclusively, LoadName(slot.data() + kNameSize),
                    LoadName(slot.data()));
}

}  // namespace jet
