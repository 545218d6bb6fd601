#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <optional>
#include <stop_token>

namespace TalIec61850Analysis {

/// Brings the captures of an index to one clock, for superviseTraffic, findEvents and all else that
/// makes one history of several captures.
///
/// Where some captures have LAN A of PRP, or lane A of HSR, about alone, and others B, the clocks
/// of those with B are compared with the clock of the others, as pairCopies does: by frames of one
/// source and number with equal octets. Where they are a millisecond or more apart, which is longer
/// than frames take over a network, the times of the captures with B become those by the clock of
/// the captures with A, the constant part of the time over the network taken off too; how far they
/// were ahead is in `clockOffset` of each file. All other captures have one clock. Some frames are
/// read again for that; none where there is one file, or no redundancy.
/// @param index  of captures that are still there
/// @param stop   ends this soon after it is requested: clocks stay as they are
/// @return a file by whose clock times are now; not set where none was moved
/// @throws std::system_error  a capture cannot be read again, or is no longer the one (ESTALE)
TALIEC61850ANALYSIS_EXPORT std::optional<std::uint32_t> alignClocks(
    TrafficIndex& index, std::stop_token const& stop = {});

}  // namespace TalIec61850Analysis
