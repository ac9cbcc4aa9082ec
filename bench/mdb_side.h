// What else reads the format: the second peer of some lines of jet_bench.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace bench {

// The rows of the catalogue, of each the first `columns` columns after the ID, or all 19.
std::size_t ScanWithLibmdb(const std::filesystem::path& path, int columns);

// mdb-sql 1.0 knows no ORDER BY: `sort` does it, as a script would.
void ReadWithMdbSql(const std::filesystem::path& path, const std::string& select, bool sort);

}  // namespace bench
