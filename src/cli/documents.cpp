#include "cli/documents.h"

#include "dialogs/program_version.h"

#include <algorithm>

namespace cli {
namespace {

constexpr std::size_t kHelpColumn = 30;
constexpr std::size_t kLineWidth = 79;

// When the commands last changed.
constexpr std::string_view kManualDate = "2026-11-22";

std::string Version() {
    return dialogs::VersionText(dialogs::ProgramVersion()).toStdString();
}

std::string OptionText(const Option& option) {
    std::string text = option.letter != 0 ? std::string("-") + option.letter + ", " : "    ";
    text += "--" + std::string(option.name);
    if (!option.value.empty()) text += "=" + std::string(option.value);
    return text;
}

// Breaks `text` into lines that begin at `indent`; the first one stands at `column` already.
std::string Wrapped(std::string_view text, std::size_t indent, std::size_t column) {
    std::string lines;
    bool is_first = true;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (!is_first && column + 1 + end > kLineWidth) {
            lines += "\n" + std::string(indent, ' ');
            column = indent;
            is_first = true;
        }
        if (!is_first) {
            lines += ' ';
            ++column;
        }
        lines += text.substr(0, end);
        column += end;
        text.remove_prefix(std::min(end + 1, text.size()));
        is_first = false;
    }
    return lines;
}

std::string HelpOf(const Option& option) {
    std::string help(option.help);
    if (option.choices.empty()) return help;
    help += ":";
    for (const std::string_view choice : option.choices)
        help += (&choice == option.choices.data() ? " " : ", ") + std::string(choice);
    return help;
}

std::string TwoColumns(const std::string& left, std::string_view right) {
    std::string line = "  " + left;
    if (line.size() + 2 > kHelpColumn)
        line += "\n" + std::string(kHelpColumn, ' ');
    else
        line.resize(kHelpColumn, ' ');
    return line + Wrapped(right, kHelpColumn, kHelpColumn) + "\n";
}

std::string OptionList(std::span<const Option> options) {
    std::string list;
    for (const Option& option : options)
        list += TwoColumns(OptionText(option), HelpOf(option));
    return list;
}

// Calls `take` with each paragraph of a description.
template <typename Take>
void ForEachParagraph(std::string_view text, const Take& take) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find("\n\n"), text.size());
        take(text.substr(0, end));
        text.remove_prefix(std::min(end + 2, text.size()));
    }
}

// For roff: backslashes, hyphens that are minus signs, and lines that look like requests.
std::string Roff(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else if (c == '\'')
            escaped += "\\(aq";
        else if (c == '"')
            escaped += "\\(dq";
        else if (c == '^')
            escaped += "\\(ha";
        else if (c == '~')
            escaped += "\\(ti";
        else
            escaped += c;
    }
    if (!escaped.empty() && escaped.front() == '.') escaped.insert(0, "\\&");
    return escaped;
}

std::string RoffOptions(std::span<const Option> options) {
    std::string text;
    for (const Option& option : options) {
        text += ".TP\n\\fB";
        if (option.letter != 0) text += std::string("\\-") + option.letter + "\\fR, \\fB";
        text += "\\-\\-" + Roff(option.name) + "\\fR";
        if (!option.value.empty()) text += "=\\fI" + Roff(option.value) + "\\fR";
        text += "\n" + Roff(HelpOf(option)) + ".\n";
    }
    return text;
}

// "tavolo-cli list [OPTION]...".
std::string Usage(const Command& command) {
    std::string usage = "tavolo-cli " + std::string(command.name);
    if (!command.options.empty()) usage += " [OPTION]...";
    for (const Operand& operand : command.operands) {
        const std::string name = std::string(operand.name) + (operand.repeats ? "..." : "");
        usage += operand.is_optional ? " [" + name + "]" : " " + name;
    }
    return usage;
}

std::string RoffUsage(const Command& command) {
    std::string usage = "\\fBtavolo\\-cli " + Roff(command.name) + "\\fR";
    if (!command.options.empty()) usage += " [\\fIOPTION\\fR]...";
    for (const Operand& operand : command.operands) {
        const std::string name =
            "\\fI" + Roff(operand.name) + "\\fR" + (operand.repeats ? "..." : "");
        usage += operand.is_optional ? " [" + name + "]" : " " + name;
    }
    return usage;
}

