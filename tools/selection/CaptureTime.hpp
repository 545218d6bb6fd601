#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <string>

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureTime;
using TalIec61850Analysis::nanosecondsSince1970;

/// The time of a packet. Nanoseconds that make up a second or more are carried over.
[[nodiscard]] CaptureTime toCaptureTime(TalIec61850Parser::Timest time);

/// The time as 2023-11-14T22:13:20.123456789Z, whatever the locale and the time zone.
[[nodiscard]] std::string toUtcText(CaptureTime time);

}  // namespace TalIec61850Tools
