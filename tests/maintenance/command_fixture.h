// CommandFixture: a catalogue with the surroundings of a maintenance command.
#pragma once

#include "catalogue/quoting.h"
#include "maintenance/command_context.h"
#include "support/catalogue_fixture.h"
#include "support/told_runner.h"

#include <QtCore/QFile>

#include <utility>
#include <vector>

namespace test_support {

class CommandFixture : public CatalogueFixture {
protected:
    maintenance::CommandContext Context() {
        catalogue.runner = &runner;
        return {
            catalogue, prompts, events, [this] { ++refreshes; },
            [this](std::int64_t done, std::int64_t total) { progress.emplace_back(done, total); }};
    }

    // A file in the application folder; its path.
    QString MakeFile(const QString& name, const QByteArray& content = "x") {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }
    void AddTable(const QString& file_name) {
        Execute(QStringLiteral("insert into Tables (DisplayName, FileName) values ('t', '%1')")
                    .arg(catalogue::QuoteSql(file_name)));
    }
    // From now on FileName may hold a text of any length, which lies in pages of its own.
    void MakeFileNameMemo() {
        Execute(QStringLiteral("drop index FileName on Tables"));
        Execute(QStringLiteral("alter table Tables alter column FileName MEMO"));
    }
    // Makes the page that holds `text` unreadable: its first byte, which says what kind of page it
    // is, is changed while the catalogue is closed.
    void DamagePageWith(const QString& stored) {
        const QByteArray text(reinterpret_cast<const char*>(stored.utf16()), stored.size() * 2);
        constexpr qsizetype kPageBytes = 4096;
        ASSERT_TRUE(connection->Close().ok());
        QFile file(DatabasePath());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const QByteArray content = file.readAll();
        qsizetype at = content.indexOf(text);
        ASSERT_GE(at, 0);
        for (; at >= 0; at = content.indexOf(text, at + kPageBytes)) {
            ASSERT_TRUE(file.seek(at / kPageBytes * kPageBytes));
            ASSERT_EQ(file.write("\xFE", 1), 1);
        }
        file.close();
        ASSERT_TRUE(catalogue::Main(catalogue).ok());
    }
    QString RowCount() { return Scalar(QStringLiteral("select count(*) from Tables")); }

    FakeEvents events;
    ToldRunner runner;
    int refreshes = 0;
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
};

}  // namespace test_support
