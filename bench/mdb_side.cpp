#include "mdb_side.h"

#include "duel.h"

#include <mdbtools.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace bench {

std::size_t ScanWithLibmdb(const std::filesystem::path& path, int columns) {
    MdbHandle* mdb = mdb_open(path.c_str(), MDB_NOFLAGS);
    mdb_read_catalog(mdb, MDB_TABLE);
    std::string name = "Catalogue";
    MdbTableDef* table = mdb_read_table_by_name(mdb, name.data(), MDB_TABLE);
    mdb_read_columns(table);
    const auto all = static_cast<int>(table->num_cols);
    std::vector<std::vector<char>> buffers(static_cast<std::size_t>(all),
                                           std::vector<char>(MDB_BIND_SIZE));
    std::vector<int> lengths(static_cast<std::size_t>(all));
    for (int i = 0; i < all; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const bool wanted = columns == all || (i > 0 && i <= columns);
        if (wanted) mdb_bind_column(table, i + 1, buffers[at].data(), &lengths[at]);
    }
    mdb_rewind_table(table);
    std::size_t rows = 0;
    while (mdb_fetch_row(table) != 0)
        ++rows;
    mdb_free_tabledef(table);
    mdb_close(mdb);
    return rows;
}

void ReadWithMdbSql(const std::filesystem::path& path, const std::string& select, bool sort) {
    const std::string script = (path.parent_path() / "question.sql").string();
    std::FILE* file = std::fopen(script.c_str(), "w");
    std::fprintf(file, "%s\ngo\n", select.c_str());
    std::fclose(file);
    const std::string command = "mdb-sql -HFP -i '" + script + "' '" + path.string() + "'" +
                                (sort ? " | sort -t '\t' -k3,3 -k2,2" : "") + " > /dev/null";
    if (std::system(command.c_str()) != 0) Require({base::StatusCode::kIoError, "mdb-sql failed"});
}

}  // namespace bench
