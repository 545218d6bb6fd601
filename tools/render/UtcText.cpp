#include "tools/render/UtcText.hpp"

#include <fmt/format.h>

#include <chrono>

namespace TalIec61850Tools {

std::string toUtcText(TalIec61850Analysis::CaptureTime time) {
    auto const midnight = std::chrono::floor<std::chrono::days>(time);
    std::chrono::year_month_day const date(midnight);
    std::chrono::hh_mm_ss const clock(time - midnight);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:09}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                       clock.subseconds().count());
}

}  // namespace TalIec61850Tools
