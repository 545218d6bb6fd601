#pragma once

#include <list>
#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace TalIec61850Tools {

/// The values that options may have; an option that is not listed may have any.
using OptionChoices = std::map<CLI::Option const*, std::vector<std::string>>;

/// A subcommand, or a group of them: its parser, and what help, manual page and completions say
/// that the parser does not keep.
struct CommandDefinition {
    /// Owned by the program's parser.
    CLI::App* parser = nullptr;
    /// What its rows mean; empty, or lines that end with a line end.
    std::string notes;
    /// Whole command lines.
    std::vector<std::string> examples;
    /// Whether it has the output formats and exit statuses of the commands that read captures.
    bool readsCaptures = false;
    OptionChoices choices;
    /// Whether it only holds other commands.
    bool isGroup = false;
};

/// Lets the parser refuse every value of an option but these. Letter case does not count: the value
/// is changed to that of the choice.
/// @param option  one of the command's
void allowOnly(CommandDefinition& command, CLI::Option& option, std::vector<std::string> choices);

/// The program with its subcommands, in the order of the help.
struct ProgramDefinition {
    /// Must outlive the definition.
    CLI::App& parser;
    /// References to these stay valid when more are added.
    std::list<CommandDefinition> commands;
};

/// Adds a subcommand.
/// @param text  what it does, in a sentence
/// @return valid as long as the program
CommandDefinition& addCommand(ProgramDefinition& program, std::string const& name,
                              std::string const& text);

/// Adds a subcommand to a group.
CommandDefinition& addCommand(ProgramDefinition& program, CommandDefinition const& group,
                              std::string const& name, std::string const& text);

/// Adds a group of subcommands, which does nothing itself.
/// @param text  what they are, in a sentence
/// @return valid as long as the program
CommandDefinition& addCommandGroup(ProgramDefinition& program, std::string const& name,
                                   std::string const& text);

/// The words that lead to a command, without the program's name: {"streams"}, or the name of its
/// group and its own.
[[nodiscard]] std::vector<std::string> wordsOf(CLI::App const& command);

/// How a message about a command starts: "library judge: ", nothing for the program itself.
[[nodiscard]] std::string messageStart(CLI::App const& command);

/// How a message about a command ends: "see tal-iec61850 library judge --help".
[[nodiscard]] std::string seeHelp(CLI::App const& command);

}  // namespace TalIec61850Tools
