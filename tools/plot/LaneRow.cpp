#include "tools/plot/LaneRow.hpp"

#include <algorithm>

#include "tools/plot/TextWidth.hpp"
#include "tools/render/PictureLanes.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::LaneInterval;
using TalIec61850Analysis::LaneState;

namespace {

constexpr double kAbove = 4;
constexpr double kBar = LaneRow::kHeight - 2 * kAbove;
constexpr double kThin = 2;
/// What lasts shorter is drawn as wide as that.
constexpr double kLeastWidth = 1;

}  // namespace

void drawRowName(SvgWriter& svg, PlotSheet const& sheet, double middle, std::string const& name) {
    constexpr double kBeforeAxis = 8;
    constexpr double kHalfLetter = 4;
    double const end = sheet.time.left() - kBeforeAxis;
    svg.addText(end, middle + kHalfLetter, fitText(name, kUsualSize, end - sheet.margin),
                {.size = kUsualSize, .ink = Ink::text, .anchor = Anchor::end});
}

void LaneRow::drawBox(SvgWriter& svg, double top, double left, double right,
                      std::string const& text) const {
    constexpr double kInside = 4;
    constexpr double kBase = 11;
    constexpr double kLeastText = 24;
    double const width = std::max(kLeastWidth, right - left);
    svg.addBox(left, top + kAbove, width, kBar, Ink::other, "value");
    double const room = width - 2 * kInside;
    if (textWidth(text, kSmallSize) <= room || room >= kLeastText) {
        svg.addText(left + kInside, top + kAbove + kBase, fitText(text, kSmallSize, room, Cut::end),
                    {.size = kSmallSize, .ink = Ink::text});
    }
}

void LaneRow::drawInterval(SvgWriter& svg, double top, LaneInterval const& interval) const {
    TimeAxis const& time = sheet_.time;
    double const left = time.at(interval.from);
    double const right = time.at(interval.to);
    double const width = std::max(kLeastWidth, right - left);
    if (interval.state == LaneState::several) {
        drawBox(svg, top, left, right, "changes often");
    } else if (!interval.value) {
        svg.add("line", {{"class", "unknown"},
                         {"x1", left},
                         {"y1", top + kHeight / 2},
                         {"x2", left + width},
                         {"y2", top + kHeight / 2},
                         {"stroke", svg.palette()[Ink::faint].hex},
                         {"stroke-dasharray", "3 3"}});
    } else {
        auto const bit = bitOf(*interval.value);
        if (!bit) {
            drawBox(svg, top, left, right, laneText(*interval.value));
        } else if (*bit) {
            svg.addBox(left, top + kAbove, width, kBar, Ink::on, "true");
        } else {
            svg.addBox(left, top + kAbove + kBar - kThin, width, kThin, Ink::faint, "false");
        }
    }
    if (interval.from > time.from()) {
        svg.addLine(left, top + 2, left, top + kHeight - 2, Ink::text, "change");
    }
}

void LaneRow::draw(SvgWriter& svg, double top) const {
    constexpr double kStrip = 3;
    TimeAxis const& time = sheet_.time;
    svg.open("g", {{"class", "lane"}});
    time.drawGrid(svg, top, top + kHeight);
    drawRowName(svg, sheet_, top + kHeight / 2, lane_.name);
    for (LaneInterval const& interval : lane_.lane.intervals) {
        if (interval.to > time.from() && interval.from <= time.to()) {
            drawInterval(svg, top, interval);
        }
    }
    for (auto const& [from, to] : lane_.bad) {
        if (to > time.from() && from <= time.to()) {
            double const left = time.at(from);
            svg.addBox(left, top + kAbove + kBar - kStrip,
                       std::max(kLeastWidth, time.at(to) - left), kStrip, Ink::bad, "bad");
        }
    }
    svg.close();
}

}  // namespace TalIec61850Tools
