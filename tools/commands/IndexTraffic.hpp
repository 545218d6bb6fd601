#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <string>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/PacketCriteria.hpp"
#include "tools/selection/StreamPublishers.hpp"

namespace TalIec61850Tools {

/// Indexes the captures of a command, true to the wire, and shows progress.
/// @param criteria    streams that they leave out are not kept
/// @param jobs        how many files are read at a time; 0 for as many as the machine has cores
/// @param publishers  sees all streams, kept or not; null where nobody asks for publishers. Those
/// of
///                    the criteria, where these ask for IEDs
/// @return files numbered as the captures of the run
[[nodiscard]] TalIec61850Analysis::TrafficIndex indexTraffic(
    CommandRun const& run, PacketCriteria const& criteria, std::size_t jobs,
    StreamPublishers* publishers = nullptr);

/// indexTraffic, with times by one clock: where captures have one LAN or lane each, and clocks of
/// their own, the times of some are moved. That, and what cannot be read again for it, is reported.
[[nodiscard]] TalIec61850Analysis::TrafficIndex indexByOneClock(
    CommandRun& run, PacketCriteria const& criteria, std::size_t jobs,
    StreamPublishers* publishers = nullptr);

/// What help says of indexByOneClock.
inline constexpr char const* kClockNotes =
    "Where captures have LAN A or LAN B alone, and their clocks are a millisecond or more apart, "
    "all times are by the clock of those with LAN A, windows too; a line on standard error says "
    "how far the others are from it.";

/// indexTraffic, of which no stream is kept: what the files are, alone.
[[nodiscard]] TalIec61850Analysis::TrafficIndex surveyTraffic(CommandRun const& run,
                                                              std::size_t jobs);

/// Reports what is wrong with the captures, and what of them is not looked into.
void reportFaults(CommandRun& run, TalIec61850Analysis::TrafficIndex const& index);

/// From the earliest to the latest record of all files; of none, 1970.
[[nodiscard]] CaptureSpan spanOf(TalIec61850Analysis::TrafficIndex const& index);

/// What several files together are called: the name of one, "2 files".
[[nodiscard]] std::string nameOfAll(std::vector<CaptureSource> const& captures);

/// The paths by which the captures of a command are opened.
[[nodiscard]] std::vector<std::string> pathsOf(CommandRun const& run);

}  // namespace TalIec61850Tools
