#include "tools/terminal/TextTimeAxis.hpp"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/render/RoundTicks.hpp"
#include "tools/terminal/PaintedLine.hpp"

namespace TalIec61850Tools {

namespace {

struct Tick {
    std::size_t column = 0;
    std::string text;
};

std::string labelOf(std::int64_t time, std::int64_t step) {
    constexpr std::int64_t kDay = 86'400'000'000'000;
    return time % kDay == 0 ? dayText(time) : tickText(time, step);
}

/// The ticks of the scale, as many as there is room for with their labels.
std::vector<Tick> ticksOf(TimeScale const& scale) {
    constexpr std::size_t kShortest = 7;  // 10:15, its mark and a blank
    std::vector<Tick> ticks;
    for (std::size_t steps = scale.columns() / kShortest + 1; steps > 0; --steps) {
        TimeTicks const found = roundTimes(scale.from(), scale.end() - 1, steps);
        ticks.clear();
        std::size_t widest = 0;
        for (std::int64_t const time : found.times) {
            ticks.push_back({.column = scale.columnOf(time), .text = labelOf(time, found.step)});
            widest = std::max(widest, ticks.back().text.size());
        }
        double const apart = static_cast<double>(found.step) / scale.width();
        if (apart >= static_cast<double>(widest + 2)) {
            break;
        }
    }
    return ticks;
}

}  // namespace

std::string timeAxisLine(TimeScale const& scale, std::size_t labelColumns, TextForm const& form) {
    PaintedLine line(form.inColour);
    std::string const day = dayText(scale.from());
    line.addLeft(day.size() < labelColumns ? day : "", labelColumns, "", Paint::faint);
    std::size_t column = 0;
    for (Tick const& tick : ticksOf(scale)) {
        if (tick.column < column) {
            continue;
        }
        line.repeat(tick.column - column, " ", Paint::faint);
        line.add(form.isUtf8 ? "\u2575" : "|", Paint::faint);
        column = tick.column + 1;
        if (column + tick.text.size() <= scale.columns()) {
            line.add(tick.text, Paint::faint);
            column += tick.text.size();
        }
    }
    return line.take();
}

}  // namespace TalIec61850Tools
