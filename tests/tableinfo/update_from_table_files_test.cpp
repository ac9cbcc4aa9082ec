#include "tableinfo/update_from_table_files.h"

#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"
#include "support/fakes.h"
#include "support/full_disk.h"
#include "support/temporary_dir.h"
#include "support/vpt_builder.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace tableinfo {
namespace {

using test_support::VptBuilder;

class UpdateFromTableFilesTest : public test_support::CatalogueFixture {
protected:
    QString Build(const VptBuilder& builder, const QString& name = QStringLiteral("table.vpt")) {
        const QString path = folder.filePath(name);
        const auto written = builder.Write(path.toStdU16String());
        EXPECT_TRUE(written.ok()) << written.message();
        return path;
    }
    void AddRow(const QString& path, const QString& display_name = QStringLiteral("Old Name")) {
        Execute(
            QStringLiteral(
                "Insert into Tables (DisplayName, FileName, Author, Company, Year, Version, Notes, "
                "RulesText) Values ('%1', '%2', 'Old Author', 'Old Company', '1900', 'Old "
                "Version', "
                "'Old Notes', 'Old Rules')")
                .arg(catalogue::QuoteSql(display_name), catalogue::QuoteSql(path)));
    }
    void Update() {
        const auto done = UpdateFromTableFiles(catalogue, 0, nullptr);
        ASSERT_TRUE(done.ok()) << done.message();
    }
    QString Field(const QString& column) {
        return Scalar(QStringLiteral("Select %1 from Tables").arg(column));
    }
};

TEST_F(UpdateFromTableFilesTest, EveryMappedStreamGoesIntoItsColumn) {
    AddRow(Build(VptBuilder()
                     .Text(u"TableName", u"Attack")
                     .Text(u"AuthorName", u"Ann")
                     .Text(u"TableRules", u"Shoot.\r\nAgain.")
                     .Text(u"TableVersion", u"1.2")
                     .Text(u"TableBlurb", u"Blurb")
                     .Text(u"CompanyName", u"Bally")
                     .Text(u"CompanyYear", u"1981")));
    Update();
    EXPECT_EQ(Field(QStringLiteral("DisplayName")), QStringLiteral("Attack"));
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("Ann"));
    EXPECT_EQ(Field(QStringLiteral("RulesText")), QStringLiteral("Shoot.\r\nAgain."));
    EXPECT_EQ(Field(QStringLiteral("Version")), QStringLiteral("1.2"));
    EXPECT_EQ(Field(QStringLiteral("Notes")), QStringLiteral("Blurb"));
    EXPECT_EQ(Field(QStringLiteral("Company")), QStringLiteral("Bally"));
    EXPECT_EQ(Field(QStringLiteral("Year")), QStringLiteral("1981"));
}

TEST_F(UpdateFromTableFilesTest, EmptyAndMissingStreamsLeaveTheirColumns) {
    AddRow(Build(VptBuilder()
                     .Text(u"TableName", u"")
                     .Text(u"AuthorName", u"   ")
                     .Text(u"TableVersion", u"2")));
    Update();
    EXPECT_EQ(Field(QStringLiteral("DisplayName")), QStringLiteral("Old Name"));
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("Old Author"));
    EXPECT_EQ(Field(QStringLiteral("Version")), QStringLiteral("2"));
    EXPECT_EQ(Field(QStringLiteral("RulesText")), QStringLiteral("Old Rules"));
}

TEST_F(UpdateFromTableFilesTest, SpacesAtTheEndsAreTrimmedAndLineEndsKept) {
    AddRow(
        Build(VptBuilder().Text(u"TableName", u"  Attack ").Text(u"TableBlurb", u" \r\nBlurb\t ")));
    Update();
    EXPECT_EQ(Field(QStringLiteral("DisplayName")), QStringLiteral("Attack"));
    EXPECT_EQ(Field(QStringLiteral("Notes")), QStringLiteral("\r\nBlurb\t"));
}

