// TreeFixture: a catalogue with a few tables, and its rows as the tree's model shows them.
#pragma once

#include "browser/table_snapshot.h"
#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"

#include <QtCore/QStringList>

namespace browser {

class TreeFixture : public test_support::CatalogueFixture {
protected:
    // Columns and values as INSERT wants them: AddRow("DisplayName, Year", "'Taxi', '1988'").
    void AddRow(const QString& columns, const QString& row) {
        Execute(QStringLiteral("INSERT INTO Tables (") + columns + QStringLiteral(") VALUES (") +
                row + QStringLiteral(")"));
    }
    void AddTable(const QString& name, const QString& file_name = {}) {
        AddRow(QStringLiteral("DisplayName, FileName"),
               QStringLiteral("'%1', '%2'")
                   .arg(catalogue::QuoteSql(name), catalogue::QuoteSql(file_name)));
    }
    // An existing file of that name in the test's folder.
    QString MakeFile(const QString& name) {
        QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return path;
    }
    TableSnapshot Snapshot() {
        jet::Recordset rows;
        const auto opened = rows.Open(u"Select * from Tables Order By DisplayName Asc", *connection,
                                      jet::CursorType::kKeyset, jet::LockType::kOptimistic);
        EXPECT_TRUE(opened.ok()) << opened.message();
        auto read = TableSnapshot::Read(rows);
        EXPECT_TRUE(read.ok()) << read.status().message();
        return read.ok() ? std::move(*read) : TableSnapshot();
    }
};

}  // namespace browser
