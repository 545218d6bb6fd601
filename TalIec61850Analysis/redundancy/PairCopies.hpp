#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/redundancy/CopyCounts.hpp>
#include <TalIec61850Analysis/redundancy/RedundancyFault.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <stop_token>

namespace TalIec61850Analysis {

/// How copies are paired.
struct PairingOptions {
    /// Frames are counted whose first copy is in the window. All are paired, and the faults of all
    /// are told.
    TimeWindow window = {};
    /// Ends pairing soon after a stop is requested; what was counted until then is given.
    std::stop_token stop = {};
};

/// Pairs the copies that came over both lanes of HSR, or both LANs of PRP: those of one source and
/// sequence number, within 400 ms.
///
/// The index should hold all streams of a source: they share the sequence numbers, and the ways
/// over which the source is heard. A way may have a capture of its own, with a clock of its own;
/// how far that is away is estimated where two taps have one way each. Frames without a time, and
/// those that an earlier file has at the same time, are passed over. Where a source came over both
/// ways, its frames are read again, each once, front to back. Memory grows with streams, and with
/// what comes within 400 ms.
/// @param index    of captures that are still there
/// @param options  what is counted
/// @param sink     called with each fault, once it is over; those of one kind and stream in their
///                 order
/// @throws std::system_error  a capture cannot be read again, or is no longer the one (ESTALE)
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT TrafficRedundancy pairCopies(TrafficIndex const& index,
                                                                      PairingOptions const& options,
                                                                      RedundancyFaultSink sink);

}  // namespace TalIec61850Analysis
