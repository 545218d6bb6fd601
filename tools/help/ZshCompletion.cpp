#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "tools/help/Completions.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kZshBegin = R"(#compdef tal-iec61850
# Completes the command lines of tal-iec61850; zsh.
_tal_iec61850() {
    local context state state_descr line
    typeset -A opt_args
)";

constexpr char const* kZshEnd = R"(    esac
}
if [ "$funcstack[1]" = _tal_iec61850 ]; then
    _tal_iec61850 "$@"
else
    compdef _tal_iec61850 tal-iec61850
fi
)";

/// A text between single quotes, in which _arguments reads brackets and colons.
std::string zshQuoted(std::string const& text) {
    std::string result;
    for (char const c : text) {
        if (c == '\'') {
            result += "'\\''";
        } else {
            result += c == '[' || c == ']' || c == ':' ? std::string("\\") + c : std::string(1, c);
        }
    }
    return result;
}

/// The value of an option, as _arguments reads it.
std::string valueOf(OptionDescription const& option) {
    if (option.valueName.empty()) {
        return {};
    }
    std::string const action =
        option.valueName == "FILE"
            ? "_files"
            : (option.choices.empty() ? std::string()
                                      : fmt::format("({})", fmt::join(option.choices, " ")));
    return fmt::format(":{}:{}", zshQuoted(option.valueName), action);
}

std::string optionArgument(OptionDescription const& option) {
    std::string const tail = fmt::format("[{}]{}'", zshQuoted(option.text), valueOf(option));
    // The value of a long option may follow =, that of a short one at once.
    bool const takesValue = !option.valueName.empty();
    std::string text = fmt::format("'*--{}{}{}", option.longName, takesValue ? "=" : "", tail);
    if (!option.shortName.empty()) {
        text += fmt::format(" '*-{}{}{}", option.shortName, takesValue ? "+" : "", tail);
    }
    return text;
}

/// The commands among which the first argument chooses.
std::string chooseCommand(std::vector<CommandDescription> const& commands) {
    std::vector<std::string> choices;
    std::transform(commands.begin(), commands.end(), std::back_inserter(choices),
                   [](CommandDescription const& command) {
                       return fmt::format(R"({}\:"{}")", command.name, zshQuoted(command.text));
                   });
    return fmt::format("'1:command:(({}))'", fmt::join(choices, " "));
}

std::string zshCommandCase(CommandDescription const& command, ProgramDescription const& program);

/// What follows the name of a group: one of its commands, and what that takes.
// NOLINTNEXTLINE(misc-no-recursion): as deep as groups of commands
std::string groupCase(CommandDescription const& group, ProgramDescription const& program) {
    auto const commands = program.commandsIn(group.name);
    std::string text = fmt::format("        {})\n            _arguments -C", group.name);
    for (auto const& option : group.options) {
        text += " \\\n                " + optionArgument(option);
    }
    text += " \\\n                " + chooseCommand(commands);
    text += " \\\n                '*::argument:->arguments'\n";
    text += "            [[ $state == arguments ]] || return 0\n            case $words[1] in\n";
    for (auto const& command : commands) {
        text += zshCommandCase(command, program);
    }
    return text + "            esac ;;\n";
}

// NOLINTNEXTLINE(misc-no-recursion): as deep as groups of commands
std::string zshCommandCase(CommandDescription const& command, ProgramDescription const& program) {
    if (command.isGroup) {
        return groupCase(command, program);
    }
    std::string text = fmt::format("        {})\n            _arguments", command.name);
    for (auto const& option : command.options) {
        text += " \\\n                " + optionArgument(option);
    }
    std::string const action = command.argumentName == "FILE"
                                   ? "_files"
                                   : fmt::format("({})", fmt::join(command.argumentChoices, " "));
    if (!command.argumentName.empty()) {
        text += fmt::format(" \\\n                '*:{}:{}'", command.argumentName, action);
    }
    return text + " ;;\n";
}

}  // namespace

std::string zshCompletion(ProgramDescription const& program) {
    std::string script = kZshBegin;
    script += "    _arguments -C";
    for (auto const& option : program.options) {
        script += " \\\n        " + optionArgument(option);
    }
    std::string cases;
    for (auto const& command : program.commandsIn("")) {
        cases += zshCommandCase(command, program);
    }
    script += " \\\n        " + chooseCommand(program.commandsIn(""));
    script += " \\\n        '*::argument:->arguments'\n";
    script += "    [[ $state == arguments ]] || return 0\n    case $words[1] in\n";
    return script + cases + kZshEnd;
}

}  // namespace TalIec61850Tools
