#include "catalogue/new_catalogue.h"

#include "jet/connection.h"
#include "jet/tables/database.h"
#include "platform/file_system.h"
#include "support/full_disk.h"
#include "support/programs.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

namespace catalogue {
namespace {

class NewCatalogueTest : public testing::Test {
protected:
    void SetUp() override {
        path = folder.filePath(QStringLiteral("pinball.mdb"));
        const base::Status made = CreateEmptyCatalogue(*files, path.toStdU16String(), 46000.5);
        ASSERT_TRUE(made.ok()) << made.message();
    }
    // What a program of mdbtools prints; nullopt when it is not installed.
    std::optional<QString> OutputOf(const QString& program, const QStringList& arguments) {
        std::vector<std::string> command{program.toStdString()};
        for (const QString& argument : arguments)
            command.push_back(argument.toStdString());
        const auto output = test_support::OutputOf(command);
        return output ? std::optional(QString::fromStdString(*output)) : std::nullopt;
    }

    test_support::TemporaryDir folder;
    QString path;
    std::unique_ptr<jet::FileSystem> files = platform::MakeFileSystem();
};

TEST_F(NewCatalogueTest, HasOneEmptyTableWithTwelveColumns) {
    jet::Connection connection(*files);
    ASSERT_TRUE(connection.Open(u"Data Source=" + path.toStdU16String()).ok());
    const auto rows = connection.Execute(u"Select * from Tables");
    ASSERT_TRUE(rows.ok()) << rows.status().message();
    EXPECT_EQ(rows->FieldCount(), 12U);
    EXPECT_TRUE(rows->Bof() && rows->Eof());
}

// So that the file is the same whenever it is made.
TEST_F(NewCatalogueTest, EveryObjectHasTheGivenDate) {
    const auto objects =
        OutputOf(QStringLiteral("mdb-export"), {QStringLiteral("-b"), QStringLiteral("strip"), path,
                                                QStringLiteral("MSysObjects")});
    ASSERT_TRUE(objects) << "mdbtools is not installed";
    QStringList lines = objects->split(u'\n', Qt::SkipEmptyParts);
    ASSERT_GT(lines.size(), 5);
    lines.removeFirst();
    for (const QString& line : lines)
        EXPECT_EQ(line.count(QStringLiteral("12/09/25 12:00:00")), 2) << line.toStdString();
}

TEST_F(NewCatalogueTest, NumbersItsRowsByItself) {
    jet::Connection connection(*files);
    ASSERT_TRUE(connection.Open(u"Data Source=" + path.toStdU16String()).ok());
    ASSERT_TRUE(connection.Execute(u"INSERT INTO Tables (DisplayName) VALUES ('a')").ok());
    ASSERT_TRUE(connection.Execute(u"INSERT INTO Tables (DisplayName) VALUES ('b')").ok());
    auto rows = connection.Execute(u"Select ID from Tables where DisplayName = 'b'");
    ASSERT_TRUE(rows.ok());
    EXPECT_EQ(jet::ToInteger(*rows->Fields(u"ID")), 2);
    // An explicit number that is taken is refused: ID is the key.
    EXPECT_FALSE(connection.Execute(u"INSERT INTO Tables (ID, DisplayName) VALUES (1, 'c')").ok());
}

TEST_F(NewCatalogueTest, HasThePrimaryKeyAndItsTwoIndexes) {
    jet::Connection connection(*files);
    ASSERT_TRUE(connection.Open(u"Data Source=" + path.toStdU16String()).ok());
    const auto table = connection.database()->FindTable(u"tables");
    ASSERT_TRUE(table.ok());
    std::vector<std::u16string> names;
    for (const auto& index : (*table)->design().indexes)
        names.push_back(index.name);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::u16string>{u"DisplayName", u"FileName", u"PrimaryKey"}));
    EXPECT_EQ(connection.database()->jet_version(), 4);
}

TEST_F(NewCatalogueTest, AFileThatIsThereIsNotTouched) {
    const base::Status again = CreateEmptyCatalogue(*files, path.toStdU16String(), 46000.5);
    EXPECT_EQ(again.code(), base::StatusCode::kAlreadyExists);
    jet::Connection connection(*files);
    EXPECT_TRUE(connection.Open(u"Data Source=" + path.toStdU16String()).ok());
}

TEST_F(NewCatalogueTest, WhatCouldNotBeMadeWholeIsTakenAway) {
    const std::filesystem::path other =
        folder.filePath(QStringLiteral("other.mdb")).toStdU16String();
    int failures = 0;
    for (int writes = 0;; ++writes) {
        ASSERT_LT(writes, 1000);
        test_support::FullDisk disk(*files, writes);
        if (CreateEmptyCatalogue(disk, other, 46000.5).ok()) break;
        ++failures;
        EXPECT_FALSE(files->Exists(other)) << writes << " writes";
    }
    EXPECT_GE(failures, 1);
    EXPECT_TRUE(files->Exists(other));
}

// Packages of the program are the same wherever they are built.
TEST_F(NewCatalogueTest, TheSameDateGivesTheSameBytes) {
    const auto bytes = [](const QString& name) {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    const QString twin = folder.filePath(QStringLiteral("twin.mdb"));
    ASSERT_TRUE(CreateEmptyCatalogue(*files, twin.toStdU16String(), 46000.5).ok());
    EXPECT_TRUE(bytes(twin) == bytes(path));
}

TEST_F(NewCatalogueTest, OtherProgramsReadIt) {
    const auto tables = OutputOf(QStringLiteral("mdb-tables"), {QStringLiteral("-1"), path});
    ASSERT_TRUE(tables) << "mdbtools is not installed";
    EXPECT_EQ(tables->trimmed(), QStringLiteral("Tables"));
    const QString schema =
        OutputOf(QStringLiteral("mdb-schema"), {path}).value_or(QString()).simplified();
    EXPECT_TRUE(schema.contains(QStringLiteral("[ID] Long Integer"))) << schema.toStdString();
    EXPECT_TRUE(schema.contains(QStringLiteral("[DisplayName] Text (255)")))
        << schema.toStdString();
    EXPECT_TRUE(schema.contains(QStringLiteral("[Year] Text (50)"))) << schema.toStdString();
    EXPECT_TRUE(schema.contains(QStringLiteral("[Notes] Memo/Hyperlink (255)")) ||
                schema.contains(QStringLiteral("[Notes] Memo")))
        << schema.toStdString();
    EXPECT_TRUE(schema.contains(QStringLiteral("[PinMame] Boolean"))) << schema.toStdString();
    const auto rows = OutputOf(QStringLiteral("mdb-export"), {path, QStringLiteral("Tables")});
    EXPECT_EQ(rows->trimmed(),
              QStringLiteral("ID,DisplayName,FileName,Author,Company,Year,Version,ImageFile,"
                             "FlyerFile,Notes,PinMame,Favorite"));
}

}  // namespace
}  // namespace catalogue
