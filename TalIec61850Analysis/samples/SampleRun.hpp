#pragma once

#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// Why samples are counted anew.
enum class RunStart : std::uint8_t {
    first,       ///< they are the stream's first
    restart,     ///< smpCnt goes on elsewhere, in no time in which so many could be lost
    pause,       ///< nothing was captured for so long that nothing is taken for lost
    clockStep,   ///< smpCnt goes on, but the clock of the capture jumped
    rateChange,  ///< the rate is another
    uncounted,   ///< smpCnt is absent from here on, or is there again
};

/// Samples of a stream, one after the other, that are counted in one course.
struct SampleRun {
    /// Why it begins.
    RunStart start = RunStart::first;
    /// Its first packet.
    PacketRef first;
    /// The packet before that; not set for the first run.
    std::optional<PacketRef> before;
    /// The rate that times are computed with.
    SampleRate rate;
    /// What tells that rate.
    RateSource rateSource = RateSource::none;
    /// The rate by smpCnt and arrival, samples a second; 0 where they do not tell.
    double measuredRate = 0;
    /// The rate by the largest smpCnt before it begins again; 0 where that was not met.
    std::uint32_t countedRate = 0;
    /// smpRate or smpCnt contradict the rate.
    bool isRateContradicted = false;

    /// Member by member.
    friend bool operator==(SampleRun const&, SampleRun const&) = default;
};

/// What became of the samples of a stream, as far as they were gone through.
struct SampleCounts {
    /// Samples that came, each once.
    std::uint64_t received = 0;
    /// Samples that never came, between others that did.
    std::uint64_t lost = 0;
    /// Samples that came after later ones: they are among those that came.
    std::uint64_t late = 0;
    /// Samples that came again, and no copy over another LAN or lane.
    std::uint64_t repeated = 0;
    /// Runs.
    std::uint64_t runs = 0;

    /// Member by member.
    friend bool operator==(SampleCounts const&, SampleCounts const&) = default;
};

}  // namespace TalIec61850Analysis
