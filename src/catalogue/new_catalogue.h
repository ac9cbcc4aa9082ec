// The empty catalogue that the program is delivered with.
#pragma once

#include "base/status.h"
#include "jet/pages/file_system.h"

#include <filesystem>

namespace catalogue {

// Makes a Jet 4 file at `path` with the table Tables and its twelve base columns; ID is an
// AutoNumber primary key, and DisplayName and FileName have indexes. `now`: the creation date (days
// since 1899-12-30); the same date gives the same bytes. kAlreadyExists: there is a file. After
// another failure there is none.
base::Status CreateEmptyCatalogue(jet::FileSystem& files, const std::filesystem::path& path,
                                  double now);

}  // namespace catalogue
