// Any text as SQL: parsed, bound and executed on a small database in memory; what a
// SELECT gives is read to its end.
#include "base/unicode.h"
#include "jet/connection.h"
#include "support/memory_database.h"

#include <cstdlib>
#include <string_view>

namespace {

double Now() {
    return 46346.5;
}

void Require(bool ok) {
    if (!ok) std::abort();
}

void Fill(jet::Connection& connection) {
    for (const std::u16string_view sql : {
             u"CREATE TABLE T (A COUNTER PRIMARY KEY, B TEXT(20), D DATETIME, M MEMO, Y YESNO, C "
             u"MONEY)",
             u"CREATE TABLE U (A LONG, X DOUBLE, G GUID, B BINARY(4))",
             u"CREATE INDEX ByB ON T (B, D DESC)",
             u"CREATE INDEX ByC ON T (C)",
             u"CREATE INDEX ByD ON T (D)",
             u"CREATE INDEX ByY ON T (Y, A DESC)",
             u"CREATE INDEX ByX ON U (X)",
             u"CREATE INDEX ByG ON U (G DESC)",
             u"INSERT INTO T (B, D, M, Y, C) VALUES ('Taxi', #1/2/1988#, 'memo', True, 1.5)",
             u"INSERT INTO T (B, D, C) VALUES ('O''Brien', NULL, -2)",
             u"INSERT INTO T (B, M) VALUES ('', '')",
             u"INSERT INTO U VALUES (1, 2.5, NULL, 'ab')",
             u"INSERT INTO U VALUES (NULL, NULL, NULL, NULL)",
         })
        Require(connection.Execute(sql).ok());
}

void ReadAll(jet::Recordset& rows) {
    for (int count = 0; !rows.Eof() && count < 200; ++count) {
        for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
            const auto value = rows.Fields(i);
            if (value.ok()) Require(jet::ToText(*value).size() < (64U << 20));
        }
        if (!rows.MoveNext().ok()) return;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;
    // Made anew after each statement that may have changed it.
    static std::unique_ptr<jet::Connection> prepared;
    if (prepared == nullptr) {
        prepared = std::make_unique<jet::Connection>(
            std::make_unique<test_support::MemoryDatabase>(), Now);
        Fill(*prepared);
    }
    jet::Connection& connection = *prepared;
    const std::u16string sql =
        base::ToUtf16(std::string_view(reinterpret_cast<const char*>(data), size));
    jet::Recordset keyset;
    if (keyset.Open(sql, connection, jet::CursorType::kKeyset, jet::LockType::kOptimistic).ok())
        Require(keyset.RecordCount() >= 0);
    auto rows = connection.Execute(sql);
    if (rows.ok() && rows->is_open())
        ReadAll(*rows);
    else if (!rows.ok())
        Require(!rows.status().message().empty());
    if (keyset.is_open()) ReadAll(keyset);
    keyset.Close();
    const bool changed = rows.ok() && !rows->is_open();
    if (rows.ok()) rows->Close();
    if (changed) prepared.reset();
    return 0;
}
