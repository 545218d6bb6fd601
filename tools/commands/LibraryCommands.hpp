#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds the group `library`: what the library TalIec61850Parser answers, oddities included.
/// @param chosen  set while the command line is parsed, if it asks for one of its commands
void addLibraryCommands(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
