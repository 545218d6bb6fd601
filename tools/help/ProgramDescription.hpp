#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// An option of the program or of a command.
struct OptionDescription {
    /// Without its dashes; empty where it has none.
    std::string shortName;
    std::string longName;
    /// What stands for its value; empty where it takes none.
    std::string valueName;
    /// The values that it may have; empty where any may be.
    std::vector<std::string> choices;
    std::string text;
};

/// A command of the program.
struct CommandDescription {
    std::string name;
    std::string text;
    std::vector<OptionDescription> options;
    /// The name of its arguments, and what they are; empty where it takes none.
    std::string argumentName;
    std::string argumentText;
    std::vector<std::string> argumentChoices;
    /// What its help says below the options: its own notes, and whole command lines.
    std::string notes;
    std::vector<std::string> examples;
};

/// All that help, manual page and completions say of the program.
struct ProgramDescription {
    std::string name;
    std::string text;
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> commands;
};

/// Asks the command line parser, so that what it takes is said once.
[[nodiscard]] ProgramDescription describe(CLI::App const& program);

}  // namespace TalIec61850Tools
