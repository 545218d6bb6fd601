#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommonOptions.hpp"

namespace TalIec61850Tools {

/// Adds the subcommand to the program.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addCapturesCommand(ProgramDefinition& program, Action& chosen);

/// Reads the captures and writes one row for each, then a summary.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runCaptures(CommonOptions const& options);

}  // namespace TalIec61850Tools
