#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds `report`, which writes one page of what happened.
/// @param chosen  set when the command line asks for it
void addReportCommand(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
