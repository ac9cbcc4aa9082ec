#include "sqlite_side.h"

#include "duel.h"

#include <string_view>
#include <vector>

namespace bench {
namespace {

using jet::Value;

std::u16string_view TextOf(sqlite3_stmt* statement, int column) {
    const void* const units = sqlite3_column_text16(statement, column);
    const int bytes = sqlite3_column_bytes16(statement, column);
    return {static_cast<const char16_t*>(units), static_cast<std::size_t>(bytes) / 2};
}

int Bind(sqlite3_stmt* statement, int parameter, const Value& value) {
    if (const auto* text = value.get_if<std::u16string>())
        return sqlite3_bind_text16(statement, parameter, text->data(),
                                   static_cast<int>(text->size() * 2), SQLITE_STATIC);
    if (const auto* date = value.get_if<jet::Date>())
        return sqlite3_bind_double(statement, parameter, date->days);
    if (value.is_null()) return sqlite3_bind_null(statement, parameter);
    return sqlite3_bind_int64(statement, parameter, jet::ToInteger(value));
}

}  // namespace

SqliteCatalogue::SqliteCatalogue(const std::filesystem::path& path) {
    Check(sqlite3_open(path.c_str(), &database_));
    Execute("PRAGMA synchronous = NORMAL; PRAGMA cache_size = -32768");
}

SqliteCatalogue::~SqliteCatalogue() {
    sqlite3_close(database_);
}

void SqliteCatalogue::Check(int result) {
    if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE) return;
    Require({base::StatusCode::kIoError, std::string("SQLite: ") + sqlite3_errmsg(database_)});
}

void SqliteCatalogue::Execute(const std::string& sql) {
    Check(sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr));
}

void SqliteCatalogue::Close() {
    Check(sqlite3_close(database_));
    database_ = nullptr;
}

void SqliteCatalogue::InsertRow(std::span<const Value> row) {
    sqlite3_stmt* statement = nullptr;
    static constexpr std::string_view kSql =
        "INSERT INTO Catalogue VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)";
    Check(sqlite3_prepare_v2(database_, kSql.data(), static_cast<int>(kSql.size()), &statement,
                             nullptr));
    for (std::size_t i = 0; i < row.size(); ++i)
        Check(Bind(statement, static_cast<int>(i) + 1, row[i]));
    Check(sqlite3_step(statement));
    Check(sqlite3_finalize(statement));
}

void SqliteCatalogue::Insert(int first, int count, int rows_per_transaction, int rows) {
    for (int i = first; i < first + count;) {
        Execute("BEGIN");
        for (int n = 0; n < rows_per_transaction && i < first + count; ++n, ++i)
            InsertRow(CatalogueRow(i, rows));
        Execute("COMMIT");
    }
}

void SqliteCatalogue::ForEachRow(const std::string& sql,
                                 const std::function<void(sqlite3_stmt*)>& take) {
    sqlite3_stmt* statement = nullptr;
    Check(sqlite3_prepare_v2(database_, sql.c_str(), static_cast<int>(sql.size()), &statement,
                             nullptr));
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement)) == SQLITE_ROW)
        take(statement);
    Check(result);
    Check(sqlite3_finalize(statement));
}

Answer SqliteCatalogue::Read(const std::string& select) {
    Answer answer;
    ForEachRow(select, [&](sqlite3_stmt* row) {
        const int columns = sqlite3_column_count(row);
        for (int i = 0; i < columns; ++i) {
            if (sqlite3_column_type(row, i) == SQLITE_NULL) continue;
            ++answer.cells;
            answer.units += TextOf(row, i).size();
        }
        ++answer.rows;
    });
    return answer;
}

std::u16string SqliteCatalogue::LastByName() {
    std::vector<sqlite3_int64> ids;
    ForEachRow("SELECT ID FROM Catalogue ORDER BY DisplayName",
               [&](sqlite3_stmt* row) { ids.push_back(sqlite3_column_int64(row, 0)); });
    std::u16string name;
    ForEachRow("SELECT FileName FROM Catalogue WHERE ID = " + std::to_string(ids.back()),
               [&](sqlite3_stmt* row) { name = TextOf(row, 0); });
    return name;
}

Content SqliteCatalogue::ContentOf(const std::string& select) {
    Content content;
    ForEachRow(select, [&](sqlite3_stmt* row) {
        const int columns = sqlite3_column_count(row);
        for (int i = 0; i < columns; ++i) {
            const int type = sqlite3_column_type(row, i);
            if (type == SQLITE_NULL)
                content.AddNull();
            else if (type == SQLITE_TEXT)
                content.AddText(TextOf(row, i));
            else
                content.AddNumber(sqlite3_column_double(row, i));
        }
        content.EndRow();
    });
    return content;
}

void MakeSqliteCatalogue(const std::filesystem::path& path, int rows) {
    SqliteCatalogue catalogue(path);
    catalogue.Execute("PRAGMA journal_mode = WAL");
    catalogue.Execute(
        "CREATE TABLE Catalogue (ID INTEGER PRIMARY KEY, "
        "DisplayName TEXT COLLATE NOCASE, FileName TEXT COLLATE NOCASE, "
        "Author TEXT COLLATE NOCASE, Company TEXT COLLATE NOCASE, [Year] TEXT COLLATE NOCASE, "
        "Version TEXT COLLATE NOCASE, ImageFile TEXT COLLATE NOCASE, "
        "FlyerFile TEXT COLLATE NOCASE, Notes TEXT COLLATE NOCASE, PinMame INTEGER, "
        "Favorite INTEGER, RulesFile TEXT COLLATE NOCASE, FileDate REAL, "
        "RulesText TEXT COLLATE NOCASE, TimesPlayed INTEGER DEFAULT 0, LastPlayed REAL, "
        "DateAdded REAL, CRC TEXT COLLATE NOCASE)");
    catalogue.Execute("CREATE INDEX ByName ON Catalogue (DisplayName)");
    catalogue.Execute("CREATE INDEX ByAuthor ON Catalogue (Author, [Year])");
    catalogue.Insert(0, rows, 1000, rows);
    catalogue.Close();
}

}  // namespace bench
