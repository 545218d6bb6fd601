#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Parser/store/Timest.hpp>

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureTime;
using TalIec61850Analysis::nanosecondsSince1970;

/// The time of an indexed packet. Nanoseconds that make up a second or more are carried over.
[[nodiscard]] inline CaptureTime toCaptureTime(TalIec61850Parser::Timest time) {
    return TalIec61850Analysis::makeCaptureTime(time.seconds, time.nanoseconds);
}

}  // namespace TalIec61850Tools
