#pragma once

// Internal: where on the axis of a picture a sample is.

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// The time of a sample, or its arrival where it has none, as windows of SampleReader go; kNoTime
/// without either.
[[nodiscard]] inline std::int64_t rowTime(SampleBlock const& block, std::size_t row) noexcept {
    std::int64_t const time = block.sampleTimes[row];
    return time == kNoTime ? block.arrivals[row] : time;
}

}  // namespace TalIec61850Analysis::detail
