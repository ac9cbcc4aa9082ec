// How a file comes in the place of another one. Where the disk's file system can exchange a name
// in one step even while the old file is open (NTFS of Windows 10 and later), that is done. Others
// (FAT, some shares) can do it for a file that nobody has open. For an open one there the old file
// is first moved aside, to its name + "-replaced": a process that dies just then leaves it there,
// and whoever asks for the file next puts it back. Names are as SystemPath gives them.
#pragma once

#include "base/status.h"

#include <filesystem>
#include <string>

namespace platform {

// `path` is what a message calls the file. `to` keeps its list of who may use it; where it is a
// link, the file that it leads to is replaced. Requires: `from` is not open.
base::Status PutInPlace(const std::wstring& from, const std::wstring& to,
                        const std::filesystem::path& path);

// Puts back what was moved aside. True: `name` is there now and was not before.
bool TakeBackReplaced(const std::wstring& name);

// For a file that is about to go: what was moved aside for it, by a process that came no further
// than to the exchange, goes first. Requires: `name` is there.
void DropReplaced(const std::wstring& name);

}  // namespace platform
