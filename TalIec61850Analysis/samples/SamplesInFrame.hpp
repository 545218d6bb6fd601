#pragma once

// Internal: how many samples of a stream come at once.

#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// How many samples of a stream one of its frames has, at most, by the first frames. A frame may
/// have ASDUs of other streams too.
[[nodiscard]] std::uint32_t samplesInFrame(TrafficStream const& stream);

}  // namespace TalIec61850Analysis::detail
