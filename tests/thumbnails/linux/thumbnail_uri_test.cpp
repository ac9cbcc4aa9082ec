// What the desktops of Linux expect of thumbnails: they share them.
#include "support/temporary_dir.h"
#include "thumbnails/pictures_of_tests.h"
#include "thumbnails/thumbnail_file.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace thumbnails {
namespace {

const Original kPicture = {"file:///home/jens/photos/me.png", 1'000'000};

// The example of the standard.
TEST(ThumbnailUriTest, TheNameIsThatOfTheStandard) {
    EXPECT_EQ(UriOf(QStringLiteral("/home/jens/photos/me.png")), kPicture.uri);
    EXPECT_EQ(ThumbnailPath(QStringLiteral("/c"), kPicture.uri, 128).toStdString(),
              "/c/normal/c6ee772d9e49320e97ec29a7eb5b1697.png");
    EXPECT_EQ(ThumbnailPath(QStringLiteral("/c"), kPicture.uri, 256).toStdString(),
              "/c/large/c6ee772d9e49320e97ec29a7eb5b1697.png");
}

TEST(ThumbnailUriTest, AUriEscapesWhatDesktopsEscape) {
    EXPECT_EQ(UriOf(QStringLiteral("/a b/\u00F6;[1]%#?.png")).toStdString(),
              "file:///a%20b/%C3%B6%3B%5B1%5D%25%23%3F.png");
    EXPECT_EQ(UriOf(QStringLiteral("/-_.!~*'()&=:@+$,aZ09")).toStdString(),
              "file:///-_.!~*'()&=:@+$,aZ09");
}

TEST(ThumbnailUriTest, AUriHasTheWholePath) {
    EXPECT_EQ(UriOf(QStringLiteral("/a/../b/./c.png")).toStdString(), "file:///b/c.png");
    EXPECT_TRUE(UriOf(QStringLiteral("c.png")).startsWith("file:///"));
    EXPECT_TRUE(UriOf(QStringLiteral("c.png")).endsWith("/c.png"));
}

TEST(ThumbnailUriTest, ItsFilesAreTheUsersAlone) {
    const test_support::TemporaryDir folder;
    ASSERT_TRUE(WriteThumbnail(folder.path(), kPicture, 128, Painted(10, 10)).ok());
    const QFileInfo file(ThumbnailPath(folder.path(), kPicture.uri, 128));
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    EXPECT_FALSE(file.permissions() & others);
    EXPECT_FALSE(QFileInfo(file.path()).permissions() & others);
    EXPECT_EQ(QDir(file.path()).entryList(QDir::Files).size(), 1) << "nothing is left beside it";
}

}  // namespace
}  // namespace thumbnails
