// An open folder of the file system.
#pragma once

#include <dirent.h>
#include <memory>

namespace platform {

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

}  // namespace platform
