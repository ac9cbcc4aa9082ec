#include "cli/documents.h"

#include "cli/cli_fixture.h"

namespace cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

TEST(CommandTableTest, NamesAndLettersAreGivenOnce) {
    std::set<std::string_view> commands;
    for (const Command& command : Commands()) {
        EXPECT_TRUE(commands.insert(command.name).second) << command.name;
        std::set<std::string_view> names;
        std::set<char> letters;
        for (const auto& options : {command.options, CommonOptions()})
            for (const Option& option : options) {
                EXPECT_TRUE(names.insert(option.name).second) << command.name << option.name;
                const bool is_new = option.letter == 0 || letters.insert(option.letter).second;
                EXPECT_TRUE(is_new) << command.name << option.letter;
            }
    }
}

TEST(CommandTableTest, WhateverWritesHasADryRun) {
    for (const char* name :
         {"scan", "update", "crc", "set", "backup", "play", "export", "import", "info"}) {
        const auto& options = FindCommand(name)->options;
        EXPECT_TRUE(std::ranges::any_of(options, [](const Option& o) {
            return o.name == "dry-run";
        })) << name;
    }
}

TEST(DocumentsTest, EveryDocumentHasEveryCommandAndOption) {
    const std::string man = ManPage();
    for (const Command& command : Commands()) {
        const std::string name(command.name);
        EXPECT_THAT(GeneralHelp(), HasSubstr("  " + name + " "));
        const std::string roff_name =
            QString::fromStdString(name).replace(u'-', QStringLiteral("\\-")).toStdString();
        EXPECT_THAT(man, HasSubstr(".SS " + roff_name + "\n"));
        EXPECT_THAT(BashCompletion(), HasSubstr("    " + name + ")\n"));
        EXPECT_THAT(ZshCompletion(), HasSubstr("        " + name + ") _arguments"));
        EXPECT_THAT(FishCompletion(), HasSubstr("__fish_use_subcommand -a " + name + " "));
        for (const Option& option : command.options) {
            const std::string long_name(option.name);
            EXPECT_THAT(CommandHelp(command), HasSubstr("--" + long_name));
            EXPECT_THAT(BashCompletion(), HasSubstr("--" + long_name));
            EXPECT_THAT(FishCompletion(), HasSubstr("-l " + long_name));
        }
    }
}

TEST(DocumentsTest, HelpFitsATerminal) {
    for (const std::string& line : Lines(GeneralHelp()))
        EXPECT_LE(line.size(), 80u) << line;
    for (const Command& command : Commands())
        for (const std::string& line : Lines(CommandHelp(command)))
            EXPECT_LE(line.size(), 90u) << line;
}

class HelpTest : public CliFixture {};

TEST_F(HelpTest, HelpAndVersionAreResults) {
    EXPECT_EQ(Run("--help"), kDone);
    EXPECT_THAT(console.out, StartsWith("Usage: tavolo-cli COMMAND"));
    EXPECT_EQ(Run("show --help"), kDone);
    EXPECT_THAT(console.out, StartsWith("Usage: tavolo-cli show [OPTION]... ID\n"));
    EXPECT_EQ(Run("--version"), kDone);
    EXPECT_THAT(console.out, StartsWith("tavolo-cli (Tavolo) 1."));
    EXPECT_TRUE(console.error.empty());
}

TEST_F(HelpTest, WrongUsageIsAMessage) {
    EXPECT_EQ(Run("dance"), kWrongUsage);
    EXPECT_TRUE(console.out.empty());
    EXPECT_EQ(console.error, "tavolo-cli: unknown command 'dance'\n"
                             "Try 'tavolo-cli --help' for more information.\n");
}

}  // namespace
}  // namespace cli
