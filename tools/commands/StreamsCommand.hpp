#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/selection/PacketCriteria.hpp"
#include "tools/selection/StreamOrder.hpp"

namespace TalIec61850Tools {

/// The arguments of `tal-iec61850 streams`.
struct StreamsOptions {
    CommonOptions common;
    PacketCriteria criteria;
    StreamOrder order;
};

/// Adds the subcommand.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addStreamsCommand(ProgramDefinition& program, Action& chosen);

/// Writes one row for each stream of the captures.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runStreams(StreamsOptions const& options);

}  // namespace TalIec61850Tools
