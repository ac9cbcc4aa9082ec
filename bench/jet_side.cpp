#include "jet_side.h"

#include "duel.h"

#include "jet/values/conversions.h"

#include <numeric>
#include <utility>
#include <vector>

namespace bench {

using jet::Value;

JetCatalogue::JetCatalogue(jet::FileSystem& files, const std::filesystem::path& path)
    : connection_(files) {
    Require(connection_.Open(u"Data Source=" + path.u16string()));
}

jet::Table& JetCatalogue::table() {
    return *Required(database().FindTable(u"Catalogue"));
}

jet::Recordset JetCatalogue::Execute(std::u16string_view sql) {
    return Required(connection_.Execute(sql));
}

void JetCatalogue::Close() {
    Require(connection_.Close());
}

void JetCatalogue::Insert(int first, int count, int rows_per_transaction, int rows) {
    jet::Table& into = table();
    for (int i = first; i < first + count;) {
        Require(database().Begin());
        for (int n = 0; n < rows_per_transaction && i < first + count; ++n, ++i) {
            std::vector<Value> row = CatalogueRow(i, rows);
            Require(into.Insert(row).status());
        }
        Require(database().Commit());
    }
}

Answer JetCatalogue::Read(const std::string& select, jet::CursorType cursor) {
    jet::Recordset rows;
    Require(rows.Open(base::ToUtf16(select), connection_, cursor));
    Answer answer;
    for (; !rows.Eof(); Require(rows.MoveNext()), ++answer.rows)
        for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
            const Value value = Required(rows.Fields(i));
            if (value.is_null()) continue;
            ++answer.cells;
            answer.units += jet::ToText(value).size();
        }
    return answer;
}

Answer JetCatalogue::Scan(std::size_t columns) {
    std::vector<std::size_t> wanted(columns);
    std::iota(wanted.begin(), wanted.end(), std::size_t{1});
    std::vector<Value> values(columns);
    const auto cursor = Required(table().Scan());
    Answer answer;
    for (; Required(cursor->Next()); ++answer.rows) {
        Require(cursor->Read(wanted, values));
        for (const Value& value : values)
            answer.cells += value.is_null() ? 0 : 1;
    }
    return answer;
}

std::u16string JetCatalogue::LastByName() {
    jet::Recordset rows;
    Require(rows.Open(u"SELECT * FROM Catalogue ORDER BY DisplayName Asc", connection_,
                      jet::CursorType::kKeyset, jet::LockType::kOptimistic));
    Require(rows.MoveLast());
    return jet::ToText(Required(rows.Fields(u"FileName")));
}

Content JetCatalogue::ContentOf(const std::string& select) {
    jet::Recordset rows = Execute(base::ToUtf16(select));
    Content content;
    for (; !rows.Eof(); Require(rows.MoveNext()), content.EndRow())
        for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
            const Value value = Required(rows.Fields(i));
            if (value.is_null())
                content.AddNull();
            else if (const auto* text = value.get_if<std::u16string>())
                content.AddText(*text);
            else if (const auto* date = value.get_if<jet::Date>())
                content.AddNumber(date->days);
            else
                content.AddNumber(static_cast<double>(jet::ToInteger(value)));
        }
    return content;
}

void MakeJetCatalogue(jet::FileSystem& files, const std::filesystem::path& path, int rows) {
    Require(jet::CreateDatabaseFile(files, path, 46346));
    JetCatalogue catalogue(files, path);
    catalogue.Execute(
        u"CREATE TABLE Catalogue (ID COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, DisplayName "
        u"VARCHAR(255) WITH COMPRESSION, FileName VARCHAR(255) WITH COMPRESSION, Author "
        u"VARCHAR(100) WITH COMPRESSION, Company VARCHAR(100) WITH COMPRESSION, [Year] "
        u"VARCHAR(20) WITH COMPRESSION, Version VARCHAR(50), ImageFile VARCHAR(255), FlyerFile "
        u"VARCHAR(255), Notes MEMO, PinMame BIT, Favorite BIT, RulesFile VARCHAR(255), FileDate "
        u"DATE, RulesText MEMO, TimesPlayed INT DEFAULT 0, LastPlayed DATE, DateAdded DATE, CRC "
        u"VARCHAR(50))");
    catalogue.Execute(u"CREATE INDEX ByName ON Catalogue (DisplayName)");
    catalogue.Execute(u"CREATE INDEX ByAuthor ON Catalogue (Author, [Year])");
    catalogue.Insert(0, rows, 1000, rows);
    catalogue.Close();
}

}  // namespace bench
