#pragma once

#include <string>

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// How the help of a command ends: its notes, what all commands that read captures have in common,
/// its examples.
[[nodiscard]] std::string helpFooter(CommandDefinition const& command);

/// Ends the help of each command so.
/// @param program  has all its commands with their notes and examples
void addHelpFooters(ProgramDefinition& program);

}  // namespace TalIec61850Tools
