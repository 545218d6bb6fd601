#pragma once

#include <string>
#include <vector>

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// An option of the program or of a command.
struct OptionDescription {
    /// Without its dashes; empty if it has none.
    std::string shortName;
    std::string longName;
    /// The name of its value; empty if it takes none.
    std::string valueName;
    /// The values that it may have; empty if any value is allowed.
    std::vector<std::string> choices;
    std::string text;
};

/// A command of the program.
struct CommandDescription {
    std::string name;
    std::string text;
    std::vector<OptionDescription> options;
    /// The name of its arguments, and what they are; empty if it takes none.
    std::string argumentName;
    std::string argumentText;
    std::vector<std::string> argumentChoices;
    /// What its help has after the options: its own notes, and whole command lines.
    std::string notes;
    std::vector<std::string> examples;
};

/// What manual page and completions are made of.
struct ProgramDescription {
    std::string name;
    std::string text;
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> commands;
};

/// Describes the program by its parser and its definition, so that nothing is written twice.
/// @param program  has all its commands
[[nodiscard]] ProgramDescription describe(ProgramDefinition const& program);

}  // namespace TalIec61850Tools
