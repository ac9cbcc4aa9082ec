// The pages of a file that may be damaged anywhere, its first page included.
#pragma once

#include "jet/pages/page_store.h"

#include <vector>

namespace jet {

struct DamagedFile {
    std::unique_ptr<PageStore> pages;   // plain; some cannot be read
    std::vector<std::byte> first_page;  // made sound
    bool first_page_was_damaged = false;
};

// A journal that belongs to the file is taken into account where page 0 is sound. 3343: the file
// does not look like a database.
base::Result<DamagedFile> OpenDamagedFile(FileSystem& files, const std::filesystem::path& path);

}  // namespace jet
