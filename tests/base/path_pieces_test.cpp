#include "base/path_pieces.h"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(PathPiecesTest, FileNameIsTheTextAfterTheLastSeparator) {
    EXPECT_EQ(GetFileName(u"C:\\Tables\\Foo.vpt"), u"Foo.vpt");
    EXPECT_EQ(GetFileName(u"/home/u/tables/Foo.vpt"), u"Foo.vpt");
    EXPECT_EQ(GetFileName(u"C:\\A\\"), u"");
}

TEST(PathPiecesTest, PathWithoutSeparatorIsAllFileName) {
    EXPECT_EQ(GetFileName(u"Foo.vpt"), u"Foo.vpt");
    EXPECT_EQ(GetFolder(u"Foo.vpt"), u"");
}

TEST(PathPiecesTest, FolderKeepsItsSeparator) {
    EXPECT_EQ(GetFolder(u"C:\\Tables\\Foo.vpt"), u"C:\\Tables\\");
    EXPECT_EQ(GetFolder(u"/home/u/Foo.vpt"), u"/home/u/");
}

TEST(PathPiecesTest, BlankInEmptyOut) {
    EXPECT_EQ(GetFileName(u"   "), u"");
    EXPECT_EQ(GetFolder(u"  "), u"");
    EXPECT_EQ(StripExtension(u" "), u"");
}

TEST(PathPiecesTest, LeadingBlanksOfAPathStay) {
    EXPECT_EQ(GetFolder(u" a\\b"), u" a\\");
}

TEST(PathPiecesTest, StripExtensionCutsFourCharacters) {
    EXPECT_EQ(StripExtension(u"Foo.vpt"), u"Foo");
    EXPECT_EQ(StripExtension(u"Foo.html"), u"Foo.");
    EXPECT_EQ(StripExtension(u"abc"), u"");
}

TEST(PathPiecesTest, SeparatorIsAppendedInThePathsOwnKind) {
    EXPECT_EQ(WithTrailingSeparator(u"C:\\Tables", u'/'), u"C:\\Tables\\");
    EXPECT_EQ(WithTrailingSeparator(u"C:", u'/'), u"C:\\");
    EXPECT_EQ(WithTrailingSeparator(u"/home/u", u'\\'), u"/home/u/");
    EXPECT_EQ(WithTrailingSeparator(u"tables", u'/'), u"tables/");
    EXPECT_EQ(WithTrailingSeparator(u"", u'/'), u"/");
    EXPECT_EQ(WithTrailingSeparator(u"/home/u/", u'/'), u"/home/u/");
}

}  // namespace
}  // namespace base
