#pragma once

// Internal: until when streams were watched.

#include <TalIec61850Analysis/supervision/ClockSteps.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Finds the end of the captures that go on from where a stream ends: of its last file, and of the
/// files that were begun before that had ended, or within a second.
class CoverageEnd {
public:
    /// @param steps  of the clocks of the files: the end is told by the clock as it was set last
    CoverageEnd(TrafficIndex const& index, std::vector<std::vector<ClockStep>> const& steps);

    /// In nanoseconds since 1970, or kNoTime.
    [[nodiscard]] std::int64_t of(TrafficStream const& stream) const;

    /// Whether nothing was captured for a while between two times in a row.
    [[nodiscard]] bool isHoleBetween(std::int64_t from, std::int64_t until) const;

private:
    struct Span {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };

    /// By file.
    std::vector<bool> isStepped_;
    /// Whether any is: times of files cannot be compared then.
    bool isAnyStepped_ = false;
    /// Without overlaps, in the order of time.
    std::vector<Span> spans_;
};

}  // namespace TalIec61850Analysis::detail
