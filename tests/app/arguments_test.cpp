#include "app/arguments.h"

#include <gtest/gtest.h>

namespace app {
namespace {

Arguments Parse(const char* words) {
    const QString line = QString::fromLatin1(words);
    return ParseArguments(line.isEmpty() ? QStringList() : line.split(u' '));
}

TEST(ArgumentsTest, NoneIsAPlainStart) {
    EXPECT_EQ(Parse(""), Arguments{});
}

TEST(ArgumentsTest, AFolderComesInTwoForms) {
    EXPECT_EQ(Parse("--folder /srv/tables").folder, QStringLiteral("/srv/tables"));
    EXPECT_EQ(Parse("--folder=/srv/tables").folder, QStringLiteral("/srv/tables"));
}

TEST(ArgumentsTest, TheExampleCollectionCanBeAskedFor) {
    EXPECT_TRUE(Parse("--demo").demo);
    EXPECT_EQ(Parse("--demo --folder /srv/example").folder, QStringLiteral("/srv/example"));
    EXPECT_FALSE(Parse("--folder /srv/tables").demo);
}

TEST(ArgumentsTest, AFolderWithoutANameIsAnError) {
    EXPECT_EQ(Parse("--folder").error, QStringLiteral("--folder needs the name of a folder"));
}

TEST(ArgumentsTest, AnUnknownWordIsAnError) {
    EXPECT_EQ(Parse("--help --fast").error, QStringLiteral("unknown argument: --fast"));
}

TEST(ArgumentsTest, OneFileOrFolderCanBeGiven) {
    EXPECT_EQ(Parse("/t/a.vpt").tables, QStringLiteral("/t/a.vpt"));
    EXPECT_EQ(Parse("--folder /c -- --a.vpt").tables, QStringLiteral("--a.vpt"));
    EXPECT_EQ(Parse("a b").error, QStringLiteral("only one file or folder can be given"));
    EXPECT_EQ(ParseArguments({QString()}).error,
              QStringLiteral("the name of a file or folder is empty"));
}

TEST(ArgumentsTest, HelpAndVersionAreKnown) {
    EXPECT_TRUE(Parse("--help").help);
    EXPECT_TRUE(Parse("--version").version);
    EXPECT_TRUE(HelpText().contains(QStringLiteral("--folder DIR")));
    EXPECT_EQ(VersionLine(), QStringLiteral("Tavolo 1.6.0\n"));
}

}  // namespace
}  // namespace app
