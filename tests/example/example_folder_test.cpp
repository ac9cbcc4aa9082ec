// The example collection as the build makes it, copied for a user.
#include "example/example_folder.h"

#include "jet/pages/file_mark.h"
#include "platform/application_folder.h"
#include "platform/file_system.h"
#include "platform/files.h"
#include "support/catalogue_fixture.h"
#include "support/qt_text.h"
#include "support/temporary_dir.h"
#include "tableinfo/storage_tools.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <span>

namespace example {
namespace {

using test_support::S;

class ExampleFolderTest : public testing::Test {
protected:
    // Opens the copy as the program does.
    void Open() {
        values.ApplicationFolder = folder;
        catalogue = {&connection, &values, &settings, &clock};
        const auto opened = catalogue::Main(catalogue);
        ASSERT_TRUE(opened.ok()) << opened.message();
    }
    // All values of a column, in the order of the names.
    QStringList Column(const char16_t* name) {
        QStringList values_of_rows;
        auto rows = connection.Execute(u"SELECT " + std::u16string(name) +
                                       u" FROM Tables ORDER BY DisplayName");
        EXPECT_TRUE(rows.ok());
        for (; rows.ok() && !rows->Eof(); rows->MoveNext().Ignore())
            values_of_rows.append(catalogue::FieldText(rows->Fields(std::size_t{0}).value()));
        return values_of_rows;
    }

    test_support::TemporaryDir root;
    QString folder = root.filePath(S(u"it's | mine/example"));
    QString delivered = QStringLiteral(EXAMPLE_FOLDER);
    std::unique_ptr<jet::FileSystem> files = platform::MakeFileSystem();
    jet::Connection connection{*files};
    test_support::FakeClock clock;
    test_support::FakeSettings settings;
    catalogue::ProcessValues values;
    catalogue::Catalogue catalogue;
};

// It is random, and a package is to have the same bytes whenever it is built.
TEST_F(ExampleFolderTest, TheDeliveredCatalogueHasNoMark) {
    QFile file(platform::FileIn(delivered, S(u"pinball.mdb")));
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    const QByteArray first_page = file.read(4096);
    ASSERT_EQ(first_page.size(), 4096);
    EXPECT_EQ(jet::ReadFileMark(std::as_bytes(std::span(first_page.data(), 4096))), 0U);
}

TEST_F(ExampleFolderTest, EveryFileOfTheCopyIsThere) {
    ASSERT_TRUE(CopyExample(delivered, folder).ok());
    Open();
    const auto set = SetExamplePaths(connection, folder);
    ASSERT_TRUE(set.ok()) << set.message();
    EXPECT_EQ(Column(u"DisplayName").size(), 12);
    for (const QString& path : Column(u"FileName"))
        EXPECT_TRUE(platform::FileExists(path) && path.startsWith(folder)) << path.toStdString();
    int pictures = 0;
    for (const QString& path : Column(u"ImageFile") + Column(u"FlyerFile")) {
        if (path.isEmpty()) continue;
        ++pictures;
        EXPECT_TRUE(platform::FileExists(path)) << path.toStdString();
    }
    EXPECT_EQ(pictures, 8 + 6);
}

TEST_F(ExampleFolderTest, PathsAreSetOnce) {
    ASSERT_TRUE(CopyExample(delivered, folder).ok());
    Open();
    ASSERT_TRUE(SetExamplePaths(connection, folder).ok());
    const QStringList paths = Column(u"FileName");
    ASSERT_TRUE(SetExamplePaths(connection, folder).ok());
    EXPECT_EQ(Column(u"FileName"), paths);
}

TEST_F(ExampleFolderTest, TheTableFilesSayWhatTheyAre) {
    const QString path = delivered + S(u"/tables/Harbour Lights.vpt");
    EXPECT_EQ(tableinfo::ReadTableInfoStream(path, S(u"TableName")), S(u"Harbour Lights"));
    EXPECT_EQ(tableinfo::ReadTableInfoStream(path, S(u"AuthorName")), S(u"In\u00e8s Perrault"));
    EXPECT_EQ(tableinfo::ReadTableInfoStream(path, S(u"CompanyYear")), S(u"1972"));
    const auto picture = tableinfo::LoadTableScreenshot(path);
    ASSERT_TRUE(picture);
    EXPECT_TRUE(picture->startsWith("\xFF\xD8\xFF"));
    EXPECT_GT(picture->size(), 10'000);
}

TEST_F(ExampleFolderTest, ACopyThatIsThereStaysAsItIs) {
    ASSERT_TRUE(CopyExample(delivered, folder).ok());
    QFile::remove(folder + S(u"/tables/Harbour Lights.vpt"));
    ASSERT_TRUE(CopyExample(delivered, folder).ok());
    EXPECT_FALSE(platform::FileExists(folder + S(u"/tables/Harbour Lights.vpt")));
}

TEST_F(ExampleFolderTest, ACopyThatWasInterruptedIsFinished) {
    ASSERT_TRUE(CopyExample(delivered, folder).ok());
    QFile::remove(folder + S(u"/pinball.mdb"));
    QFile::remove(folder + S(u"/tables/Harbour Lights.vpt"));
    ASSERT_TRUE(CopyExample(delivered, folder).ok());
    EXPECT_TRUE(platform::FileExists(folder + S(u"/tables/Harbour Lights.vpt")));
    EXPECT_TRUE(platform::FileExists(folder + S(u"/pinball.mdb")));
}

TEST_F(ExampleFolderTest, WhatWasNotDeliveredIsSaidAndNothingIsMade) {
    const auto copied = CopyExample(root.filePath(S(u"nowhere")), folder);
    EXPECT_EQ(copied.code(), base::StatusCode::kNotFound);
    EXPECT_NE(copied.message().find("nowhere"), std::string::npos);
    EXPECT_FALSE(QDir(folder).exists());
}

}  // namespace
}  // namespace example
