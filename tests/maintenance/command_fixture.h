// CommandFixture: a catalogue with the surroundings of a maintenance command.
#pragma once

#include "maintenance/command_context.h"
#include "support/catalogue_fixture.h"

#include <QtCore/QFile>

#include <utility>
#include <vector>

namespace test_support {

class CommandFixture : public CatalogueFixture {
protected:
    maintenance::CommandContext Context() {
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
    QString RowCount() { return Scalar(QStringLiteral("select count(*) from Tables")); }

    FakeEvents events;
    int refreshes = 0;
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
};

}  // namespace test_support
