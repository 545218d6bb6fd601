#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds `check`.
/// @param chosen  set when the command line asks for the command
void addCheckCommand(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
