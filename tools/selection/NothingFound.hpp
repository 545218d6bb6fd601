#pragma once

#include <string>
#include <vector>

#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// Why no stream meets the criteria, in one line: what there is instead, the nearest first.
/// @param all  every stream of the captures
[[nodiscard]] std::string whyNoStream(StreamCriteria const& criteria,
                                      std::vector<StreamIdentity> const& all);

}  // namespace TalIec61850Tools
