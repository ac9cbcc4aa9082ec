// Paths of Windows as addresses (RFC 8089, appendix E).
#include "thumbnails/pictures_of_tests.h"
#include "thumbnails/thumbnail_file.h"

namespace thumbnails {
namespace {

TEST(ThumbnailUriTest, ADriveIsItsFirstFolder) {
    EXPECT_EQ(UriOf(QStringLiteral("C:\\Users\\jens\\me.png")).toStdString(),
              "file:///C:/Users/jens/me.png");
    EXPECT_EQ(UriOf(QStringLiteral("C:\\a b\\\u00F6;[1]%#.png")).toStdString(),
              "file:///C:/a%20b/%C3%B6%3B%5B1%5D%25%23.png");
}

TEST(ThumbnailUriTest, ItHasTheWholePath) {
    EXPECT_EQ(UriOf(QStringLiteral("C:\\a\\..\\b\\.\\c.png")).toStdString(), "file:///C:/b/c.png");
    EXPECT_TRUE(UriOf(QStringLiteral("c.png")).startsWith("file:///"));
    EXPECT_TRUE(UriOf(QStringLiteral("c.png")).endsWith("/c.png"));
}

}  // namespace
}  // namespace thumbnails
