#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds the subcommand, which writes one row for each stream that came over both ways of HSR or
/// PRP.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addRedundancyCommand(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
