#include "tools/plot/WaveformPanel.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "tools/plot/Curve.hpp"
#include "tools/plot/TextWidth.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleSpan;

namespace {

constexpr double kAboveChart = 4;
constexpr double kBelowChart = 10;

Ink inkOf(PlottedSamples const& samples, std::size_t channel) {
    std::string_view const name = channelColour(samples.channels[channel], channel);
    auto const& colours = paletteColours();
    auto const colour = std::find_if(colours.begin(), colours.end(),
                                     [&](PaletteColour const& each) { return each.name == name; });
    return static_cast<Ink>(colour - colours.begin());
}

PixelSpans pixelsOf(TimeAxis const& time, std::vector<std::int64_t> const& instants) {
    PixelSpans pixels(time.left(), time.right());
    for (std::int64_t const instant : instants) {
        if (time.contains(instant)) {
            pixels.add(time.at(instant), time.at(instant));
        }
    }
    return pixels;
}

}  // namespace

std::vector<ChannelLook> channelLooks(PlottedSamples const& samples,
                                      std::vector<std::size_t> const& channels) {
    // Of one colour, the second one is dashed, and so on.
    constexpr std::array<std::string_view, 4> kDashes = {"", "6 3", "2 2", "8 2 2 2"};
    std::array<std::size_t, kInks> uses{};
    std::vector<ChannelLook> looks;
    for (std::size_t const channel : channels) {
        Ink const ink = inkOf(samples, channel);
        std::size_t const before = uses[static_cast<std::size_t>(ink)]++;
        looks.push_back({.ink = ink, .dashes = std::string(kDashes[before % kDashes.size()])});
    }
    return looks;
}

double valueLabelWidth(ValueAxis const& axis) {
    double width = 0;
    for (double const value : axis.ticks().values) {
        width = std::max(width, textWidth(axis.labelOf(value), kSmallSize));
    }
    return width;
}

WaveformPanel::WaveformPanel(PlotSheet const& sheet, PlottedSamples const& samples,
                             std::vector<std::size_t> channels,
                             std::vector<std::int64_t> const& errors)
    : sheet_(sheet),
      samples_(samples),
      channels_(std::move(channels)),
      errors_(pixelsOf(sheet.time, errors)),
      range_(panelValues(samples, channels_)),
      values_(range_, samples.channels[channels_.front()].unit, kUsualHeight),
      legend_(legend(), sheet.time.left(), sheet.right(), (sheet.width - sheet.time.left()) / 2) {}

std::vector<FlowItem> WaveformPanel::legend() const {
    std::vector<FlowItem> items = {
        {.text = panelName(samples_.channels[channels_.front()].unit, values_.unit()),
         .isBold = true}};
    auto const looks = channelLooks(samples_, channels_);
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        items.push_back({.text = samples_.channels[channels_[i]].name,
                         .swatch = Swatch::stroke,
                         .ink = looks[i].ink,
                         .dashes = looks[i].dashes});
    }
    return items;
}

double WaveformPanel::height() const {
    return legend_.height() + kAboveChart + values_.height() + kBelowChart;
}

void WaveformPanel::stretch(double height) {
    values_ = ValueAxis(range_, samples_.channels[channels_.front()].unit, height);
}

void WaveformPanel::addSpans(PixelSpans& pixels, std::vector<SampleSpan> const& spans) const {
    TimeAxis const& time = sheet_.time;
    for (SampleSpan const& span : spans) {
        if (span.to > time.from() && span.from <= time.to()) {
            pixels.add(time.at(span.from), time.at(span.to));
        }
    }
}

void WaveformPanel::drawGround(SvgWriter& svg, double top) const {
    TimeAxis const& time = sheet_.time;
    PixelSpans missing(time.left(), time.right());
    addSpans(missing, samples_.spans.missing);
    for (auto const& span : missing.spans()) {
        svg.addBox(time.left() + static_cast<double>(span.from), top,
                   static_cast<double>(span.to - span.from), values_.height(), Ink::missing,
                   "missing");
    }
    time.drawGrid(svg, top, top + values_.height());
}

