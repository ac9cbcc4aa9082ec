// SQLite's side of jet_bench: the same rows, columns, indexes and questions.
// Texts are compared and sorted by NOCASE, where the engine follows Jet's general collation. Dates
// are numbers, as they are in Jet. The journal is a write-ahead log, synchronous is NORMAL, the
// cache as large as the engine's. Every statement is parsed each time it runs.
#pragma once

#include "catalogue_rows.h"

#include <sqlite3.h>

#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace bench {

// A connection that is open while it lives.
class SqliteCatalogue {
public:
    explicit SqliteCatalogue(const std::filesystem::path& path);
    ~SqliteCatalogue();
    SqliteCatalogue(const SqliteCatalogue&) = delete;
    SqliteCatalogue& operator=(const SqliteCatalogue&) = delete;

    // One or more statements without a result.
    void Execute(const std::string& sql);
    void Close();

    // Rows `first` to `first + count - 1`, their values bound; the statement is prepared for each.
    void Insert(int first, int count, int rows_per_transaction, int rows);
    // Every row, every cell as UTF-16.
    Answer Read(const std::string& select);
    // The IDs in the order of names, as a keyset has them; the FileName of the last.
    std::u16string LastByName();
    Content ContentOf(const std::string& select);

private:
    void InsertRow(std::span<const jet::Value> row);
    void Check(int result);
    // Calls `take` at each row of the result.
    void ForEachRow(const std::string& sql, const std::function<void(sqlite3_stmt*)>& take);

    sqlite3* database_ = nullptr;
};

void MakeSqliteCatalogue(const std::filesystem::path& path, int rows);

}  // namespace bench
