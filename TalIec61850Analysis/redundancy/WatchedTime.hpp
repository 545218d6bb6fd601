#pragma once

// Internal: when a way of a source was captured.

#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>
#include <TalIec61850Analysis/redundancy/TapClock.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// The times from the first to the last record of the captures that have a way of a source.
/// Captures that are begun within a second after others go on from them.
class WatchedTime {
public:
    /// @param clocks  by file
    WatchedTime(TrafficIndex const& index, RedundantSources const& sources,
                std::span<TapClock const> clocks);

    /// Whether captures of a way go on for 400 ms before and after a time.
    /// @param time  by the clock of the captures of A, in nanoseconds since 1970
    [[nodiscard]] bool isWatched(std::uint32_t source, std::size_t way, std::int64_t time) const;

private:
    struct Span {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };
    /// In the order of time, without overlaps.
    using Spans = std::vector<Span>;

    /// Many sources share them.
    std::vector<Spans> spans_;
    /// By source and way.
    std::vector<std::array<std::size_t, 2>> spansOf_;
};

}  // namespace TalIec61850Analysis::detail