std::string RoffCommand(const Command& command) {
    std::string text = ".SS " + Roff(command.name) + "\n" + RoffUsage(command) + "\n";
    ForEachParagraph(command.description,
                     [&](std::string_view paragraph) { text += ".PP\n" + Roff(paragraph) + "\n"; });
    return text + RoffOptions(command.options);
}

}  // namespace

std::string VersionText() {
    return "tavolo-cli (" + dialogs::ApplicationTitle().toStdString() + ") " + Version() + "\n";
}

std::string GeneralHelp() {
    std::string help = "Usage: tavolo-cli COMMAND [OPTION]... [OPERAND]...\n"
                       "The catalogue of Visual Pinball tables on the command line.\n\nCommands:\n";
    for (const Command& command : Commands())
        help += TwoColumns(std::string(command.name), command.summary);
    help += "\nWith every command:\n" + OptionList(CommonOptions()) + "\nExit status:\n";
    for (const StatusMeaning& meaning : StatusMeanings())
        help += TwoColumns(std::to_string(meaning.status), meaning.meaning);
    return help + "\n'tavolo-cli COMMAND --help' tells more of a command, tavolo-cli(1) all.\n";
}

std::string CommandHelp(const Command& command) {
    std::string help = "Usage: " + Usage(command) + "\n";
    ForEachParagraph(command.description, [&](std::string_view paragraph) {
        help += Wrapped(paragraph, 0, 0) + "\n\n";
    });
    help += "Options:\n" + OptionList(command.options) + OptionList(CommonOptions());
    if (!command.examples.empty()) help += "\nExamples:\n";
    for (const Example& example : command.examples)
        help += "  " + std::string(example.line) + "\n      " + Wrapped(example.what, 6, 6) + "\n";
    return help;
}

std::string ManPage() {
    std::string page = ".TH TAVOLO\\-CLI 1 \"" + std::string(kManualDate) + "\" \"Tavolo " +
                       Version() +
                       "\" \"User Commands\"\n.SH NAME\ntavolo\\-cli \\- the catalogue of Visual "
                       "Pinball tables on the command line\n.SH SYNOPSIS\n"
                       "\\fBtavolo\\-cli\\fR \\fICOMMAND\\fR [\\fIOPTION\\fR]... "
                       "[\\fIOPERAND\\fR]...\n.SH DESCRIPTION\n";
    page += Roff("Works on the catalogue of Tavolo, the file pinball.mdb in its folder, without a "
                 "window. Results go to the standard output, messages to the standard error "
                 "output. Commands that only read work while Tavolo is running; those that write "
                 "end with status 3 then. Options may stand anywhere behind the command, -- ends "
                 "them, and - as a file is the standard input or output.") +
            "\n.SH COMMANDS\n";
    for (const Command& command : Commands())
        page += RoffCommand(command);
    page += ".SH OPTIONS\nWith every command:\n" + RoffOptions(CommonOptions());
    page += ".SH EXIT STATUS\n";
    for (const StatusMeaning& meaning : StatusMeanings())
        page +=
            ".TP\n\\fB" + std::to_string(meaning.status) + "\\fR\n" + Roff(meaning.meaning) + ".\n";
    page += ".SH ENVIRONMENT\n.TP\n\\fBNO_COLOR\\fR\n" +
            Roff("When it is set and not empty, nothing is coloured and no progress is shown, on a "
                 "terminal either.") +
            "\n.SH EXAMPLES\n";
    for (const Command& command : Commands())
        for (const Example& example : command.examples)
            page += ".TP\n\\fB" + Roff(example.line) + "\\fR\n" + Roff(example.what) + ".\n";
    return page + ".SH SEE ALSO\n\\fBtavolo\\fR(1)\n";
}

std::string ExampleLines() {
    std::string lines;
    for (const Command& command : Commands())
        for (const Example& example : command.examples)
            lines += std::string(example.line) + "\n";
    return lines;
}

}  // namespace cli
