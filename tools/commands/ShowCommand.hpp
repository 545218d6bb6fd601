#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/PacketOptions.hpp"

namespace TalIec61850Tools {

/// Adds the subcommand to the program.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addShowCommand(ProgramDefinition& program, Action& chosen);

/// Indexes the captures and writes the wanted packets in full, in time order.
/// @param options  its FILE arguments are files, or all of them FILE@POSITION
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runShow(PacketOptions const& options);

}  // namespace TalIec61850Tools
