#include "tools/selection/CaptureTime.hpp"

#include <fmt/format.h>

namespace TalIec61850Tools {

CaptureTime toCaptureTime(TalIec61850Parser::Timest time) {
    return TalIec61850Analysis::makeCaptureTime(time.seconds, time.nanoseconds);
}

std::string toUtcText(CaptureTime time) {
    auto const midnight = std::chrono::floor<std::chrono::days>(time);
    std::chrono::year_month_day const date(midnight);
    std::chrono::hh_mm_ss const clock(time - midnight);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:09}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                       clock.subseconds().count());
}

}  // namespace TalIec61850Tools
