#include "tableinfo/storage_tools.h"

#include "support/temporary_dir.h"
#include "support/test_data.h"
#include "support/vpt_builder.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace tableinfo {
namespace {

using test_support::BytesOf;
using test_support::FillerBytes;
using test_support::VptBuilder;

class StorageToolsTest : public testing::Test {
protected:
    QString Build(const VptBuilder& builder, const QString& name = QStringLiteral("table.vpt")) {
        const QString path = folder_.filePath(name);
        const auto written = builder.Write(path.toStdU16String());
        EXPECT_TRUE(written.ok()) << written.message();
        return path;
    }
    QString WriteFile(const QByteArray& bytes) {
        QFile file(folder_.filePath(QStringLiteral("table.vpt")));
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    // Nothing can be found in that file, and nobody is told.
    static void ExpectNothing(const QString& path) {
        QStringList names{QStringLiteral("before")};
        EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableName")), QString());
        EXPECT_FALSE(HasTableInfo(path));
        EXPECT_EQ(ListCustomInfoStreams(path, names), 0);
        EXPECT_EQ(names, QStringList{QStringLiteral("before")});
        EXPECT_EQ(LoadTableScreenshot(path), std::nullopt);
    }

    test_support::TemporaryDir folder_;
};

TEST_F(StorageToolsTest, AStreamIsReadAsItsText) {
    const QString path = Build(VptBuilder().Text(u"TableName", u"Attack"));
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableName")), QStringLiteral("Attack"));
}

TEST_F(StorageToolsTest, AMissingStreamReadsAsTheEmptyText) {
    const QString path = Build(VptBuilder().Text(u"TableName", u"Attack").Text(u"AuthorName", u""));
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("AuthorName")), QString());
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableRules")), QString());
    EXPECT_EQ(ReadTableInfoStream(path, QString()), QString());
}

TEST_F(StorageToolsTest, StreamsAreFoundWithoutRegardToLetterCase) {
    const QString path = Build(VptBuilder().Text(u"tablename", u"Attack"));
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableName")), QStringLiteral("Attack"));
}

TEST_F(StorageToolsTest, AStorageInPlaceOfAStreamReadsAsTheEmptyText) {
    const QString path = Build(VptBuilder().Storage(u"TableInfo/TableName"));
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableName")), QString());
}

TEST_F(StorageToolsTest, AStreamInPlaceOfTheStorageHasNothingInIt) {
    const QString path = Build(VptBuilder().Stream(u"TableInfo", BytesOf("text")));
    QStringList names;
    EXPECT_TRUE(HasTableInfo(path));
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableName")), QString());
    EXPECT_EQ(ListCustomInfoStreams(path, names), 0);
}

TEST_F(StorageToolsTest, ALongTextIsReadWhole) {
    std::u16string rules(100'000, u'r');
    rules += u"end";
    const QString path = Build(VptBuilder().Text(u"TableRules", rules));
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableRules")),
              QString::fromStdU16String(rules));
}

TEST_F(StorageToolsTest, InformationIsThereWhenItsStorageIsThere) {
    EXPECT_TRUE(HasTableInfo(Build(VptBuilder().WithTableInfo())));
    EXPECT_FALSE(HasTableInfo(Build(VptBuilder().Filler(1000))));
    EXPECT_FALSE(HasTableInfo(Build(VptBuilder().Stream(u"GameStg/TableInfo", BytesOf("x")))));
}

TEST_F(StorageToolsTest, TheNameOfTheStorageCountsLetterForLetter) {
    EXPECT_FALSE(HasTableInfo(Build(VptBuilder().Storage(u"TABLEINFO"))));
}

TEST_F(StorageToolsTest, CustomStreamsAreListedAndAllElementsCounted) {
    const QString path = Build(VptBuilder()
                                   .Text(u"TableName", u"Attack")
                                   .Text(u"AuthorName", u"Bob")
                                   .Text(u"CompanyName", u"Bally"));
    QStringList names;
    EXPECT_EQ(ListCustomInfoStreams(path, names), 3);
    EXPECT_EQ(names, QStringList{QStringLiteral("CompanyName")});
}

TEST_F(StorageToolsTest, StoragesAreCountedButAreNoCustomFields) {
    const QString path = Build(VptBuilder().Storage(u"TableInfo/Designer").Text(u"Year", u"1980"));
    QStringList names;
    EXPECT_EQ(ListCustomInfoStreams(path, names), 2);
    EXPECT_EQ(names, QStringList{QStringLiteral("Year")});
}

TEST_F(StorageToolsTest, AByteOrderMarkIsALetterOfACustomName) {
    const QString path = Build(VptBuilder().Text(u"\xFEFFMore", u"x"));
    QStringList names;
    EXPECT_EQ(ListCustomInfoStreams(path, names), 1);
    EXPECT_EQ(names, QStringList(QString(QChar(0xFEFF)) + QStringLiteral("More")));
    EXPECT_EQ(ReadTableInfoStream(path, names.value(0)), QStringLiteral("x"));
}

