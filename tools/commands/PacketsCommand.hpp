#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/PacketOptions.hpp"

namespace TalIec61850Tools {

/// Adds the subcommand to the program.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addPacketsCommand(ProgramDefinition& program, Action& chosen);

/// Indexes the captures and writes one row per wanted packet, in time order, then a summary.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runPackets(PacketOptions const& options);

}  // namespace TalIec61850Tools
