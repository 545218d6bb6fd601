#include "tools/plot/TimeAxis.hpp"

#include <algorithm>
#include <cstddef>
#include <string>

#include "tools/plot/TextWidth.hpp"

namespace TalIec61850Tools {

namespace {

constexpr double kLabelSize = 12;
constexpr std::int64_t kDay = 86'400'000'000'000;

/// Of any two instants, exact up to the range of a double.
double lengthOf(std::int64_t from, std::int64_t to) {
    return static_cast<double>(static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from));
}

/// As many ticks as have room for their labels.
TimeTicks ticksFor(std::int64_t from, std::int64_t to, double width) {
    constexpr double kBetween = 16;
    constexpr double kLeastLabel = 30;
    TimeTicks ticks;
    for (auto most = static_cast<std::size_t>(std::max(1.0, width / kLeastLabel)); most > 0;
         --most) {
        ticks = roundTimes(from, to, most);
        double const distance = static_cast<double>(ticks.step) / lengthOf(from, to) * width;
        double const label =
            ticks.times.empty() ? 0 : textWidth(tickText(ticks.times[0], ticks.step), kLabelSize);
        if (distance >= label + kBetween) {
            break;
        }
    }
    return ticks;
}

}  // namespace

TimeAxis::TimeAxis(std::int64_t from, std::int64_t to, double left, double right, double room)
    : from_(from),
      to_(to),
      left_(left),
      right_(right),
      room_(room),
      ticks_(ticksFor(from, to, right - left)) {}

double TimeAxis::at(std::int64_t time) const {
    std::int64_t const shown = std::clamp(time, from_, to_);
    return left_ + (right_ - left_) * (lengthOf(from_, shown) / lengthOf(from_, to_));
}

void TimeAxis::drawGrid(SvgWriter& svg, double top, double bottom) const {
    for (std::int64_t const time : ticks_.times) {
        svg.addLine(at(time), top, at(time), bottom, Ink::grid, "grid");
    }
}

void TimeAxis::drawDay(SvgWriter& svg, double x, double y, std::int64_t time) const {
    bool const areDays = ticks_.step >= kDay;
    svg.addText(x, y, areDays ? "UTC" : dayText(time) + " UTC",
                {.size = kLabelSize, .ink = Ink::faint});
}

void TimeAxis::drawLabels(SvgWriter& svg, double top) const {
    constexpr double kTick = 5;
    constexpr double kTimeLine = 18;
    constexpr double kDayLine = 34;
    svg.open("g", {{"class", "time"}});
    svg.addLine(left_, top, right_, top, Ink::faint, "axis");
    double nextDay = room_;
    for (std::int64_t const time : ticks_.times) {
        double const x = at(time);
        svg.addLine(x, top, x, top + kTick, Ink::faint, "tick");
        std::string const label = tickText(time, ticks_.step);
        double const half = textWidth(label, kLabelSize) / 2;
        // A label that would be too far from its tick is left out.
        constexpr double kMostMoved = 12;
        if (x + half - room_ <= kMostMoved) {
            svg.addText(std::min(x, room_ - half), top + kTimeLine, label,
                        {.size = kLabelSize, .ink = Ink::text, .anchor = Anchor::middle});
        }
        bool const isMidnight = time % kDay == 0 && ticks_.step < kDay;
        if (isMidnight) {
            nextDay = std::min(nextDay, x);
            double const width = textWidth(dayText(time) + " UTC", kLabelSize);
            drawDay(svg, std::min(x, room_ - width), top + kDayLine, time);
        }
    }
    if (nextDay - left_ > textWidth("2024-03-20 UTC   ", kLabelSize)) {
        drawDay(svg, left_, top + kDayLine, from_);
    }
    svg.close();
}

}  // namespace TalIec61850Tools