TEST_F(StorageToolsTest, AStandardNameInOtherLetterCaseIsACustomField) {
    const QString path = Build(VptBuilder().Text(u"tablename", u"Attack"));
    QStringList names;
    EXPECT_EQ(ListCustomInfoStreams(path, names), 1);
    EXPECT_EQ(names, QStringList{QStringLiteral("tablename")});
}

TEST_F(StorageToolsTest, TheTenStandardNamesAreExact) {
    for (const char16_t* standard :
         {u"TableName", u"AuthorName", u"Screenshot", u"TableBlurb", u"TableRules", u"AuthorEmail",
          u"ReleaseDate", u"TableVersion", u"AuthorWebSite", u"TableDescription"}) {
        const QString name = QString::fromUtf16(standard);
        EXPECT_TRUE(IsStandardInfoStream(name)) << name.toStdString();
        EXPECT_FALSE(IsStandardInfoStream(name.toUpper())) << name.toStdString();
    }
    EXPECT_FALSE(IsStandardInfoStream(QStringLiteral("CompanyName")));
    EXPECT_FALSE(IsStandardInfoStream(QStringLiteral("TableName ")));
    EXPECT_FALSE(IsStandardInfoStream(QString()));
}

TEST_F(StorageToolsTest, TheScreenshotIsTheStreamsBytes) {
    const auto picture = FillerBytes(70'000);
    const auto loaded = LoadTableScreenshot(Build(VptBuilder().Screenshot(picture)));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(*loaded, QByteArray(reinterpret_cast<const char*>(picture.data()), 70'000));
}

TEST_F(StorageToolsTest, AnEmptyScreenshotIsNone) {
    EXPECT_EQ(LoadTableScreenshot(Build(VptBuilder().Screenshot({}))), std::nullopt);
    EXPECT_EQ(LoadTableScreenshot(Build(VptBuilder().WithTableInfo())), std::nullopt);
}

TEST_F(StorageToolsTest, WhatIsNoTableFileHasNothing) {
    ExpectNothing(QString());
    ExpectNothing(folder_.path());
    ExpectNothing(folder_.filePath(QStringLiteral("missing.vpt")));
    ExpectNothing(QStringLiteral("C:\\Tables\\Attack.vpt"));
    ExpectNothing(WriteFile({}));
    ExpectNothing(WriteFile("just a text file"));
    ExpectNothing(WriteFile(QByteArray(100'000, '\xD0')));
}

TEST_F(StorageToolsTest, AFileCutShortHasWhatIsLeftOfItOrNothing) {
    QFile file(Build(VptBuilder().Text(u"TableName", u"Attack").Filler(20'000)));
    for (qint64 size = file.size(); size > 0; size -= 512) {
        ASSERT_TRUE(file.resize(size));
        TableInfoFile cut(file.fileName());
        const QString name = cut.ReadStream(QStringLiteral("TableName"));
        EXPECT_TRUE(name.isEmpty() || name == QStringLiteral("Attack")) << name.toStdString();
        EXPECT_EQ(cut.failure().ok(), !name.isEmpty()) << size << ' ' << cut.failure().message();
    }
    ExpectNothing(file.fileName());
}

TEST_F(StorageToolsTest, WhatIsNotThereIsNoFailure) {
    TableInfoFile none(folder_.filePath(QStringLiteral("none.vpt")));
    EXPECT_FALSE(none.HasTableInfo());
    EXPECT_TRUE(none.failure().ok());
    TableInfoFile some(Build(VptBuilder().Text(u"TableName", u"Attack")));
    EXPECT_EQ(some.ReadStream(QStringLiteral("AuthorName")), QString());
    EXPECT_TRUE(some.failure().ok()) << some.failure().message();
    QFile other(folder_.filePath(QStringLiteral("other.vpt")));
    ASSERT_TRUE(other.open(QFile::WriteOnly) && other.write("no table") == 8);
    other.close();
    TableInfoFile no_table(other.fileName());
    EXPECT_FALSE(no_table.HasTableInfo());
    EXPECT_FALSE(no_table.failure().ok());
}

TEST_F(StorageToolsTest, OneDamagedEntryDoesNotHideTheOtherTexts) {
    const VptBuilder builder = VptBuilder()
                                   .Text(u"TableName", u"Attack")
                                   .Text(u"AuthorName", u"Bob")
                                   .Text(u"CompanyName", u"Bally")
                                   .Text(u"Designer", u"Ann");
    for (const char16_t* damaged : {u"TableName", u"AuthorName", u"CompanyName", u"Designer"}) {
        QFile file(Build(builder));
        ASSERT_TRUE(file.open(QFile::ReadWrite));
        QByteArray bytes = file.readAll();
        const QString name = QString::fromUtf16(damaged);
        const qsizetype entry = bytes.indexOf(
            QByteArray(reinterpret_cast<const char*>(name.utf16()), name.size() * 2 + 2));
        ASSERT_GT(entry, 0);
        file.seek(entry + 0x42);  // the entry's type
        ASSERT_TRUE(file.putChar(7));
        file.close();

        EXPECT_TRUE(HasTableInfo(file.fileName()));
        for (const char16_t* stream : {u"TableName", u"AuthorName", u"CompanyName", u"Designer"}) {
            const QString wanted = QString::fromUtf16(stream);
            EXPECT_EQ(ReadTableInfoStream(file.fileName(), wanted).isEmpty(), wanted == name)
                << name.toStdString() << " damaged, " << wanted.toStdString() << " read";
        }
        QStringList custom;
        EXPECT_EQ(ListCustomInfoStreams(file.fileName(), custom), 3);
    }
}

TEST_F(StorageToolsTest, OneObjectAnswersSeveralQuestions) {
    TableInfoFile file(Build(VptBuilder()
                                 .Text(u"TableName", u"Attack")
                                 .Text(u"Year", u"1980")
                                 .Screenshot(BytesOf("jpeg"))));
    QStringList names;
    EXPECT_TRUE(file.HasTableInfo());
    EXPECT_EQ(file.ReadStream(QStringLiteral("TableName")), QStringLiteral("Attack"));
    EXPECT_EQ(file.ReadStream(QStringLiteral("Year")), QStringLiteral("1980"));
    EXPECT_EQ(file.ListCustomStreams(names), 3);
    EXPECT_EQ(file.Screenshot(), QByteArray("jpeg"));
}

TEST_F(StorageToolsTest, NamesWithBlanksApostrophesAndUmlautsOpen) {
    const QString path = Build(VptBuilder().Text(u"TableName", u"Attack"),
                               QStringLiteral(u"Bob's t\u00E4ble (2).VPT"));
    EXPECT_EQ(ReadTableInfoStream(path, QStringLiteral("TableName")), QStringLiteral("Attack"));
}

// What the information of a file is: of one that this project made, or of a real one.
struct KnownFile {
    std::filesystem::path path;
    bool has_information = true;
    std::string name = {};
    std::string author = {};
    std::string version = {};
    int streams = 0;
    std::vector<std::string> custom = {};
    qsizetype picture_bytes = 0;  // 0: there is none
};

void PrintTo(const KnownFile& file, std::ostream* out) {
    *out << file.path;
}

std::vector<KnownFile> KnownFiles() {
    const auto ours = test_support::DataFolder() / "tables";
    std::vector<KnownFile> files = {{ours / "Whole Information.vpt",
                                     true,
                                     "Otto's Windmill",
                                     "Zo\u00EB Br\u00FCckner",
                                     "2.0",
                                     13,
                                     {"Designer", "CompanyName", "CompanyYear"},
                                     731},
                                    {ours / "some-information.vpt",
                                     true,
                                     "Quiet Harbour",
                                     "",
                                     "1.2",
                                     6,
                                     {"TableSaveRev", "TableSaveDate"},
                                     0},
                                    {ours / "empty-information.vpt"},
                                    {ours / "no-information.vpt", false},
                                    {ours / "Deep Storages (2000).vpt", false}};
    if (const auto samples = test_support::SampleFolder()) {
        const auto real = *samples / "tables";
        files.insert(files.end(), {{real / "Full Info.vpt",
                                    true,
                                    "Bob's Table",
                                    "Ann \u00C9mile",
                                    "1.0.3",
                                    13,
                                    {"Designer", "CompanyName", "CompanyYear"},
                                    5929},
                                   {real / "Blank Table with info.vpt",
                                    true,
                                    "Visual Pinball Demo Table",
                                    "",
                                    "1.2",
                                    6,
                                    {"TableSaveRev", "TableSaveDate"},
                                    0},
                                   {real / "default-2009.vpt"},
                                   {real / "no-info-2000.vpt", false},
                                   {real / "Old Default (2000).vpt", false}});
    }
    return files;
}

class KnownFileTest : public testing::TestWithParam<KnownFile> {};

TEST_P(KnownFileTest, TellsWhatItsAuthorWrote) {
    const KnownFile& file = GetParam();
    const QString path = QString::fromStdString(file.path.string());
    const auto text = [&](const char* stream) {
        return ReadTableInfoStream(path, QLatin1String(stream)).toStdString();
    };
    ASSERT_TRUE(QFile::exists(path));
    EXPECT_EQ(HasTableInfo(path), file.has_information);
    EXPECT_EQ(text("TableName"), file.name);
    EXPECT_EQ(text("AuthorName"), file.author);
    EXPECT_EQ(text("TableVersion"), file.version);
    QStringList names;
    EXPECT_EQ(ListCustomInfoStreams(path, names), file.streams);
    std::vector<std::string> custom;
    for (const QString& name : names)
        custom.push_back(name.toStdString());
    EXPECT_EQ(custom, file.custom);
    const auto screenshot = LoadTableScreenshot(path);
    ASSERT_EQ(screenshot.has_value(), file.picture_bytes != 0);
    if (!screenshot) return;
    EXPECT_TRUE(screenshot->startsWith("\xFF\xD8\xFF"));
    EXPECT_EQ(screenshot->size(), file.picture_bytes);
}

INSTANTIATE_TEST_SUITE_P(Files, KnownFileTest, testing::ValuesIn(KnownFiles()),
                         [](const auto& file) { return test_support::LettersOf(file.param.path); });

}  // namespace
}  // namespace tableinfo
