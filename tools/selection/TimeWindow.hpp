#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <optional>
#include <string_view>

#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::TimeWindow;

/// One end of a window of time as it was asked for: a point in time, or a distance from where the
/// captures begin.
struct TimeBound {
    bool isRelative = false;
    /// Since 1970, UTC, or since the begin.
    std::chrono::nanoseconds time{};

    /// @param begin  of the captures
    /// @return no later than there are times
    [[nodiscard]] CaptureTime resolve(CaptureTime begin) const;

    friend bool operator==(TimeBound const&, TimeBound const&) = default;
};

/// Reads one of
///
///     2024-03-20T10:00:00.28Z      UTC; a blank for the T, no Z, and less of it down to the date
///     1710928800.28                seconds since 1970, with up to nine decimals
///     +1.5s                        from the begin of the captures: ns, us, ms, s, min or h
///
/// @return none for anything else, a date that no calendar has, or a time beyond the year 2200
[[nodiscard]] std::optional<TimeBound> parseTimeBound(std::string_view text);

}  // namespace TalIec61850Tools
