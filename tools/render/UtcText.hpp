#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <string>

#include "tools/output/Cell.hpp"

namespace TalIec61850Tools {

/// The time as 2023-11-14T22:13:20.123456789Z, whatever the locale and the time zone.
[[nodiscard]] std::string toUtcText(TalIec61850Analysis::CaptureTime time);

/// The same, in place.
[[nodiscard]] ShortText toUtcCell(TalIec61850Analysis::CaptureTime time);

}  // namespace TalIec61850Tools
