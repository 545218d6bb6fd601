#include "tools/plot/FindingMarks.hpp"

#include <algorithm>

#include "tools/plot/LaneRow.hpp"
#include "tools/selection/FindingNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Severity;

FindingSign signOf(Severity severity) {
    switch (severity) {
        case Severity::error:
            return {Swatch::triangle, Ink::error, toText(severity)};
        case Severity::warning:
            return {Swatch::diamond, Ink::warning, toText(severity)};
        case Severity::note:
            break;
    }
    return {Swatch::dot, Ink::note, toText(Severity::note)};
}

void FindingMarks::drawSeverity(SvgWriter& svg, double middle, Severity severity) const {
    // One sign for those that are at about one pixel.
    constexpr double kNear = 2;
    TimeAxis const& time = sheet_.time;
    std::vector<double> places;
    for (PlottedFinding const& finding : findings_) {
        if (finding.severity == severity && time.contains(finding.time)) {
            places.push_back(time.at(finding.time));
        }
    }
    std::sort(places.begin(), places.end());
    FindingSign const sign = signOf(severity);
    double last = -kNear;
    for (double const x : places) {
        if (x - last >= kNear) {
            drawSign(svg, sign.swatch, x, middle, sign.ink, sign.kind);
            last = x;
        }
    }
}

void FindingMarks::draw(SvgWriter& svg, double top) const {
    constexpr double kInside = 6;
    constexpr double kHalfLetter = 4;
    double const middle = top + kHeight / 2;
    svg.open("g", {{"class", "findings"}});
    sheet_.time.drawGrid(svg, top, top + kHeight);
    drawRowName(svg, sheet_, middle, "findings");
    if (findings_.empty()) {
        svg.addText(sheet_.time.left() + kInside, middle + kHalfLetter, none_,
                    {.size = kUsualSize, .ink = Ink::faint});
    }
    for (Severity const severity : {Severity::note, Severity::warning, Severity::error}) {
        drawSeverity(svg, middle, severity);
    }
    svg.close();
}

}  // namespace TalIec61850Tools
