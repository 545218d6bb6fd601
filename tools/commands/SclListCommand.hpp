#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds the subcommand `scl list`: control blocks of a description, their members, what is wrong
/// with it.
/// @param chosen  set while the command line is parsed, if it asks for this command
void addSclListCommand(ProgramDefinition& program, CommandDefinition const& group, Action& chosen);

}  // namespace TalIec61850Tools
