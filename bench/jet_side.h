// The engine's side of jet_bench.
#pragma once

#include "catalogue_rows.h"

#include "jet/connection.h"
#include "jet/tables/database.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace bench {

// A connection that is open while it lives.
class JetCatalogue {
public:
    JetCatalogue(jet::FileSystem& files, const std::filesystem::path& path);
    jet::Connection& connection() { return connection_; }
    jet::Database& database() { return *connection_.database(); }
    jet::Table& table();
    jet::Recordset Execute(std::u16string_view sql);
    void Close();

    // Rows `first` to `first + count - 1`, below SQL.
    void Insert(int first, int count, int rows_per_transaction, int rows);
    // Every row in a forward-only or keyset recordset, every cell as text.
    Answer Read(const std::string& select, jet::CursorType cursor);
    // The first `columns` columns after the ID of every row, below SQL.
    Answer Scan(std::size_t columns);
    // A keyset in the order of names; the FileName of its last row.
    std::u16string LastByName();
    Content ContentOf(const std::string& select);

private:
    jet::Connection connection_;
};

// Nineteen columns and three indexes, as the program's catalogue has them.
void MakeJetCatalogue(jet::FileSystem& files, const std::filesystem::path& path, int rows);

}  // namespace bench