TEST_F(UpdateFromTableFilesTest, EveryApostropheIsStoredDoubled) {
    AddRow(Build(VptBuilder().Text(u"TableName", u"Bob's 'Table'")));
    Update();
    EXPECT_EQ(Field(QStringLiteral("DisplayName")), QStringLiteral("Bob''s ''Table''"));
}

TEST_F(UpdateFromTableFilesTest, QuotesBarsAndAccentsAreStoredAsTheyStand) {
    AddRow(Build(VptBuilder().Text(u"TableName", u"A \"b\" | c \u00E9")));
    Update();
    EXPECT_EQ(Field(QStringLiteral("DisplayName")), QStringLiteral(u"A \"b\" | c \u00E9"));
}

TEST_F(UpdateFromTableFilesTest, OtherStreamsAreNotStored) {
    AddRow(Build(VptBuilder()
                     .Text(u"AuthorEmail", u"ann@example.org")
                     .Text(u"ReleaseDate", u"2003")
                     .Text(u"AuthorWebSite", u"www.example.org")
                     .Text(u"TableDescription", u"Long")
                     .Text(u"Designer", u"Bob")
                     .Text(u"TableSaveRev", u"7")
                     .Text(u"TableSaveDate", u"Monday")
                     .Text(u"Author", u"not a stream of that meaning")
                     .Text(u"Notes", u"neither")
                     .Screenshot(test_support::FillerBytes(5000))));
    const QStringList columns =
        QStringLiteral("ID DisplayName FileName Author Company [Year] Version ImageFile FlyerFile "
                       "Notes PinMame "
                       "Favorite RulesFile FileDate RulesText TimesPlayed LastPlayed DateAdded CRC")
            .split(u' ');
    const auto row = [&] {
        QStringList fields;
        for (const QString& column : columns)
            fields << Field(column);
        return fields;
    };
    const QStringList before = row();
    ASSERT_TRUE(before.contains(QStringLiteral("Old Notes")));
    Update();
    EXPECT_EQ(row().join(u'|'), before.join(u'|'));
}

TEST_F(UpdateFromTableFilesTest, RowsWithoutInformationAreUntouched) {
    AddRow(Build(VptBuilder().Filler(5000), QStringLiteral("plain.vpt")));
    AddRow(folder.filePath(QStringLiteral("vanished.vpt")));
    AddRow(QString());
    AddRow(QStringLiteral("C:\\Tables\\Attack.vpt"));
    Execute(QStringLiteral("Insert into Tables (DisplayName) Values ('Old Name')"));
    Update();
    EXPECT_EQ(Scalar(QStringLiteral("Select count(*) from Tables where DisplayName = 'Old Name'")),
              QStringLiteral("5"));
}

TEST_F(UpdateFromTableFilesTest, FilesThatCannotBeReadAreNotedAndNoneThatAreMissing) {
    const QString damaged = folder.filePath(QStringLiteral("damaged.vpt"));
    QFile file(damaged);
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("no table") == 8);
    file.close();
    AddRow(damaged, QStringLiteral("Damaged"));
    AddRow(damaged, QStringLiteral("The Same"));
    AddRow(folder.filePath(QStringLiteral("missing.vpt")), QStringLiteral("Missing"));
    AddRow(Build(VptBuilder().Text(u"AuthorName", u"Ann")), QStringLiteral("Good"));
    catalogue::PassedOver passed_over;
    ASSERT_TRUE(UpdateFromTableFiles(catalogue, 0, nullptr, {}, &passed_over).ok());
    EXPECT_EQ(passed_over.count(), 1);
    const std::string told = passed_over.Summary().message();
    EXPECT_NE(told.find(damaged.toStdString()), std::string::npos) << told;
    EXPECT_EQ(Scalar(QStringLiteral("Select Count(*) from Tables where Author = 'Old Author'")),
              QStringLiteral("3"));
}

