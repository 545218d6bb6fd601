#pragma once

// Internal: what changes in the samples of an SV stream that its index does not have.

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <stop_token>

namespace TalIec61850Analysis::detail {

/// Reads the samples of a stream, and tells of each quality that leaves good or is good again, and
/// of samples of another size. `derived` is no fault of a value.
/// @param stop  ends it soon
/// @throws std::system_error  a capture cannot be read, or no longer has the samples (ESTALE)
void superviseSamples(TrafficIndex const& index, std::size_t stream, std::stop_token const& stop,
                      FindingSink sink);

}  // namespace TalIec61850Analysis::detail
