#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>

#include "tools/help/Completions.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kBegin = R"(# Completes the command lines of tal-iec61850; bash.
_tal_iec61850() {
    local current=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    local command= words= files= word
    # To bash, --option=value is three words.
    if [ "$current" = = ]; then
        current=
    elif [ "$option" = = ]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case ${command:+$command/}$word in
)";

constexpr char const* kEnd = R"(            esac ;;
    esac
    if [ -n "$files" ]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}
complete -F _tal_iec61850 tal-iec61850
)";

/// What the script calls a command: one word, also in a group.
std::string keyOf(CommandDescription const& command) {
    return command.group.empty() ? command.name : command.group + "/" + command.name;
}

std::vector<std::string> optionWords(std::vector<OptionDescription> const& options) {
    std::vector<std::string> words;
    std::transform(options.begin(), options.end(), std::back_inserter(words),
                   [](OptionDescription const& option) { return "--" + option.longName; });
    return words;
}

/// What is offered after an option that takes a value.
std::string valueCase(std::string const& command, OptionDescription const& option) {
    std::string names = fmt::format("{}:--{}", command, option.longName);
    if (!option.shortName.empty()) {
        names += fmt::format("|{}:-{}", command, option.shortName);
    }
    std::string const action = option.valueName == "FILE"
                                   ? "files=yes"
                                   : fmt::format("words='{}'", fmt::join(option.choices, " "));
    return fmt::format("        {}) {} ;;\n", names, action);
}

/// What is offered anywhere else after a command.
std::string commandCase(CommandDescription const& command, ProgramDescription const& program) {
    if (command.isGroup) {
        return fmt::format("                {}) words='{} {}' ;;\n", command.name,
                           fmt::join(namesOf(program.commandsIn(command.name)), " "),
                           fmt::join(optionWords(command.options), " "));
    }
    std::string const arguments =
        command.argumentName == "FILE"
            ? std::string("files=yes")
            : fmt::format("words='{}'", fmt::join(command.argumentChoices, " "));
    return fmt::format("                {}) [[ $current == -* ]] && words='{}' || {} ;;\n",
                       keyOf(command), fmt::join(optionWords(command.options), " "), arguments);
}

}  // namespace

std::string bashCompletion(ProgramDescription const& program) {
    std::vector<std::string> names;
    std::vector<std::string> groups;
    std::string values;
    std::string commands;
    for (auto const& command : program.commands) {
        (command.isGroup ? groups : names).push_back(keyOf(command));
        commands += commandCase(command, program);
        for (auto const& option : command.options) {
            values += option.valueName.empty() ? std::string() : valueCase(keyOf(command), option);
        }
    }
    std::string script = kBegin;
    script += fmt::format("            {}) command=${{command:+$command/}}$word; break ;;\n",
                          fmt::join(names, "|"));
    if (!groups.empty()) {
        script += fmt::format("            {}) command=$word ;;\n", fmt::join(groups, "|"));
    }
    script += "        esac\n    done\n    case $command:$option in\n" + values;
    script += "        *)\n            case $command in\n";
    script += fmt::format("                '') words='{} {}' ;;\n",
                          fmt::join(namesOf(program.commandsIn("")), " "),
                          fmt::join(optionWords(program.options), " "));
    return script + commands + kEnd;
}

}  // namespace TalIec61850Tools
