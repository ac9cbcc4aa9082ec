// The commands of tavolo-cli: what they are called, what they take and what they do. The parser,
// the help texts, the manual page and the completions of the shells are all made of this table; a
// new command is a new entry here and the function that runs it.
#pragma once

#include <span>
#include <string_view>

namespace cli {

struct Program;

// What a shell offers where a value is wanted.
enum class Completes { kNothing, kFiles, kFolders, kChoices };

struct Option {
    std::string_view name;        // without the dashes
    char letter = 0;              // of the short form; 0: none
    std::string_view value = {};  // what stands for its value in texts, "DIR"; empty: it takes none
    std::string_view help = {};   // a phrase, without a full stop
    Completes completes = Completes::kNothing;
    std::span<const std::string_view> choices = {};  // kChoices: a value must be one of them
    bool repeats = false;                            // may be given several times
};

struct Operand {
    std::string_view name;  // "FILE"
    bool is_optional = false;
    bool repeats = false;
    Completes completes = Completes::kNothing;
    std::span<const std::string_view> choices = {};  // offered only; other values are taken, too
};

struct Example {
    std::string_view line;  // for a shell
    std::string_view what;  // what it does: the end of a sentence
};

struct Command {
    std::string_view name;
    std::string_view summary;      // a phrase that begins with a verb, without a full stop
    std::string_view description;  // paragraphs, with empty lines between them
    std::span<const Operand> operands;
    std::span<const Option> options;
    std::span<const Example> examples;
    // Runs the command and answers the exit status; the arguments have been checked against this
    // entry.
    int (*run)(Program& program);
};

// In the order of the manual page.
std::span<const Command> Commands();
// nullptr: there is none of this name.
const Command* FindCommand(std::string_view name);

// What every command takes.
std::span<const Option> CommonOptions();

struct StatusMeaning {
    int status = 0;
    std::string_view meaning;
};
std::span<const StatusMeaning> StatusMeanings();

}  // namespace cli
