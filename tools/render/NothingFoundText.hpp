#pragma once

#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <string>
#include <vector>

#include "tools/selection/PacketCriteria.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// Why no stream meets the criteria, in one line: what there is instead, the nearest first.
/// @param all  every stream of the captures; not empty
[[nodiscard]] std::string whyNoStream(PacketCriteria const& criteria,
                                      std::vector<StreamRow> const& all);

/// Why captures have no stream at all, in one line: what is in them instead.
[[nodiscard]] std::string whyNoTraffic(
    std::vector<TalIec61850Analysis::CaptureSummary const*> const& captures);

}  // namespace TalIec61850Tools
