// The completions of the shells: a case for each command, with its options and what may stand
// behind them.
#include "cli/documents.h"

namespace cli {
namespace {

// In single quotes, for a shell.
std::string ShellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string Joined(std::span<const std::string_view> words) {
    std::string text;
    for (const std::string_view word : words)
        text += (text.empty() ? "" : "\n") + std::string(word);
    return text;
}

std::string CommandNames() {
    std::string names;
    for (const Command& command : Commands())
        names += (names.empty() ? "" : " ") + std::string(command.name);
    return names;
}

template <typename Take>
void ForEachOption(const Command& command, const Take& take) {
    for (const Option& option : command.options)
        take(option);
    for (const Option& option : CommonOptions())
        take(option);
}

// Bash.

std::string BashValue(Completes completes, std::span<const std::string_view> choices) {
    switch (completes) {
    case Completes::kFiles:
        return "_tavolo_cli_files -f";
    case Completes::kFolders:
        return "_tavolo_cli_files -d";
    case Completes::kChoices:
        return "_tavolo_cli_words " + ShellQuoted(Joined(choices));
    case Completes::kNothing:
        break;
    }
    return ":";
}

std::string BashOptions(const Command& command) {
    std::string names;
    std::string values;
    ForEachOption(command, [&](const Option& option) {
        names += "--" + std::string(option.name) + "\n";
        if (option.letter != 0) names += std::string("-") + option.letter + "\n";
        if (option.value.empty()) return;
        std::string pattern = "--" + std::string(option.name);
        if (option.letter != 0) pattern += std::string("|-") + option.letter;
        values += "            " + pattern + ") " + BashValue(option.completes, option.choices) +
                  "; return ;;\n";
    });
    names.pop_back();
    return "        case $previous in\n" + values +
           "        esac\n        if [[ $current == -* ]]; then _tavolo_cli_words " +
           ShellQuoted(names) + "; return; fi\n";
}

// Zsh.

std::string ZshText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string ZshValue(std::string_view name, Completes completes,
                     std::span<const std::string_view> choices) {
    std::string text = ":" + ZshText(name) + ":";
    if (completes == Completes::kFiles) return text + "_files";
    if (completes == Completes::kFolders) return text + "_files -/";
    if (completes == Completes::kNothing) return text + " ";
    text += "(";
    for (const std::string_view choice : choices) {
        for (const char c : choice) {
            if (std::string_view(" ()<>=").find(c) != std::string_view::npos) text += '\\';
            text += c;
        }
        text += ' ';
    }
    return text + ")";
}

std::string ZshOption(const Option& option) {
    const std::string help = "[" + ZshText(option.help) + "]";
    const std::string value =
        option.value.empty() ? "" : ZshValue(option.value, option.completes, option.choices);
    const std::string repeats = option.repeats ? "*" : "";
    std::string text = "            " +
                       ShellQuoted(repeats + "--" + std::string(option.name) +
                                   (value.empty() ? "" : "=") + help + value) +
                       " \\\n";
    if (option.letter != 0)
        text +=
            "            " +
            ShellQuoted(repeats + "-" + option.letter + (value.empty() ? "" : "+") + help + value) +
            " \\\n";
    return text;
}

std::string ZshOperands(const Command& command) {
    std::string text;
    int number = 1;
    for (const Operand& operand : command.operands) {
        const std::string place = operand.repeats ? "*" : std::to_string(number++);
        text += "            " +
                ShellQuoted(place + (operand.is_optional && !operand.repeats ? ":" : "") +
                            ZshValue(operand.name, operand.completes, operand.choices)) +
                " \\\n";
    }
    return text;
}

// Fish.

std::string FishValue(Completes completes, std::span<const std::string_view> choices) {
    switch (completes) {
    case Completes::kFiles:
        return " -r -F";
    case Completes::kFolders:
        return " -x -a '(__fish_complete_directories)'";
    case Completes::kChoices: {
        std::string words;
        for (const std::string_view choice : choices)
            words += (words.empty() ? "" : " ") + ShellQuoted(choice);
        // What is in double quotes is evaluated again.
        return " -x -a \"" + words + "\"";
    }
    case Completes::kNothing:
        break;
    }
    return " -x";
}

std::string FishOption(const std::string& condition, const Option& option) {
    std::string line = "complete -c tavolo-cli" + condition + " -l " + std::string(option.name);
    if (option.letter != 0) line += std::string(" -s ") + option.letter;
    if (!option.value.empty()) line += FishValue(option.completes, option.choices);
    return line + " -d " + ShellQuoted(option.help) + "\n";
}

std::string FishCommand(const Command& command) {
    const std::string condition =
        " -n '__fish_seen_subcommand_from " + std::string(command.name) + "'";
    std::string text;
    for (const Option& option : command.options)
        text += FishOption(condition, option);
    for (const Operand& operand : command.operands)
        if (operand.completes != Completes::kNothing) {
            std::string value = FishValue(operand.completes, operand.choices);
            text += "complete -c tavolo-cli" + condition +
                    (operand.completes == Completes::kFiles ? " -F" : value.replace(0, 3, " -f")) +
                    "\n";
        }
    return text;
}

}  // namespace

std::string BashCompletion() {
    std::string text =
        R"bash(# Completion of tavolo-cli for bash. Made by the build of the program's table of commands.
_tavolo_cli_words() {
    local IFS=$'\n' word
    COMPREPLY=()
    for word in $1; do
        [[ $word == "$current"* ]] && COMPREPLY+=("$prefix$(printf %q "$word")")
    done
}
_tavolo_cli_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -P "$prefix" "$1" -- "$current")
}
_tavolo_cli() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} prefix= command= i
    COMPREPLY=()
    # --name=value: three words where = separates words, as it usually does, else one.
    if [[ $current == = ]]; then
        current=
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD-2]}
    elif [[ $current == --*=* ]]; then
        previous=${current%%=*} prefix=${current%%=*}= current=${current#*=}
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            --folder|-C) ((i++)); [[ ${COMP_WORDS[i]} == = ]] && ((i++)) ;;
            -*) ;;
            *) command=${COMP_WORDS[i]}; break ;;
        esac
    done
    case $command in
)bash";
    for (const Command& command : Commands()) {
        text += "    " + std::string(command.name) + ")\n" + BashOptions(command);
        std::string operand = ":";
        if (!command.operands.empty()) {
            const Operand& last = command.operands.back();
            const Operand& first = command.operands.front();
            const Operand& shown = last.completes != Completes::kNothing ? last : first;
            operand = BashValue(shown.completes, shown.choices);
        }
        text += "        " + operand + " ;;\n";
    }
    std::string names = CommandNames();
    for (char& c : names)
        if (c == ' ') c = '\n';
    text += "    *)\n        case $previous in --folder|-C) _tavolo_cli_files -d; return ;; esac\n"
            "        if [[ $current == -* ]]; then _tavolo_cli_words " +
            ShellQuoted("--folder\n--help\n--version") + "; else _tavolo_cli_words " +
            ShellQuoted(names) + "; fi ;;\n    esac\n}\ncomplete -F _tavolo_cli tavolo-cli\n";
    return text;
}

