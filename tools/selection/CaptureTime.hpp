#pragma once

#include <TalIec61850Parser/store/Timest.hpp>
#include <chrono>
#include <cstdint>
#include <string>

namespace TalIec61850Tools {

/// A point in time, UTC, in nanoseconds since 1970.
using CaptureTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// The time of a packet. Nanoseconds that make up a second or more are carried over.
[[nodiscard]] CaptureTime toCaptureTime(TalIec61850Parser::Timest time);

/// The time in nanoseconds since 1970; those of packets are never before.
[[nodiscard]] std::uint64_t nanosecondsSince1970(CaptureTime time);

/// The time as 2023-11-14T22:13:20.123456789Z, whatever the locale and the time zone.
[[nodiscard]] std::string toUtcText(CaptureTime time);

}  // namespace TalIec61850Tools
