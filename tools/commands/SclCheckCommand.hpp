#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds the subcommand `scl check`: whether captures are as a description has them.
/// @param chosen  set while the command line is parsed, if it asks for this command
void addSclCheckCommand(ProgramDefinition& program, CommandDefinition const& group, Action& chosen);

}  // namespace TalIec61850Tools
