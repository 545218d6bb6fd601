#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tools/help/Completions.hpp"

namespace TalIec61850Tools {

namespace {

/// A text between single quotes.
std::string fishQuoted(std::string const& text) {
    std::string result = "'";
    for (char const c : text) {
        result += c == '\'' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    return result + "'";
}

std::string optionLine(std::string const& condition, OptionDescription const& option) {
    std::string line = fmt::format("complete -c tal-iec61850 -n {}", fishQuoted(condition));
    if (!option.shortName.empty()) {
        line += " -s " + option.shortName;
    }
    line += " -l " + option.longName;
    if (!option.choices.empty()) {
        line += fmt::format(" -x -a '{}'", fmt::join(option.choices, " "));
    } else if (!option.valueName.empty()) {
        line += option.valueName == "FILE" ? " -r -F" : " -x";
    }
    return line + " -d " + fishQuoted(option.text) + "\n";
}

/// When a command of a name was given, be it in a group or not.
std::string seen(std::vector<std::string> const& names) {
    return fmt::format("__fish_seen_subcommand_from {}", fmt::join(names, " "));
}

/// When the command may be given.
std::string offering(CommandDescription const& command, ProgramDescription const& program) {
    return command.group.empty()
               ? std::string("__fish_use_subcommand")
               : fishQuoted(fmt::format("{}; and not {}", seen({command.group}),
                                        seen(namesOf(program.commandsIn(command.group)))));
}

/// When the command was given, and not one of the same name that is in a group.
std::string choosing(CommandDescription const& command, ProgramDescription const& program) {
    std::string condition = seen({command.name});
    if (!command.group.empty()) {
        return fmt::format("{}; and {}", seen({command.group}), condition);
    }
    for (auto const& other : program.commands) {
        if (other.name == command.name && !other.group.empty()) {
            condition += fmt::format("; and not {}", seen({other.group}));
        }
    }
    return condition;
}

std::string commandLines(CommandDescription const& command, ProgramDescription const& program) {
    std::string const condition = choosing(command, program);
    std::string lines =
        fmt::format("complete -c tal-iec61850 -n {} -f -a {} -d {}\n", offering(command, program),
                    command.name, fishQuoted(command.text));
    for (auto const& option : command.options) {
        lines += optionLine(condition, option);
    }
    if (!command.argumentChoices.empty()) {
        lines += fmt::format("complete -c tal-iec61850 -n {} -f -a '{}'\n", fishQuoted(condition),
                             fmt::join(command.argumentChoices, " "));
    }
    return lines;
}

}  // namespace

std::string fishCompletion(ProgramDescription const& program) {
    std::string script = "# Completes the command lines of tal-iec61850; fish.\n";
    for (auto const& option : program.options) {
        script += optionLine("__fish_use_subcommand", option);
    }
    for (auto const& command : program.commands) {
        script += commandLines(command, program);
    }
    return script;
}

}  // namespace TalIec61850Tools
