#pragma once

#include <cstddef>

#include "tools/commands/Action.hpp"
#include "tools/options/CommonOptions.hpp"

namespace TalIec61850Tools {

/// The arguments of `tal-iec61850 captures`.
struct CapturesOptions {
    CommonOptions common;
    /// How many files are read at a time; 0 for as many as the machine has cores.
    std::size_t jobs = 0;
};

/// Adds the subcommand to the program.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addCapturesCommand(ProgramDefinition& program, Action& chosen);

/// Reads the captures and writes one row for each, then a summary.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runCaptures(CapturesOptions const& options);

}  // namespace TalIec61850Tools
