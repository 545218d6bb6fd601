#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <string_view>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/selection/PacketCriteria.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// Says on standard error that no stream meets the criteria, and what there is.
/// @param index  of the run, with the streams that the criteria let through
void noteNoStreams(CommandRun const& run, TalIec61850Analysis::TrafficIndex const& index,
                   PacketCriteria const& criteria, std::size_t jobs);

/// Says on standard error that a selection has no packet, and what there is: streams by other
/// names, or packets at other times.
/// @param index    of the run, with the streams that the criteria let through
/// @param streams  how many of these there are
void noteNoPackets(CommandRun const& run, TalIec61850Analysis::TrafficIndex const& index,
                   PacketCriteria const& criteria, std::size_t jobs, std::size_t streams);

/// Says on standard error that there is nothing at some time, and when streams have packets.
/// @param rows  of the streams that are meant
/// @param what  there is none of
void noteOtherTimes(CommandRun const& run, std::vector<StreamRow> const& rows,
                    std::string_view what = "no packet in the window");

/// Says on standard error that nothing is redundant.
/// @param streams  how many were looked at
void noteNoRedundancy(CommandRun const& run, std::size_t streams);

/// Says on standard error how many frames are of no stream, though they are GOOSE or SV.
void noteUnread(CommandRun const& run, TalIec61850Analysis::TrafficIndex const& index);

}  // namespace TalIec61850Tools
