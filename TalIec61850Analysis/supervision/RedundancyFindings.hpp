#pragma once

// Internal: what is wrong with the copies of frames, as findings.

#include <TalIec61850Analysis/redundancy/RedundancyFault.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>

namespace TalIec61850Analysis::detail {

/// A fault of copies. Of its places, only packets and times are set. A way is the text "A" or "B":
/// found is that of the packet; expected the way of the copy that is missing, or the other LAN. Of
/// a trailer that does not fit, these are sizes.
[[nodiscard]] Finding findingOf(TrafficIndex const& index, RedundancyFault const& fault);

}  // namespace TalIec61850Analysis::detail