void WaveformPanel::drawAxis(SvgWriter& svg, double top) const {
    constexpr double kBeforeAxis = 6;
    constexpr double kHalfLetter = 4;
    double const left = sheet_.time.left();
    double const right = sheet_.time.right();
    if (range_.hasValues) {
        for (double const value : values_.ticks().values) {
            double const y = top + values_.at(value);
            svg.addLine(left, y, right, y, value == 0 ? Ink::line : Ink::grid, "level");
            svg.addText(left - kBeforeAxis, y + kHalfLetter, values_.labelOf(value),
                        {.size = kSmallSize, .ink = Ink::faint, .anchor = Anchor::end});
        }
    } else {
        svg.addText(left + kBeforeAxis, top + values_.height() / 2, "no values in this time",
                    {.size = kUsualSize, .ink = Ink::faint});
    }
    svg.add("rect", {{"class", "frame"},
                     {"x", left},
                     {"y", top},
                     {"width", right - left},
                     {"height", values_.height()},
                     {"fill", "none"},
                     {"stroke", svg.palette()[Ink::line].hex}});
}

void WaveformPanel::drawCurves(SvgWriter& svg, double top) const {
    auto const looks = channelLooks(samples_, channels_);
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        Curve const curve = drawCurve(samples_, channels_[i], sheet_.time, values_, top);
        std::string_view const stroke = svg.palette()[looks[i].ink].hex;
        if (!curve.line.empty()) {
            svg.add("path",
                    {{"class", "curve"},
                     {"d", curve.line},
                     {"stroke", stroke},
                     {"stroke-dasharray", looks[i].dashes.empty() ? "none" : looks[i].dashes}});
        }
        if (!curve.dots.empty()) {
            svg.add("path", {{"class", "samples"},
                             {"d", curve.dots},
                             {"stroke", stroke},
                             {"stroke-width", 4.0}});
        }
    }
}

void WaveformPanel::drawMarks(SvgWriter& svg, double top) const {
    TimeAxis const& time = sheet_.time;
    constexpr double kStrip = 4;
    PixelSpans bad(time.left(), time.right());
    for (std::size_t const channel : channels_) {
        if (channel < samples_.spans.qualities.size()) {
            addSpans(bad, samples_.spans.qualities[channel]);
        }
    }
    double const bottom = top + values_.height();
    for (auto const& span : bad.spans()) {
        svg.addBox(time.left() + static_cast<double>(span.from), bottom - kStrip,
                   static_cast<double>(span.to - span.from), kStrip, Ink::bad, "bad");
    }
    for (auto const& span : errors_.spans()) {
        for (std::size_t pixel = span.from; pixel < span.to; pixel += 2) {
            double const x = time.left() + static_cast<double>(pixel) + 0.5;
            svg.add("line", {{"class", "error"},
                             {"x1", x},
                             {"y1", top},
                             {"x2", x},
                             {"y2", bottom},
                             {"stroke", svg.palette()[Ink::error].hex},
                             {"stroke-opacity", 0.45},
                             {"stroke-dasharray", "3 3"}});
        }
    }
}

void WaveformPanel::draw(SvgWriter& svg, double top) const {
    svg.open("g", {{"class", "waveforms"}});
    legend_.draw(svg, top);
    double const chart = top + legend_.height() + kAboveChart;
    drawGround(svg, chart);
    drawAxis(svg, chart);
    svg.open("g", {{"fill", "none"},
                   {"stroke-width", 1.3},
                   {"stroke-linejoin", "round"},
                   {"stroke-linecap", "round"}});
    drawCurves(svg, chart);
    svg.close();
    drawMarks(svg, chart);
    svg.close();
}

}  // namespace TalIec61850Tools
