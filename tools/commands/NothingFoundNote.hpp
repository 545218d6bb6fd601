#pragma once

#include "tools/commands/CommandRun.hpp"
#include "tools/options/PacketOptions.hpp"

namespace TalIec61850Tools {

/// Says on standard error that no stream meets the criteria, and what there is.
void noteNoStreams(CommandRun& run, StreamCriteria const& criteria);

/// Says on standard error that a selection has no packet, and what there is: streams by other
/// names, or packets at other times.
/// @param index  of the run
void noteNoPackets(CommandRun& run, CaptureIndex const& index, PacketOptions const& options,
                   PacketSelection const& selection);

}  // namespace TalIec61850Tools
