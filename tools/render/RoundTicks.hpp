#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// Where an axis of time has its ticks.
struct TimeTicks {
    /// From tick to tick, in nanoseconds: 1, 2 or 5 of a power of ten up to half a second, then 1,
    /// 2, 5, 10, 15 or 30 seconds or minutes, 1, 2, 3, 6 or 12 hours, then 1, 2 or 5 of a power of
    /// ten in days.
    std::int64_t step = 1;
    /// Whole multiples of it since 1970, in nanoseconds, ascending.
    std::vector<std::int64_t> times;
};

/// A step that an axis of time may have, see TimeTicks::step.
struct TimeStep {
    /// In nanoseconds.
    std::int64_t length = 1;
    /// The part of an instant's text that labels have, see toUtcText: its first character, and the
    /// one after its last.
    std::size_t first = 0;
    std::size_t end = 0;
};

/// All of them, ascending.
[[nodiscard]] std::vector<TimeStep> const& timeSteps();

/// The ticks of an axis of time.
/// @param from       the first instant of the axis, in nanoseconds since 1970
/// @param to         the last one, likewise
/// @param mostSteps  how many steps may be as long as the axis, at most; 0 is taken for 1. That is
///                   the length of the axis by the room that a label takes. There is at most one
///                   tick more
/// @return without ticks where no multiple is on the axis, or `to` is before `from`
[[nodiscard]] TimeTicks roundTimes(std::int64_t from, std::int64_t to, std::size_t mostSteps);

/// Where an axis of values has its ticks.
struct ValueTicks {
    /// From tick to tick: 1, 2 or 5 of a power of ten.
    double step = 1;
    /// Whole multiples of it, ascending. Three steps of 0.1 are 0.3: doubles as a text has them.
    std::vector<double> values;
};

/// The ticks of an axis of values.
/// @param from       the least value of the axis
/// @param to         the largest one
/// @param mostSteps  as of roundTimes
/// @return `from` alone where both are one value, or so near to each other that doubles do not tell
///         multiples apart; without ticks where one is not finite, or `to` is below `from`
[[nodiscard]] ValueTicks roundValues(double from, double to, std::size_t mostSteps);

/// The time of day at a tick, UTC, as exact as its step needs: 10:00:00.25, 10:00:15, 10:15; with a
/// step of days, the day: 2024-03-20.
/// @param time  in nanoseconds since 1970
/// @param step  of TimeTicks, in nanoseconds
[[nodiscard]] std::string tickText(std::int64_t time, std::int64_t step);

/// The day of a time, UTC: 2024-03-20.
/// @param time  in nanoseconds since 1970
[[nodiscard]] std::string dayText(std::int64_t time);

}  // namespace TalIec61850Tools
