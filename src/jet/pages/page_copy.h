// CopyPages: a copy in memory of a database that another process may be changing at the same time.
// The copy is what the last commit left, all of it: the database file alone would not do, as a
// checkpoint may be halfway through it, but what a checkpoint writes stands in the journal before
// and stays there until it is done. So the journal is read before and after the database file; when
// what was there before is there still, it makes whatever was read from the file whole. When there
// was none before, the file mark tells whether a checkpoint came and went. Takes no lock and writes
// nothing. Changes of the copy stay in the copy.
#pragma once

#include "jet/pages/page_store.h"

#include <filesystem>

namespace jet {

// As much memory as the file has bytes, twice that while it is made. kBusy: the file changed faster
// than it could be read, many times over. Other errors are those of OpenPageStore.
base::Result<std::unique_ptr<PageStore>> CopyPages(FileSystem& files,
                                                   const std::filesystem::path& path);

// The same as the bytes that the database file would have if a checkpoint came now; the same
// errors.
base::Result<std::vector<std::byte>> CopyFileBytes(FileSystem& files,
                                                   const std::filesystem::path& path);

// Calls `read` once with the bytes that the database file would have if a checkpoint came now, page
// by page, of which few are in memory. False: the file was changed meanwhile, so that what was read
// is of no one state, whatever `read` returned. Errors: those of OpenPageStore and of `read`.
base::Result<bool>
ReadSteadyPages(FileSystem& files, const std::filesystem::path& path,
                const std::function<base::Status(const PageSource& pages)>& read);

// Of a whole database file in memory. kCorruption: these are not whole pages of one.
base::Result<std::uint32_t> PageSizeOf(std::span<const std::byte> file);

}  // namespace jet
