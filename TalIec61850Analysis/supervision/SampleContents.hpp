#pragma once

// Internal: what changes in the ASDUs of an SV stream that its index does not have.

#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Takes a finding of a stream.
using StreamFindingSink = std::function<void(std::size_t stream, Finding const& finding)>;

/// Reads the ASDUs of streams, those of each in the order in which they came, and tells of each
/// quality that leaves good or is good again, of seqData of another size, of another clock
/// (gmIdentity), and of times (refrTm) that begin to say that their clock failed or is not
/// synchronized. `derived` is no fault of a value. Captures are read front to back, once for all
/// of the streams.
/// @param streams  of the index, SV
/// @param layouts  what samples are described as, by the number of the stream; may be empty
/// @param stop     ends it soon
/// @throws std::system_error  a capture cannot be read, or no longer has the ASDUs (ESTALE)
void superviseSamples(TrafficIndex const& index, std::vector<std::size_t> const& streams,
                      std::vector<std::optional<SampleLayout>> const& layouts,
                      std::stop_token const& stop, StreamFindingSink const& sink);

}  // namespace TalIec61850Analysis::detail