TEST_F(UpdateFromTableFilesTest, EveryRowOfTheCatalogueIsUpdated) {
    for (int i = 0; i < 40; ++i) {
        AddRow(
            Build(VptBuilder().Text(u"TableName", QStringLiteral("New %1").arg(i).toStdU16String()),
                  QStringLiteral("t%1.vpt").arg(i)));
    }
    Update();
    EXPECT_EQ(Scalar(QStringLiteral("Select count(*) from Tables where DisplayName = 'Old Name'")),
              QStringLiteral("0"));
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(Scalar(QStringLiteral("Select DisplayName from Tables where FileName = '%1'")
                             .arg(folder.filePath(QStringLiteral("t%1.vpt").arg(i)))),
                  QStringLiteral("New %1").arg(i));
}

TEST_F(UpdateFromTableFilesTest, ATextThatDoesNotFitLeavesItsColumnAndNoOther) {
    AddRow(Build(VptBuilder()
                     .Text(u"TableName", std::u16string(300, u'n'))
                     .Text(u"AuthorName", u"Ann")
                     .Text(u"CompanyYear", std::u16string(60, u'9'))),
           QStringLiteral("Long"));
    AddRow(Build(VptBuilder().Text(u"TableName", u"Next"), QStringLiteral("next.vpt")));
    Update();
    EXPECT_EQ(Scalar(QStringLiteral("Select Author from Tables where DisplayName = 'Long'")),
              QStringLiteral("Ann"));
    EXPECT_EQ(Scalar(QStringLiteral("Select Year from Tables where DisplayName = 'Long'")),
              QStringLiteral("1900"));
    EXPECT_EQ(Scalar(QStringLiteral("Select Author from Tables where DisplayName = 'Next'")),
              QStringLiteral("Old Author"));
}

