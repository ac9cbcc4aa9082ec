// Files and folders of Windows, for platform/files.h; knows no Qt. Paths are as every other program
// of the system understands them; those of any length are (system_path.h). A Status has the
// system's own number (last_error.h).
#pragma once

#include "base/status.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace platform {

struct DiskFacts {
    bool is_folder = false;
    std::uint64_t size = 0;          // in bytes
    std::int64_t last_write_ms = 0;  // since the start of 1970, UTC
};

// Of the file or folder that `path` leads to, links followed. nullopt: it leads to none.
std::optional<DiskFacts> FactsOf(const std::filesystem::path& path);

struct DiskEntry {
    std::u16string name;
    bool is_folder = false;  // also true for a link to a folder
    bool is_link = false;    // to a file, a folder or another disk
};

// Calls `visit` for each entry except "." and "..", in the order of the file system. Broken links
// and devices are left out.
base::Status ListEntries(const std::filesystem::path& folder,
                         const std::function<void(const DiskEntry&)>& visit);

// Absolute, without "." and "..", without a separator at its end. Nothing needs to exist.
base::Result<std::filesystem::path> FullPath(const std::filesystem::path& path);
// The same with all links resolved, spelled as on the disk.
base::Result<std::filesystem::path> FinalPath(const std::filesystem::path& path);
// Equal for all names of one file or folder, links resolved; empty: there is none.
std::u16string IdentityText(const std::filesystem::path& path);

enum class Durability : std::uint8_t { kOnDisk, kSoon };

// Replaces the content of the file, or creates it, at once or not at all. A link stays a link; who
// may use the file and what hides it stay. kOnDisk: returns when the disk has it.
base::Status ReplaceContent(const std::filesystem::path& path, std::span<const std::byte> bytes,
                            Durability durability);
// kAlreadyExists: `to` exists; it is not overwritten. The copy can be written to.
base::Status CopyToNewFile(const std::filesystem::path& from, const std::filesystem::path& to);
base::Status DeleteOneFile(const std::filesystem::path& path);
// With those above it; ok when it is there.
base::Status MakeFolders(const std::filesystem::path& folder);
// Whether this user may add files; false also when there is no such folder.
bool MayAddFiles(const std::filesystem::path& folder);

// The system keeps a current folder for each drive, and a current drive. This sets the folder and
// leaves the drive: a folder of another one becomes that drive's own, and names without a drive go
// on to mean the current one. A folder of a share, which has no drive, becomes the current one.
base::Status EnterFolder(const std::filesystem::path& folder);

}  // namespace platform
