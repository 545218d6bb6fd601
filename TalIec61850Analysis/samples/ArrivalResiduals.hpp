#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// How arrival goes along with the times of samples: arrival less sample time, in nanoseconds. The
/// least is the delay that all have and what the clocks are apart, which cannot be told apart.
struct ArrivalResiduals {
    /// How many samples were looked at: each frame once, by the newest sample in it.
    std::uint64_t samples = 0;
    /// Arrival less sample time, where that is least.
    std::int64_t least = 0;
    // These are counted from the least, and right to 1 %.
    std::int64_t median = 0;        ///< half are above the least by at most this
    std::int64_t percentile90 = 0;  ///< 90 % are above it by at most this
    std::int64_t percentile99 = 0;  ///< 99 % are above it by at most this
    std::int64_t largest = 0;       ///< the largest is above it by this; it is exact
    /// How much faster the clock of the capture runs than that of the publisher, in parts per
    /// million: the slope of what is least; not set where there is less than a second to tell.
    std::optional<double> driftPpm;

    /// Member by member.
    friend bool operator==(ArrivalResiduals const&, ArrivalResiduals const&) = default;
};

/// Compares arrival with the times of samples. Frames are read only where any has a refrTm.
/// @param index   of the captures
/// @param stream  of the index, SV
/// @param given   the rate, in place of what the stream tells
/// @return not set where no sample has both times
/// @throws std::system_error  a capture cannot be read, or no longer has its packets (ESTALE)
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<ArrivalResiduals> arrivalResiduals(
    TrafficIndex const& index, TrafficStream const& stream, SampleRate given = {});

}  // namespace TalIec61850Analysis
