#pragma once

#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// How far the frames of an SV stream came from their even course, early or late, in nanoseconds.
/// The course follows the medians of some hundred frames each: neither a constant delay nor a
/// constant drift counts.
struct StreamJitter {
    std::int64_t median = 0;        ///< half are at most this; right to 1 %
    std::int64_t percentile99 = 0;  ///< 99 % are at most this; right to 1 %
    std::int64_t largest = 0;       ///< exact

    /// Member by member.
    friend bool operator==(StreamJitter const&, StreamJitter const&) = default;
};

/// A stream in figures, as supervision saw it. Packets are those that the publisher sent: copies
/// and duplicates count once, and an ASDU counts as one.
struct StreamSummary {
    /// The number of the stream in the index.
    std::size_t stream = 0;
    /// Packets that came.
    std::uint64_t packets = 0;
    /// The earliest and the latest of them, in nanoseconds since 1970, or kNoTime.
    std::int64_t first = kNoTime;
    std::int64_t last = kNoTime;  ///< see `first`

    /// SV: samples a second that the stream is to have, see TrafficIndex::nominalRate.
    std::optional<double> nominalRate;
    /// SV: samples a second by smpCnt and arrival, lost ones counted, over the longest time in
    /// which the counter goes on.
    std::optional<double> measuredRate;

    /// Samples or messages that are missing, at least; a lost state counts as one message.
    std::uint64_t lost = 0;
    /// Packets that came after later ones.
    std::uint64_t late = 0;
    /// Packets that came again, replayed ones included.
    std::uint64_t repeated = 0;
    /// How often counters went on elsewhere.
    std::uint64_t restarts = 0;
    /// The longest time from a packet to the next one, in nanoseconds; not set where no two have
    /// times.
    std::optional<std::int64_t> largestGap;
    /// How many are missing in it.
    std::uint64_t largestGapLost = 0;

    /// SV: not set where nothing tells the rate, or frames are few.
    std::optional<StreamJitter> jitter;
    /// SV: the lowest smpSynch, by what it is worth: 0, then local clocks, then 2; not set where
    /// none has one.
    std::optional<std::uint8_t> lowestSynch;
    /// SV: the last smpSynch.
    std::optional<std::uint8_t> lastSynch;
    /// Whether any packet says that it is simulated.
    bool isSimulated = false;

    /// GOOSE: the least of timeAllowedtoLive over the time to the next message of the state, where
    /// none is missing between; not set where there are no such two. At most 1 means that receivers
    /// can take the publisher for dead with nothing lost.
    std::optional<double> timeAllowedtoLiveMargin;
    /// GOOSE: states that were seen.
    std::uint64_t states = 0;

    std::uint64_t errors = 0;    ///< findings that are errors
    std::uint64_t warnings = 0;  ///< findings that are warnings
    std::uint64_t notes = 0;     ///< findings that are notes

    /// Member by member.
    friend bool operator==(StreamSummary const&, StreamSummary const&) = default;
};

/// Takes summaries without a list of them.
using StreamSummarySink = Sink<StreamSummary>;

}  // namespace TalIec61850Analysis
