#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <chrono>
#include <cstdint>
#include <limits>

namespace TalIec61850Analysis {

/// An instant, UTC, in integer nanoseconds since 1970: the time of a packet, as the capturing
/// device wrote it. Leap seconds are not counted, as in POSIX.
using CaptureTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// Makes an instant of the two numbers that a capture, or a packet, gives for it.
/// @param seconds      since 1970
/// @param nanoseconds  of that second; those that make up a second or more are carried over, so
///                     that any two numbers give an instant
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT CaptureTime
makeCaptureTime(std::uint32_t seconds, std::uint32_t nanoseconds) noexcept;

/// The time in nanoseconds since 1970.
/// @param time  not before 1970, as no time that `makeCaptureTime` gives is
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::uint64_t nanosecondsSince1970(
    CaptureTime time) noexcept;

/// The instant that is so many nanoseconds after 1970, or before it.
/// @param nanoseconds  any
[[nodiscard]] constexpr CaptureTime captureTimeOf(std::int64_t nanoseconds) noexcept {
    return CaptureTime(std::chrono::nanoseconds(nanoseconds));
}

/// The nanoseconds from 1970 to an instant, below 0 where it is earlier.
/// @param time  any
[[nodiscard]] constexpr std::int64_t nanosecondsOf(CaptureTime time) noexcept {
    return time.time_since_epoch().count();
}

/// The first instant after one: where a time ends that lasts until then.
/// @param nanoseconds  since 1970; the last that a capture can have, which none is after, stays
[[nodiscard]] constexpr std::int64_t afterTime(std::int64_t nanoseconds) noexcept {
    return nanoseconds == std::numeric_limits<std::int64_t>::max() ? nanoseconds : nanoseconds + 1;
}

}  // namespace TalIec61850Analysis
