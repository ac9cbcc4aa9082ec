#include "cli/arguments.h"

#include "support/qt_text.h"

#include <gtest/gtest.h>

namespace cli {
namespace {

using test_support::S;

Arguments Parse(const char* words) {
    return ParseArguments(S(words).split(u' ', Qt::SkipEmptyParts));
}

std::string ErrorOf(const char* words) {
    return Parse(words).error.toStdString();
}

TEST(ArgumentsTest, OptionsStandAnywhere) {
    const Arguments arguments = Parse("-C /a show --json 12");
    EXPECT_TRUE(arguments.error.isEmpty()) << arguments.error.toStdString();
    EXPECT_EQ(arguments.command, FindCommand("show"));
    EXPECT_EQ(arguments.operands, QStringList{S("12")});
    EXPECT_EQ(arguments.Value("folder"), S("/a"));
    EXPECT_TRUE(arguments.Has("json"));
}

TEST(ArgumentsTest, ValuesAreGivenInFourWays) {
    for (const char* words : {"list --columns ID", "list --columns=ID", "list -c ID", "list -cID"})
        EXPECT_EQ(Parse(words).Value("columns"), S("ID")) << words;
    EXPECT_EQ(Parse("list --columns=").Values("columns"), QStringList{QString()});
}

TEST(ArgumentsTest, ShortOptionsMayBeJoined) {
    const Arguments arguments = Parse("list -djoYear");
    EXPECT_TRUE(arguments.Has("descending"));
    EXPECT_TRUE(arguments.Has("json"));
    EXPECT_EQ(arguments.Value("order"), S("Year"));
}

TEST(ArgumentsTest, ABeginningOfANameWillDo) {
    EXPECT_TRUE(Parse("list --desc").Has("descending"));
    EXPECT_EQ(ErrorOf("export --fo=csv"), "option '--fo' may be '--folder' or '--format'");
    EXPECT_EQ(Parse("export --format=csv x").error, QString());
}

TEST(ArgumentsTest, TwoDashesEndTheOptions) {
    const Arguments arguments = Parse("info -- --json");
    EXPECT_EQ(arguments.operands, QStringList{S("--json")});
    EXPECT_FALSE(arguments.Has("json"));
    EXPECT_EQ(Parse("import -").operands, QStringList{S("-")});
}

TEST(ArgumentsTest, ChoicesAreTakenInAnyLetterCase) {
    EXPECT_EQ(Parse("list --order=year").Value("order"), S("Year"));
    EXPECT_EQ(ErrorOf("list --order=size"),
              "'size' is no value of '--order': it takes Table Name, Year, Author, Company, Date "
              "Added, Times Played");
}

TEST(ArgumentsTest, EveryMistakeIsNamed) {
    EXPECT_EQ(ErrorOf(""), "no command");
    EXPECT_EQ(ErrorOf("dance"), "unknown command 'dance'");
    EXPECT_EQ(ErrorOf("list --wrong"), "unknown option '--wrong'");
    EXPECT_EQ(ErrorOf("list -w"), "unknown option '-w'");
    EXPECT_EQ(ErrorOf("list --json=1"), "option '--json' takes no value");
    EXPECT_EQ(ErrorOf("list --columns"), "option '--columns' needs a value");
    EXPECT_EQ(ErrorOf("list -c"), "option '--columns' needs a value");
    EXPECT_EQ(ErrorOf("show"), "ID is missing");
    EXPECT_EQ(ErrorOf("show 1 2"), "'2' is too much");
    EXPECT_EQ(ErrorOf("list -c ID -c ID"), "option '--columns' is given twice");
}

TEST(ArgumentsTest, HelpNeedsNothingElse) {
    EXPECT_TRUE(Parse("--help").help);
    EXPECT_TRUE(Parse("show --help").help);
    EXPECT_TRUE(Parse("--version").version);
    EXPECT_TRUE(Parse("show --help").error.isEmpty());
}

// A value that is missing, wrong or too much, for every option there is.
TEST(ArgumentsTest, EveryOptionRefusesBadInput) {
    for (const Command& command : Commands()) {
        QStringList words{S(std::string(command.name).c_str())};
        for (const Operand& operand : command.operands)
            if (!operand.is_optional) words.append(S("1"));
        for (const Option& option : command.options) {
            const QString name = S("--") + S(std::string(option.name).c_str());
            if (option.value.empty()) {
                EXPECT_FALSE(ParseArguments(words + QStringList{name + S("=x")}).error.isEmpty())
                    << name.toStdString();
                continue;
            }
            EXPECT_FALSE(ParseArguments(words + QStringList{name}).error.isEmpty())
                << name.toStdString();
            if (!option.choices.empty()) {
                EXPECT_FALSE(
                    ParseArguments(words + QStringList{name, S("nonsense")}).error.isEmpty())
                    << name.toStdString();
            }
        }
    }
}

}  // namespace
}  // namespace cli
