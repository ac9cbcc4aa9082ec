// SqlFixture: a connection to a database in memory, with results as texts that a test can compare.
#pragma once

#include "base/unicode.h"
#include "jet/connection.h"
#include "jet/values/conversions.h"
#include "support/memory_database.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace test_support {

// The time that Now() answers: November 20, 2026, 15:04:05, a Friday.
inline double TestNow() {
    return jet::DaysFromCivil({2026, 11, 20, 15, 4, 5});
}

// "<null>" for Null, otherwise the value's text.
inline std::string Shown(const jet::Value& value) {
    return value.is_null() ? "<null>" : base::ToUtf8(jet::ToText(value));
}

// All rows: fields with commas between them, rows with bars.
inline std::string ShownRows(jet::Recordset& rows) {
    std::string text;
    for (bool first = true; !rows.Eof(); first = false) {
        if (!first) text += "|";
        for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
            const auto value = rows.Fields(i);
            text += (i > 0 ? "," : "") +
                    (value.ok() ? Shown(*value) : "<error> " + value.status().message());
        }
        const auto moved = rows.MoveNext();
        if (!moved.ok()) return text + "<error> " + moved.message();
    }
    return text;
}

class SqlFixture : public testing::Test {
protected:
    SqlFixture() {
        auto made = std::make_unique<MemoryDatabase>();
        memory = made.get();
        connection = std::make_unique<jet::Connection>(std::move(made), TestNow);
    }

    // The rows of a SELECT, the number of rows that another statement touched, or "#number:
    // message".
    std::string Run(std::u16string_view sql) {
        std::int64_t affected = 0;
        auto rows = connection->Execute(sql, &affected);
        if (!rows.ok())
            return "#" + std::to_string(rows.status().number()) + ": " + rows.status().message();
        return rows->is_open() ? ShownRows(*rows) : std::to_string(affected);
    }
    int ErrorOf(std::u16string_view sql) { return connection->Execute(sql).status().number(); }
    MemoryTable& Table(std::u16string_view name) {
        return static_cast<MemoryTable&>(**memory->FindTable(name));
    }

    MemoryDatabase* memory = nullptr;  // the connection's
    std::unique_ptr<jet::Connection> connection;
};

}  // namespace test_support