TEST_F(UpdateFromTableFilesTest, ALongRulesTextIsStoredWhole) {
    const std::u16string rules = std::u16string(20'000, u'r') + u"end";
    AddRow(Build(VptBuilder().Text(u"TableRules", rules)));
    Update();
    EXPECT_EQ(Field(QStringLiteral("RulesText")), QString::fromStdU16String(rules));
}

TEST_F(UpdateFromTableFilesTest, TheStatusWindowIsShownOnlyForProgressOne) {
    AddRow(Build(VptBuilder().WithTableInfo()));
    for (const int show_progress : {0, 2, -1}) {
        test_support::FakeStatusDisplay status;
        EXPECT_TRUE(UpdateFromTableFiles(catalogue, show_progress, &status).ok());
        EXPECT_TRUE(status.shown.empty()) << show_progress;
    }
    test_support::FakeStatusDisplay status;
    EXPECT_TRUE(UpdateFromTableFiles(catalogue, 1, &status).ok());
    EXPECT_EQ(status.shown, std::vector<QString>{QStringLiteral("Updating from VPTs...")});
    EXPECT_EQ(status.unloads, 1);
}

TEST_F(UpdateFromTableFilesTest, AnEmptyCatalogueShowsNothing) {
    test_support::FakeStatusDisplay status;
    EXPECT_TRUE(UpdateFromTableFiles(catalogue, 1, &status).ok());
    EXPECT_TRUE(status.shown.empty());
}

TEST_F(UpdateFromTableFilesTest, AFullDiskEndsTheRunAndEachRowIsWhollyOldOrNew) {
    const QString path = Build(
        VptBuilder().Text(u"TableName", u"New").Text(u"TableRules", std::u16string(5000, u'r')));
    for (int i = 0; i < 8; ++i)
        AddRow(path);
    ASSERT_TRUE(connection->Close().ok());
    int full_disks = 0;
    for (int writes = 0; writes < 500; ++writes) {
        const test_support::TemporaryDir work;
        const QString copy = work.filePath(QStringLiteral("copy.mdb"));
        ASSERT_TRUE(QFile::copy(DatabasePath(), copy));
        const std::u16string source = (QStringLiteral("Data Source=") + copy).toStdU16String();
        test_support::FullDisk disk(*files, writes);
        {
            jet::Connection on_disk(disk);
            catalogue::Catalogue other = catalogue;
            other.CatalogueConnection = &on_disk;
            if (on_disk.Open(source).ok()) UpdateFromTableFiles(other, 0, nullptr).Ignore();
            on_disk.Close().Ignore();
        }
        ASSERT_TRUE(connection->Open(source).ok()) << writes;
        const int updated = Scalar(QStringLiteral("Select count(*) from Tables where DisplayName = "
                                                  "'New' and len(RulesText) = 5000"))
                                .toInt();
        const int old =
            Scalar(QStringLiteral("Select count(*) from Tables where DisplayName = 'Old Name' and "
                                  "RulesText = 'Old Rules'"))
                .toInt();
        EXPECT_EQ(updated + old, 8) << writes;
        ASSERT_TRUE(connection->Close().ok());
        if (!disk.was_full()) break;
        ++full_disks;
    }
    EXPECT_GT(full_disks, 10);
    EXPECT_LT(full_disks, 500);
}

TEST_F(UpdateFromTableFilesTest, AClosedCatalogueIsAFailureAndTheStatusWindowIsUnloaded) {
    ASSERT_TRUE(connection->Close().ok());
    test_support::FakeStatusDisplay status;
    EXPECT_FALSE(UpdateFromTableFiles(catalogue, 1, &status).ok());
    EXPECT_EQ(status.unloads, 1);
}

TEST_F(UpdateFromTableFilesTest, EveryRowIsToldToTheProgressAndTheEndOnce) {
    const QString table = Build(VptBuilder().Text(u"TableName", u"Attack"));
    for (int i = 0; i < 3; ++i)
        AddRow(i == 1 ? folder.filePath(QStringLiteral("gone.vpt")) : table);
    std::vector<std::pair<std::int64_t, std::int64_t>> told;
    const auto progress = [&](std::int64_t done, std::int64_t total) {
        told.emplace_back(done, total);
    };
    test_support::FakeStatusDisplay status;
    ASSERT_TRUE(UpdateFromTableFiles(catalogue, 1, &status, progress).ok());
    EXPECT_EQ(told, (std::vector<std::pair<std::int64_t, std::int64_t>>{{1, 3}, {2, 3}, {3, 3}}));

    told.clear();
    ASSERT_TRUE(UpdateFromTableFiles(catalogue, 0, &status, progress).ok());
    EXPECT_TRUE(told.empty());
}

TEST_F(UpdateFromTableFilesTest, OnlyTheRowsThatAreAskedForAreReadAndChanged) {
    const QString path = Build(VptBuilder().Text(u"TableName", u"Of the file"));
    for (const char* name : {"One", "Two", "Three"})
        AddRow(path, QString::fromLatin1(name));
    CountWalks();
    test_support::FakeEvents events;
    const std::vector<std::int64_t> ids{2, 99};
    const auto done = UpdateRowsFromTableFiles(catalogue, ids, events);
    ASSERT_TRUE(done.ok()) << done.message();
    EXPECT_EQ(walks.scans, 0);
    EXPECT_EQ(events.rounds, 2);
    const QString of = QStringLiteral("Select DisplayName from Tables where ID = ");
    EXPECT_EQ(Scalar(of + u'1'), QStringLiteral("One"));
    EXPECT_EQ(Scalar(of + u'2'), QStringLiteral("Of the file"));
    EXPECT_EQ(Scalar(of + u'3'), QStringLiteral("Three"));
}

TEST_F(UpdateFromTableFilesTest, AFileThatThePathMapFindsIsRead) {
    Build(VptBuilder().Text(u"TableName", u"Attack"), QStringLiteral("table.vpt"));
    AddRow(QStringLiteral("C:\\Tables\\Table.vpt"));
    MapTablesHere();
    Update();
    EXPECT_EQ(Field(QStringLiteral("DisplayName")), QStringLiteral("Attack"));
    EXPECT_EQ(Field(QStringLiteral("FileName")), QStringLiteral("C:\\Tables\\Table.vpt"));
}

}  // namespace
}  // namespace tableinfo
