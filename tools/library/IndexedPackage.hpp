#pragma once

#include <TalIec61850Parser/store/Package.hpp>

#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

/// Whether the library found where the packet's PDU begins. Others have neither position nor time.
[[nodiscard]] inline bool isPlaced(TalIec61850Parser::Package const& package) {
    return package.position != 0;
}

/// The time of an indexed packet. Nanoseconds that make up a second or more are carried over.
[[nodiscard]] inline CaptureTime toCaptureTime(TalIec61850Parser::Timest time) {
    return TalIec61850Analysis::makeCaptureTime(time.seconds, time.nanoseconds);
}

}  // namespace TalIec61850Tools
