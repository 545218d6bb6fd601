#pragma once

// Internal: what two pieces of one file tell of it together.

#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Adds what the rest of a file holds to what its start holds.
void joinSummaries(CaptureSummary& first, CaptureSummary second);

/// Adds attributes that are not there yet.
/// @return the number that each of the second ones has among the first
[[nodiscard]] std::vector<std::uint32_t> joinAttributes(
    std::vector<StreamAttributes>& first, std::vector<StreamAttributes> const& second);

}  // namespace TalIec61850Analysis::detail
