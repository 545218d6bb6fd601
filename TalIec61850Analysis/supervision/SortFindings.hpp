#pragma once

// Internal: findings in the order of their times.

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Those of one time: of the whole capture first, then by stream, then by kind.
[[nodiscard]] std::vector<Finding> sortedByTime(std::vector<Finding> findings);

}  // namespace TalIec61850Analysis::detail
