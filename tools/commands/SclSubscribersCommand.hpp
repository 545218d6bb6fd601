#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds the subcommand `scl subscribers`: who listens to which control block.
/// @param chosen  set while the command line is parsed, if it asks for this command
void addSclSubscribersCommand(ProgramDefinition& program, CommandDefinition const& group,
                              Action& chosen);

}  // namespace TalIec61850Tools