std::string ZshCompletion() {
    std::string text = "#compdef tavolo-cli\n"
                       "# Completion of tavolo-cli for zsh. Made by the build of the program's "
                       "table of commands.\n_tavolo_cli() {\n    local context state line\n"
                       "    typeset -A opt_args\n    _arguments -C \\\n";
    for (const Option& option : CommonOptions())
        text += ZshOption(option);
    text += "            '1:command:->command' \\\n            '*::argument:->argument'\n"
            "    case $state in\n    command)\n        local -a commands\n        commands=(\n";
    for (const Command& command : Commands())
        text += "            " +
                ShellQuoted(std::string(command.name) + ":" + ZshText(command.summary)) + "\n";
    text += "        )\n        _describe command commands ;;\n    argument)\n"
            "        case $line[1] in\n";
    for (const Command& command : Commands()) {
        text += "        " + std::string(command.name) + ") _arguments \\\n";
        ForEachOption(command, [&](const Option& option) { text += ZshOption(option); });
        text += ZshOperands(command);
        text += "            && return 0 ;;\n";
    }
    return text + "        esac ;;\n    esac\n}\n_tavolo_cli \"$@\"\n";
}

std::string FishCompletion() {
    std::string text = "# Completion of tavolo-cli for fish. Made by the build of the program's "
                       "table of commands.\ncomplete -c tavolo-cli -f\n";
    for (const Command& command : Commands())
        text += "complete -c tavolo-cli -n __fish_use_subcommand -a " + std::string(command.name) +
                " -d " + ShellQuoted(command.summary) + "\n";
    for (const Option& option : CommonOptions())
        text += FishOption("", option);
    for (const Command& command : Commands())
        text += FishCommand(command);
    return text;
}

}  // namespace cli
