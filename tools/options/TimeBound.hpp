#pragma once

#include <optional>
#include <string_view>

#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

/// What a time is counted from.
enum class TimeOrigin {
    epoch,  ///< 1970, UTC
    begin,  ///< the start of the captures
    end,    ///< the end of the captures, backwards
    day,    ///< midnight of the day on which the captures start
};

/// One end of a time window as the user gives it.
struct TimeBound {
    TimeOrigin origin = TimeOrigin::epoch;
    std::chrono::nanoseconds time{};
    /// Of a time of day: how far its clock is ahead of UTC.
    std::chrono::nanoseconds aheadOfUtc{};

    /// @return the latest time that can be represented, where the sum is beyond it
    [[nodiscard]] CaptureTime resolve(CaptureSpan const& captures) const;

    /// Whether this is before the other one in whatever captures.
    [[nodiscard]] bool isSurelyBefore(TimeBound const& other) const;

    friend bool operator==(TimeBound const&, TimeBound const&) = default;
};

/// Reads one of
///
///     2024-03-20T10:00:00.28Z      UTC; a blank may replace the T; the Z, the decimals, the
///                                  seconds and the time of day may be missing
///     2024-03-20T11:00:00+01:00    of a clock that is ahead of UTC
///     10:00:00.28                  on the day on which the captures start, UTC; with an offset, on
///                                  the day by that clock
///     1710928800.28                seconds since 1970, with up to nine decimals
///     +1.5s                        from the start of the captures: ns, us, ms, s, min or h, and
///                                  seconds where no unit is given
///     -5s                          before the end of the captures
///
/// @return none for any other text, for a date that does not exist, and for a time before 1970 or
///         after the year 2200
[[nodiscard]] std::optional<TimeBound> parseTimeBound(std::string_view text);

}  // namespace TalIec61850Tools
