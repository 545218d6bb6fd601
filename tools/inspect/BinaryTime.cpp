#include "tools/inspect/BinaryTime.hpp"

#include <fmt/format.h>

#include <chrono>

namespace TalIec61850Tools {

namespace {

std::string clockText(std::chrono::milliseconds time) {
    std::chrono::hh_mm_ss const clock(time);
    return fmt::format("{:02}:{:02}:{:02}.{:03}", clock.hours().count(), clock.minutes().count(),
                       clock.seconds().count(), clock.subseconds().count());
}

}  // namespace

std::optional<BinaryTime> readBinaryTime(OctetString const& octets) {
    if (octets.size() != 4 && octets.size() != 6) {
        return std::nullopt;
    }
    BinaryTime time;
    for (std::size_t i = 0; i < 4; ++i) {
        time.milliseconds = time.milliseconds << 8U | octets[i];
    }
    if (octets.size() == 6) {
        time.days = static_cast<std::uint16_t>(octets[4] << 8U | octets[5]);
    }
    return time;
}

std::string toIsoText(BinaryTime const& time) {
    namespace ch = std::chrono;
    ch::milliseconds const sinceMidnight(time.milliseconds);
    if (!time.days) {
        return clockText(sinceMidnight);
    }
    constexpr ch::sys_days kFirstDay = ch::year(1984) / ch::January / 1;
    auto const point = kFirstDay + ch::days(*time.days) + sinceMidnight;
    auto const midnight = ch::floor<ch::days>(point);
    ch::year_month_day const date(midnight);
    return fmt::format("{:04}-{:02}-{:02}T{}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clockText(point - midnight));
}

}  // namespace TalIec61850Tools
