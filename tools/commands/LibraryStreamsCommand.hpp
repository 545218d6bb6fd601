#pragma once

#include "tools/commands/Action.hpp"
#include "tools/library/LibraryCriteria.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/selection/StreamOrder.hpp"

namespace TalIec61850Tools {

/// The arguments of `tal-iec61850 library streams`.
struct LibraryStreamsOptions {
    CommonOptions common;
    LibraryCriteria criteria;
    StreamOrder order;
};

/// Adds the subcommand to a group.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addLibraryStreamsCommand(ProgramDefinition& program, CommandDefinition const& group,
                              Action& chosen);

/// Indexes the captures with the library and writes one row for each stream of its index.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runLibraryStreams(LibraryStreamsOptions const& options);

}  // namespace TalIec61850Tools
