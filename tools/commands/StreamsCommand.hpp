#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/selection/StreamCriteria.hpp"
#include "tools/selection/StreamOrder.hpp"

namespace TalIec61850Tools {

/// The arguments of `tal-iec61850 streams`.
struct StreamsOptions {
    CommonOptions common;
    StreamCriteria criteria;
    StreamOrder order;
};

/// Adds the subcommand to the program.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addStreamsCommand(ProgramDefinition& program, Action& chosen);

/// Adds the subcommand with the library's own index to a group.
void addLibraryStreamsCommand(ProgramDefinition& program, CommandDefinition const& group,
                              Action& chosen);

/// Indexes the captures and writes one row per wanted stream, then a summary.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runStreams(StreamsOptions const& options);

}  // namespace TalIec61850Tools
