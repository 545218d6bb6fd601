#include "tools/plot/Flow.hpp"

#include <algorithm>

#include "tools/plot/PlotRow.hpp"
#include "tools/plot/TextWidth.hpp"

namespace TalIec61850Tools {

namespace {

constexpr double kSwatchWidth = 16;
constexpr double kAfterSwatch = 4;

double signRoom(FlowItem const& item) {
    return item.swatch == Swatch::none ? 0 : kSwatchWidth + kAfterSwatch;
}

/// @param y  of the middle of the line
void drawSwatch(SvgWriter& svg, FlowItem const& item, double x, double y) {
    constexpr double kBox = 10;
    double const end = x + kSwatchWidth;
    switch (item.swatch) {
        case Swatch::none:
            return;
        case Swatch::stroke:
            svg.add("line", {{"class", "swatch"},
                             {"x1", x},
                             {"y1", y},
                             {"x2", end},
                             {"y2", y},
                             {"stroke", svg.palette()[item.ink].hex},
                             {"stroke-width", 2.0},
                             {"stroke-dasharray", item.dashes.empty() ? "none" : item.dashes}});
            return;
        case Swatch::box:
            svg.addBox(x, y - kBox / 2, kSwatchWidth, kBox, item.ink, "swatch");
            return;
        case Swatch::bar:
            svg.addBox(x, y - 1.5, kSwatchWidth, 3, item.ink, "swatch");
            return;
        case Swatch::line:
            svg.addBox(x, y + 2, kSwatchWidth, 2, item.ink, "swatch");
            return;
        case Swatch::dotted:
            svg.add("line", {{"class", "swatch"},
                             {"x1", x},
                             {"y1", y},
                             {"x2", end},
                             {"y2", y},
                             {"stroke", svg.palette()[item.ink].hex},
                             {"stroke-dasharray", "3 3"}});
            return;
        case Swatch::triangle:
        case Swatch::diamond:
        case Swatch::dot:
            drawSign(svg, item.swatch, x + kSwatchWidth / 2, y, item.ink, "swatch");
            return;
    }
}

}  // namespace

void drawSign(SvgWriter& svg, Swatch swatch, double x, double y, Ink ink, std::string_view kind) {
    std::string_view const fill = svg.palette()[ink].hex;
    if (swatch == Swatch::dot) {
        svg.add("circle", {{"class", kind}, {"cx", x}, {"cy", y}, {"r", 3.5}, {"fill", fill}});
        return;
    }
    auto const point = [](double left, double top) {
        return svgNumber(left) + "," + svgNumber(top) + " ";
    };
    constexpr double kHalf = 5;
    constexpr double kTall = 6;
    std::string const points =
        swatch == Swatch::triangle
            ? point(x - kHalf, y - kTall) + point(x + kHalf, y - kTall) + point(x, y + kTall)
            : point(x, y - kTall) + point(x + kHalf, y) + point(x, y + kTall) + point(x - kHalf, y);
    svg.add("polygon", {{"class", kind},
                        {"points", std::string_view(points).substr(0, points.size() - 1)},
                        {"fill", fill}});
}

Flow::Flow(std::vector<FlowItem> items, double left, double right, double widest) {
    constexpr double kBetween = 14;
    double x = left;
    for (FlowItem& item : items) {
        item.text = fitText(item.text, kUsualSize, widest);
        // Bold letters are wider.
        constexpr double kBold = 1.08;
        double const width =
            signRoom(item) + textWidth(item.text, kUsualSize) * (item.isBold ? kBold : 1);
        if (x > left && x + width > right) {
            x = left;
            lines_ += 1;
        }
        items_.push_back({.item = std::move(item), .x = x, .line = lines_});
        x += width + kBetween;
    }
    lines_ += items_.empty() ? 0 : 1;
}

double Flow::height() const { return lines_ * kLineHeight; }

void Flow::draw(SvgWriter& svg, double top) const {
    constexpr double kBase = 13;
    constexpr double kMiddle = 9;
    for (Placed const& placed : items_) {
        double const line = top + placed.line * kLineHeight;
        drawSwatch(svg, placed.item, placed.x, line + kMiddle);
        svg.addText(placed.x + signRoom(placed.item), line + kBase, placed.item.text,
                    {.size = kUsualSize, .ink = Ink::text, .isBold = placed.item.isBold});
    }
}

}  // namespace TalIec61850Tools
