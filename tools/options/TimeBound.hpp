#pragma once

#include <optional>
#include <string_view>

#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

/// One end of a time window as the user gives it: a point in time, or an offset from the start of
/// the captures.
struct TimeBound {
    bool isRelative = false;
    /// Since 1970, UTC; where relative, since the start of the captures.
    std::chrono::nanoseconds time{};

    /// @param begin  start of the captures
    /// @return the latest time that can be represented, where the sum is beyond it
    [[nodiscard]] CaptureTime resolve(CaptureTime begin) const;

    friend bool operator==(TimeBound const&, TimeBound const&) = default;
};

/// Reads one of
///
///     2024-03-20T10:00:00.28Z      UTC; a blank may replace the T; the Z, the decimals, the
///                                  seconds and the time of day may be missing
///     1710928800.28                seconds since 1970, with up to nine decimals
///     +1.5s                        from the start of the captures: ns, us, ms, s, min or h
///
/// @return none for any other text, for a date that does not exist, and for a time after the year
///         2200
[[nodiscard]] std::optional<TimeBound> parseTimeBound(std::string_view text);

}  // namespace TalIec61850Tools
