#pragma once

// Internal: what changes in the ASDUs of an SV stream that its index does not have.

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <stop_token>

namespace TalIec61850Analysis::detail {

/// Reads the ASDUs of a stream in the order in which they came, and tells of each quality that
/// leaves good or is good again, of seqData of another size, of another clock (gmIdentity), and of
/// times (refrTm) that begin to say that their clock failed or is not synchronized. `derived` is no
/// fault of a value.
/// @param stop  ends it soon
/// @throws std::system_error  a capture cannot be read, or no longer has the ASDUs (ESTALE)
void superviseSamples(TrafficIndex const& index, std::size_t stream, std::stop_token const& stop,
                      FindingSink sink);

}  // namespace TalIec61850Analysis::detail
