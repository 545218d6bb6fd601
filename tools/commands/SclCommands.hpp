#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds the group `scl`: what the description of a station says, and whether captures agree.
/// @param chosen  set while the command line is parsed, if it asks for one of its commands
void addSclCommands(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
