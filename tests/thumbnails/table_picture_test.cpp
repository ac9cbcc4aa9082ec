#include "thumbnails/table_picture.h"

#include "support/temporary_dir.h"
#include "support/vpt_builder.h"
#include "thumbnails/pictures_of_tests.h"
#include "thumbnails/thumbnail_file.h"

#include <QtCore/QDateTime>

namespace thumbnails {
namespace {

constexpr QSize kPictureBox(120, 90);

class TablePictureTest : public testing::Test {
protected:
    QString PathOf(const char* name) const { return folder.filePath(QLatin1String(name)); }
    ThumbnailFolders Folders() const { return {PathOf("shared"), PathOf("own")}; }
    QString WritePicture(const char* name, int width, int height, Qt::GlobalColor color) {
        WriteBytes(PathOf(name), Encoded(Painted(width, height, color), "png"));
        return PathOf(name);
    }
    QString WriteTable(const char* name, const QByteArray& screenshot) {
        EXPECT_TRUE(test_support::VptBuilder()
                        .Screenshot(test_support::BytesOf(screenshot.toStdString()))
                        .Write(PathOf(name).toStdU16String())
                        .ok());
        return PathOf(name);
    }
    base::Result<QImage> Load(const TablePicture& picture, QSize box = kPictureBox) {
        return LoadThumbnail(picture, box, Folders());
    }
    // Puts another picture in the place of the one that is kept.
    void ExchangeKept(const QString& kept_in, const QString& path, Qt::GlobalColor color) {
        const auto original = OriginalOf(path);
        ASSERT_TRUE(original);
        ASSERT_TRUE(ReadThumbnail(kept_in, *original, 128)) << "it is kept";
        ASSERT_TRUE(WriteThumbnail(kept_in, *original, 128, Painted(80, 60, color)).ok());
    }

    test_support::TemporaryDir folder;
};

TEST_F(TablePictureTest, TheFileOfTheRowComesFirst) {
    const QString table = WriteTable("t.vpt", Encoded(Painted(40, 30, Qt::green), "png"));
    const QString file = WritePicture("p.png", 40, 30, Qt::blue);
    const auto picture = Load({file, table});
    ASSERT_TRUE(picture.ok()) << picture.status().message();
    EXPECT_TRUE(IsPaintedIn(*picture, Qt::blue));
}

TEST_F(TablePictureTest, WithoutOneTheTableFileHasIt) {
    const QString table = WriteTable("t.vpt", Encoded(Painted(40, 30, Qt::green), "jpg"));
    for (const QString& image : {QString(), PathOf("gone.png"), PathOf("no dot")}) {
        const auto picture = Load({image, table});
        ASSERT_TRUE(picture.ok()) << picture.status().message();
        EXPECT_GT(picture->pixelColor(20, 15).green(), 200);
    }
}

TEST_F(TablePictureTest, ThereMayBeNone) {
    const QString table = PathOf("t.vpt");
    ASSERT_TRUE(test_support::VptBuilder()
                    .Text(u"TableName", u"Attack")
                    .Write(table.toStdU16String())
                    .ok());
    for (const TablePicture& picture :
         {TablePicture{{}, table}, TablePicture{{}, PathOf("gone")}, TablePicture{}})
        EXPECT_EQ(Load(picture).status().code(), base::StatusCode::kNotFound);
    EXPECT_TRUE(ScreenshotOf({{}, table}).is_empty());
}

TEST_F(TablePictureTest, OneThatCannotBeReadSaysSo) {
    WriteBytes(PathOf("p.png"), "no picture");
    const auto picture = Load({PathOf("p.png"), {}});
    EXPECT_EQ(picture.status().code(), base::StatusCode::kUnsupported);
    EXPECT_NE(picture.status().message().find("p.png"), std::string::npos);
}

TEST_F(TablePictureTest, ItFitsIntoTheBoxAndIsNotEnlarged) {
    const auto large = Load({WritePicture("l.png", 800, 200, Qt::blue), {}});
    ASSERT_TRUE(large.ok());
    EXPECT_EQ(large->size(), QSize(120, 30));
    const auto small = Load({WritePicture("s.png", 8, 6, Qt::blue), {}});
    ASSERT_TRUE(small.ok());
    EXPECT_EQ(small->size(), QSize(8, 6));
}

TEST_F(TablePictureTest, ASmallPictureOfAFileIsKeptWithTheOnesOfOthers) {
    const QString file = WritePicture("p.png", 400, 300, Qt::blue);
    ASSERT_TRUE(Load({file, {}}).ok());
    ExchangeKept(Folders().shared, file, Qt::green);
    EXPECT_TRUE(IsPaintedIn(*Load({file, {}}), Qt::green));
}

TEST_F(TablePictureTest, OneFromInsideIsKeptInTheOwnFolder) {
    const QString table = WriteTable("t.vpt", Encoded(Painted(400, 300, Qt::blue), "png"));
    ASSERT_TRUE(Load({{}, table}).ok());
    EXPECT_FALSE(ReadThumbnail(Folders().shared, *OriginalOf(table), 128));
    ExchangeKept(Folders().own, table, Qt::green);
    EXPECT_TRUE(IsPaintedIn(*Load({{}, table}), Qt::green));
}

TEST_F(TablePictureTest, AFileThatHasChangedIsReadAgain) {
    const QString file = WritePicture("p.png", 400, 300, Qt::blue);
    ASSERT_TRUE(Load({file, {}}).ok());
    WritePicture("p.png", 400, 300, Qt::green);
    QFile changed(file);
    ASSERT_TRUE(changed.open(QIODevice::ReadWrite));
    ASSERT_TRUE(changed.setFileTime(QDateTime::fromSecsSinceEpoch(1'000'000),
                                    QFileDevice::FileModificationTime));
    changed.close();
    EXPECT_TRUE(IsPaintedIn(*Load({file, {}}), Qt::green));
}

TEST_F(TablePictureTest, WhereNothingCanBeKeptItIsMadeAllTheSame) {
    WriteBytes(PathOf("shared"), "a file in its place");
    EXPECT_TRUE(Load({WritePicture("p.png", 400, 300, Qt::blue), {}}).ok());
}

TEST_F(TablePictureTest, WhereProgramsShareNoneItIsKeptInTheOwnFolder) {
    const QString file = WritePicture("p.png", 400, 300, Qt::blue);
    ASSERT_TRUE(LoadThumbnail({file, {}}, kPictureBox, {{}, PathOf("own")}).ok());
    EXPECT_TRUE(ReadThumbnail(PathOf("own"), *OriginalOf(file), 128));
}

}  // namespace
}  // namespace thumbnails
