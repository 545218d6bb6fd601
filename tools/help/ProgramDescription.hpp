#pragma once

#include <string>
#include <string_view>
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

/// A command of the program, or a group of commands.
struct CommandDescription {
    std::string name;
    /// The name of its group; empty if it is in none.
    std::string group;
    bool isGroup = false;
    std::string text;
    std::vector<OptionDescription> options;
    /// The name of its arguments, and what they are; empty if it takes none.
    std::string argumentName;
    std::string argumentText;
    std::vector<std::string> argumentChoices;
    /// What its help has after the options: its own notes, and whole command lines.
    std::string notes;
    std::vector<std::string> examples;

    /// What is written to call it: its group and its name.
    [[nodiscard]] std::string fullName() const { return group.empty() ? name : group + " " + name; }
};

/// What manual page and completions are made of.
struct ProgramDescription {
    std::string name;
    std::string text;
    std::vector<OptionDescription> options;
    /// Groups as well as their commands.
    std::vector<CommandDescription> commands;

    /// The commands of a group; with an empty name, those that are in none.
    [[nodiscard]] std::vector<CommandDescription> commandsIn(std::string_view group) const;
};

/// The names of commands, without their groups.
[[nodiscard]] std::vector<std::string> namesOf(std::vector<CommandDescription> const& commands);

/// Describes the program by its parser and its definition, so that nothing is written twice.
/// @param program  has all its commands
[[nodiscard]] ProgramDescription describe(ProgramDefinition const& program);

}  // namespace TalIec61850Tools
