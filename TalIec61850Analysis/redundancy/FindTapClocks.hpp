#pragma once

// Internal: which captures are of one tap, and how far their clocks are apart.

#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>
#include <TalIec61850Analysis/redundancy/TapClock.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <stop_token>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Looks at what files have of both ways. Where some have A alone, and some B alone, about, the
/// clocks of the latter are compared with those of the former: by frames of one source and sequence
/// number whose octets are the same. A file that has no such frame has the clock of the one next to
/// it that has. All other files have one clock.
/// @return by file
/// @throws std::system_error  a capture cannot be read again
[[nodiscard]] std::vector<TapClock> findTapClocks(TrafficIndex const& index,
                                                  RedundantSources const& sources,
                                                  std::stop_token const& stop);

}  // namespace TalIec61850Analysis::detail
