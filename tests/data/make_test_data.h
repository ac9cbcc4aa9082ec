// Makes the files of tests/data: databases of both versions by this engine, table files by libgsf.
#pragma once

#include "base/status.h"

#include <filesystem>

namespace test_data {

// Files of the same name are replaced. `folder` exists.
base::Status MakeDatabases(const std::filesystem::path& folder);
base::Status MakeTableFiles(const std::filesystem::path& folder);

}  // namespace test_data
