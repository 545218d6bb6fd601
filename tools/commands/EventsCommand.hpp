#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds `events`.
/// @param chosen  set when the command line asks for the command
void addEventsCommand(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
