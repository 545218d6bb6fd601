#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds the subcommands that print completions for a shell and the manual page.
/// @param program  must have all its commands when the chosen one runs, and outlive that
/// @param chosen   set while the command line is parsed, if it asks for one of them
void addHelpCommands(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
