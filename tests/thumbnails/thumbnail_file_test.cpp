#include "thumbnails/thumbnail_file.h"

#include "support/temporary_dir.h"
#include "thumbnails/pictures_of_tests.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace thumbnails {
namespace {

const Original kMe = {"file:///home/jens/photos/me.png", 1'000'000};

class ThumbnailFileTest : public testing::Test {
protected:
    QString PathOf(const Original& original, int side = 128) const {
        return ThumbnailPath(Folder(), original.uri, side);
    }
    QString Folder() const { return folder.filePath(QStringLiteral("cache/thumbnails")); }

    test_support::TemporaryDir folder;
};

TEST_F(ThumbnailFileTest, TheKindFillsTheBox) {
    EXPECT_EQ(SideFor({96, 72}), 128);
    EXPECT_EQ(SideFor({128, 96}), 128);
    EXPECT_EQ(SideFor({129, 96}), 256);
    EXPECT_EQ(SideFor({100, 300}), 512);
    EXPECT_EQ(SideFor({513, 1}), 1024);
    EXPECT_EQ(SideFor({5000, 5000}), 1024);
}

TEST_F(ThumbnailFileTest, WhatIsWrittenIsReadAgain) {
    ASSERT_TRUE(WriteThumbnail(Folder(), kMe, 128, Painted(100, 50)).ok());
    const auto read = ReadThumbnail(Folder(), kMe, 128);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->size(), QSize(100, 50));
    EXPECT_TRUE(IsPaintedIn(*read, Qt::red));
    EXPECT_FALSE(ReadThumbnail(Folder(), kMe, 256)) << "another kind";
}

TEST_F(ThumbnailFileTest, OtherProgramsFindTheirTexts) {
    QImage image = Painted(10, 10);
    image.setText(QStringLiteral("Comment"), QStringLiteral("of the original"));
    ASSERT_TRUE(WriteThumbnail(Folder(), kMe, 128, image).ok());
    const QImage read(PathOf(kMe));
    EXPECT_EQ(read.text(QStringLiteral("Thumb::URI")).toLatin1(), kMe.uri);
    EXPECT_EQ(read.text(QStringLiteral("Thumb::MTime")).toStdString(), "1000000");
    EXPECT_EQ(read.text(QStringLiteral("Software")).toStdString(), "Tavolo");
    EXPECT_FALSE(read.textKeys().contains(QStringLiteral("Comment")));
}

TEST_F(ThumbnailFileTest, AnotherStateOfTheFileHasNone) {
    ASSERT_TRUE(WriteThumbnail(Folder(), kMe, 128, Painted(10, 10)).ok());
    Original later = kMe;
    ++later.modified_s;
    EXPECT_FALSE(ReadThumbnail(Folder(), later, 128));
}

TEST_F(ThumbnailFileTest, APictureOfAnotherFileIsNone) {
    const Original other = {"file:///other.png", kMe.modified_s};
    ASSERT_TRUE(WriteThumbnail(Folder(), other, 128, Painted(10, 10)).ok());
    ASSERT_TRUE(QFile::rename(PathOf(other), PathOf(kMe)));
    EXPECT_FALSE(ReadThumbnail(Folder(), kMe, 128));
}

TEST_F(ThumbnailFileTest, OneThatIsTooLargeIsNone) {
    ASSERT_TRUE(WriteThumbnail(Folder(), kMe, 128, Painted(129, 10)).ok());
    EXPECT_FALSE(ReadThumbnail(Folder(), kMe, 128));
}

TEST_F(ThumbnailFileTest, CutAtEveryLengthItIsOneOrNone) {
    ASSERT_TRUE(WriteThumbnail(Folder(), kMe, 128, Painted(40, 30)).ok());
    QFile file(PathOf(kMe));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    file.close();
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        WriteBytes(PathOf(kMe), bytes.left(length));
        const auto read = ReadThumbnail(Folder(), kMe, 128);
        EXPECT_TRUE(!read || read->size() == QSize(40, 30)) << length;
    }
}

TEST_F(ThumbnailFileTest, AFileThatIsNotThereHasNoState) {
    EXPECT_FALSE(OriginalOf(folder.filePath(QStringLiteral("none.png"))));
    const QString path = folder.filePath(QStringLiteral("one.png"));
    WriteBytes(path, "x");
    const auto original = OriginalOf(path);
    ASSERT_TRUE(original);
    EXPECT_EQ(original->uri, UriOf(path));
    EXPECT_EQ(original->modified_s, QFileInfo(path).lastModified().toSecsSinceEpoch());
}

TEST_F(ThumbnailFileTest, WhereNoFolderCanBeMadeItSaysSo) {
    WriteBytes(folder.filePath(QStringLiteral("cache")), "a file in its place");
    EXPECT_FALSE(WriteThumbnail(Folder(), kMe, 128, Painted(10, 10)).ok());
}

}  // namespace
}  // namespace thumbnails
