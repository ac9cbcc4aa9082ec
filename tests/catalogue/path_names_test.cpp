#include "catalogue/path_names.h"

#include <gtest/gtest.h>

namespace catalogue {
namespace {

TEST(PathPiecesTest, AFolderKeepsItsSeparator) {
    EXPECT_EQ(GetFolder(QStringLiteral("C:\\Tables\\Foo.vpt")), QStringLiteral("C:\\Tables\\"));
    EXPECT_EQ(GetFolder(QStringLiteral("/home/me/Foo.vpt")), QStringLiteral("/home/me/"));
    EXPECT_EQ(GetFolder(QStringLiteral("Foo.vpt")), QString());
}

TEST(PathPiecesTest, AFileNameIsWhatFollowsTheLastSeparator) {
    EXPECT_EQ(GetFileName(QStringLiteral("C:\\Tables\\Foo.vpt")), QStringLiteral("Foo.vpt"));
    EXPECT_EQ(GetFileName(QStringLiteral("C:\\A\\")), QString());
    EXPECT_EQ(GetFileName(QStringLiteral("  ")), QString());
}

TEST(PathPiecesTest, AnExtensionIsFourCharacters) {
    EXPECT_EQ(StripExtension(QStringLiteral("Game.final.vpt")), QStringLiteral("Game.final"));
}

TEST(PathPiecesTest, ASeparatorIsAddedInTheKindOfThePath) {
    EXPECT_EQ(WithTrailingSeparator(QStringLiteral("C:\\Tables")), QStringLiteral("C:\\Tables\\"));
    EXPECT_EQ(WithTrailingSeparator(QStringLiteral("/home/me")), QStringLiteral("/home/me/"));
    EXPECT_EQ(WithTrailingSeparator(QStringLiteral("/home/me/")), QStringLiteral("/home/me/"));
}

}  // namespace
}  // namespace catalogue
