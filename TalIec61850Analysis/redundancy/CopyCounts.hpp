#pragma once

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// Times of the copies over B minus those over A, in nanoseconds, as the captures say them.
struct TimeDifferences {
    std::int64_t min = 0;  ///< the least
    std::int64_t p50 = 0;  ///< half of them are at most this
    std::int64_t p99 = 0;  ///< 99 % are at most this
    std::int64_t max = 0;  ///< the largest

    /// Member by member.
    friend bool operator==(TimeDifferences const&, TimeDifferences const&) = default;
};

/// Over which ways frames came. A frame that was sent twice is one here, whatever came of it.
struct CopyCounts {
    /// The kind that most of the frames have: HSR, whose lanes A and B are, or PRP with its LANs.
    Redundancy redundancy = Redundancy::none;
    /// Once over each.
    std::uint64_t both = 0;
    /// Once, over A. This includes frames at the ends of the captures, whose copy may be outside.
    std::uint64_t onlyA = 0;
    /// Once, over B, likewise.
    std::uint64_t onlyB = 0;
    /// More than once over one way. What several taps have is no further copy.
    std::uint64_t more = 0;
    /// PRP: twice with the same LAN, and not with the other one.
    std::uint64_t wrongLan = 0;
    /// Of `both`: those that came over A first.
    std::uint64_t firstA = 0;
    /// Of `both`: those that came over B first.
    std::uint64_t firstB = 0;
    /// Of `both`; not set where there is none. The median and the 99th percentile are exact as long
    /// as no more than two million values differ; beyond that they are rounded down by less than
    /// one in a million of the range.
    std::optional<TimeDifferences> differences;
    /// Where one tap has A and another one B: what the clock of B is ahead of that of A, estimated
    /// by frames that both have, in nanoseconds. The constant part of the time over the network is
    /// in it: nothing tells the two apart.
    std::optional<std::int64_t> clockOffset;
    /// How often copies over A are missing, one after the other as one. Copies are missing that the
    /// captures should have: see `RedundancyFaultKind::copyMissing`.
    std::uint64_t missingRunsA = 0;
    /// How often copies over B are missing, likewise.
    std::uint64_t missingRunsB = 0;
    /// Frames with copies of other octets.
    std::uint64_t differs = 0;

    /// Frames of all kinds.
    [[nodiscard]] std::uint64_t frames() const noexcept {
        return both + onlyA + onlyB + more + wrongLan;
    }

    /// Member by member.
    friend bool operator==(CopyCounts const&, CopyCounts const&) = default;
};

/// The frames of a stream.
struct StreamRedundancy {
    /// The number of the stream in the index.
    std::size_t stream = 0;
    /// What became of them.
    CopyCounts counts;

    /// Member by member.
    friend bool operator==(StreamRedundancy const&, StreamRedundancy const&) = default;
};

/// The frames of a source, those of all its streams. One that is of several streams counts once.
struct SourceRedundancy {
    /// Where the frames come from. Not set where a cooked capture has no such address: then each
    /// stream is a source of its own.
    std::optional<MacAddress> source;
    /// What became of them.
    CopyCounts counts;

    /// Member by member.
    friend bool operator==(SourceRedundancy const&, SourceRedundancy const&) = default;
};

/// What copies came of the frames of an index.
struct TrafficRedundancy {
    /// The streams that have frames with an HSR tag or a PRP trailer, in the order of the index.
    std::vector<StreamRedundancy> streams;
    /// The sources that have such frames, in the order of their first streams.
    std::vector<SourceRedundancy> sources;

    /// Member by member.
    friend bool operator==(TrafficRedundancy const&, TrafficRedundancy const&) = default;
};

}  // namespace TalIec61850Analysis
