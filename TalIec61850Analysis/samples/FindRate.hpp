#pragma once

// Internal: how fast a publisher samples, from one packet on.

#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <TalIec61850Analysis/samples/SampleCounter.hpp>
#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// The rate of some packets of a stream, one after the other.
struct FoundRate {
    SampleRate rate;
    RateSource source = RateSource::none;
    /// Samples a second by smpCnt and arrival; 0 where they do not tell.
    double measured = 0;
    /// By the largest smpCnt before it begins again; 0 where that was not met.
    std::uint32_t counted = 0;
    /// smpCnt begins again there.
    std::uint32_t wrap = 65536;
    /// Whether smpCnt is the number of the sample in its second.
    bool countsSeconds = false;
    /// Whether smpRate says another rate than is used, or smpCnt is beyond it.
    bool isContradicted = false;
    /// ASDUs in a frame, at most.
    std::uint32_t asdus = 1;
    /// How many packets of the walk it holds for.
    std::uint64_t packets = 0;

    /// How samples are counted.
    [[nodiscard]] CountRule countRule() const {
        return {.wrap = wrap, .interval = rate.interval(), .atOnce = asdus};
    }
};

/// Finds the rate, and up to where it is the same: until smpRate or smpMod change, or the rate of
/// arrival does.
///
/// What smpCnt shows, its largest value before 0, goes before what is declared. It counts only
/// within 1 % of the rate of arrival.
/// @param course  before the first packet
/// @param given   by the caller, in place of all that
[[nodiscard]] FoundRate findRate(TrafficIndex const& index, TrafficStream const& stream,
                                 PacketCourse course, SampleRate given);

}  // namespace TalIec61850Analysis::detail
