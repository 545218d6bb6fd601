#include "tools/plot/PlotPage.hpp"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "tools/plot/Curve.hpp"
#include "tools/plot/FindingMarks.hpp"
#include "tools/plot/Flow.hpp"
#include "tools/plot/LaneRow.hpp"
#include "tools/plot/PlotLayout.hpp"
#include "tools/plot/TextRow.hpp"
#include "tools/plot/TextWidth.hpp"
#include "tools/plot/WaveformPanel.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::captureTimeOf;
using TalIec61850Analysis::Severity;

namespace {

constexpr double kMargin = 8;

/// The axis below all rows.
class TimeRow : public PlotRow {
public:
    explicit TimeRow(PlotSheet const& sheet) : sheet_(sheet) {}
    [[nodiscard]] double height() const override { return TimeAxis::kLabelHeight; }
    void draw(SvgWriter& svg, double top) const override { sheet_.time.drawLabels(svg, top); }

private:
    PlotSheet const& sheet_;
};

/// What the signs mean that are in the picture.
class KeyRow : public PlotRow {
public:
    KeyRow(PlotSheet const& sheet, std::vector<FlowItem> items)
        : flow_(std::move(items), sheet.margin, sheet.right(), sheet.right() - sheet.margin) {}
    [[nodiscard]] double height() const override { return flow_.height(); }
    void draw(SvgWriter& svg, double top) const override {
        svg.open("g", {{"class", "key"}});
        flow_.draw(svg, top);
        svg.close();
    }

private:
    Flow flow_;
};

/// How much room names and labels need before the axis.
double gutterOf(PlotContent const& content, double width) {
    constexpr double kLeast = 60;
    constexpr double kMostPart = 0.28;
    constexpr double kAround = 20;
    double gutter = kLeast;
    for (PlottedStates const& states : content.states) {
        for (PlottedLane const& lane : states.lanes) {
            gutter = std::max(gutter, textWidth(lane.name, kUsualSize) + kAround);
        }
    }
    for (PlottedSamples const& samples : content.samples) {
        for (auto const& channels : samples.panels) {
            ValueAxis const axis(panelValues(samples, channels),
                                 samples.channels[channels.front()].unit,
                                 WaveformPanel::kUsualHeight);
            gutter = std::max(gutter, valueLabelWidth(axis) + kAround);
        }
    }
    return std::min(gutter, width * kMostPart);
}

std::string spanText(PlotContent const& content) {
    auto const instant = [](std::int64_t time) { return toUtcText(captureTimeOf(time)); };
    std::string text = instant(content.from) + " to " + instant(content.to) + ", " +
                       durationText(content.from, content.to);
    return content.source.empty() ? text : text + "; " + content.source;
}

/// What is in lanes, as far as it has signs of its own.
std::vector<FlowItem> keyOfLanes(PlotContent const& content) {
    bool hasBits = false;
    bool hasOthers = false;
    bool hasUnknown = false;
    for (PlottedStates const& states : content.states) {
        for (PlottedLane const& lane : states.lanes) {
            for (auto const& interval : lane.lane.intervals) {
                hasBits = hasBits || (interval.value && bitOf(*interval.value));
                hasOthers = hasOthers || (interval.value && !bitOf(*interval.value));
                hasUnknown =
                    hasUnknown ||
                    (!interval.value && interval.state != TalIec61850Analysis::LaneState::several);
            }
        }
    }
    std::vector<FlowItem> items;
    if (hasBits) {
        items.push_back({.text = "true, on", .swatch = Swatch::box, .ink = Ink::on});
        items.push_back({.text = "false, off", .swatch = Swatch::line, .ink = Ink::faint});
    }
    if (hasOthers) {
        items.push_back({.text = "other values", .swatch = Swatch::box, .ink = Ink::other});
    }
    if (hasUnknown) {
        items.push_back({.text = "not known", .swatch = Swatch::dotted, .ink = Ink::faint});
    }
    return items;
}

std::vector<FlowItem> keyOf(PlotContent const& content) {
    bool isMissing = false;
    bool isBad = false;
    for (PlottedSamples const& samples : content.samples) {
        isMissing = isMissing || !samples.spans.missing.empty();
        for (auto const& spans : samples.spans.qualities) {
            isBad = isBad || !spans.empty();
        }
    }
    for (PlottedStates const& states : content.states) {
        for (PlottedLane const& lane : states.lanes) {
            isBad = isBad || !lane.bad.empty();
        }
    }
    std::vector<FlowItem> items = keyOfLanes(content);
    if (isMissing) {
        items.push_back(
            {.text = "samples are missing", .swatch = Swatch::box, .ink = Ink::missing});
    }
    if (isBad) {
        items.push_back({.text = "quality is not good", .swatch = Swatch::bar, .ink = Ink::bad});
    }
    for (Severity const severity : {Severity::error, Severity::warning, Severity::note}) {
        bool const isThere =
            std::any_of(content.findings.begin(), content.findings.end(),
                        [&](PlottedFinding const& each) { return each.severity == severity; });
        if (isThere) {
            FindingSign const sign = signOf(severity);
            items.push_back(
                {.text = std::string(sign.kind), .swatch = sign.swatch, .ink = sign.ink});
        }
    }
    return items;
}

/// The rows of a picture, from top to bottom.
class PlotRows {
public:
    PlotRows(PlotSheet const& sheet, PlotContent const& content)
        : sheet_(sheet), content_(content) {}

    [[nodiscard]] PlotLayout make() {
        addText(content_.title, {.size = kTitleSize, .ink = Ink::text, .isBold = true}, 26);
        addText(spanText(content_), {.size = kUsualSize, .ink = Ink::faint}, 18, Cut::end);
        addSamples();
        addStates();
        layout_.space(6);
        layout_.add(std::make_unique<FindingMarks>(sheet_, content_.findings, content_.noFindings));
        layout_.add(std::make_unique<TimeRow>(sheet_));
        layout_.add(std::make_unique<KeyRow>(sheet_, keyOf(content_)));
        for (std::string const& line : {content_.leftOut, content_.delayNote}) {
            if (!line.empty()) {
                addText(line, {.size = kUsualSize, .ink = Ink::faint}, 18, Cut::end);
            }
        }
        layout_.space(8);
        return std::move(layout_);
    }

private:
    void addText(std::string text, TextLook const& look, double height, Cut cut = Cut::middle) {
        layout_.add(std::make_unique<TextRow>(sheet_, std::move(text), look, height, cut));
    }

    void addHeading(std::string const& name) {
        layout_.space(6);
        addText(name, {.size = kHeadingSize, .ink = Ink::text, .isBold = true}, 18);
    }

    void addAbsent(std::string const& sentence) {
        if (!sentence.empty()) {
            layout_.space(6);
            addText(sentence, {.size = kUsualSize, .ink = Ink::faint}, 20, Cut::end);
        }
    }

    void addSamples() {
        std::vector<std::int64_t> errors;
        for (PlottedFinding const& finding : content_.findings) {
            if (finding.severity == Severity::error) {
                errors.push_back(finding.time);
            }
        }
        addAbsent(content_.samples.empty() ? content_.noSamples : "");
        for (PlottedSamples const& samples : content_.samples) {
            addHeading(samples.name);
            for (auto const& channels : samples.panels) {
                layout_.add(std::make_unique<WaveformPanel>(sheet_, samples, channels, errors));
            }
        }
    }

    void addStates() {
        addAbsent(content_.states.empty() ? content_.noStates : "");
        for (PlottedStates const& states : content_.states) {
            addHeading(states.name);
            layout_.space(2);
            for (PlottedLane const& lane : states.lanes) {
                layout_.add(std::make_unique<LaneRow>(sheet_, lane));
            }
        }
    }

    PlotSheet const& sheet_;
    PlotContent const& content_;
    PlotLayout layout_;
};

}  // namespace

std::string drawPlot(PlotContent const& content, PlotStyle const& style) {
    // An instant alone is in the middle of the axis.
    constexpr std::int64_t kLeastSpan = 2000;
    std::int64_t from = content.from;
    std::int64_t to = content.to;
    if (to - from < kLeastSpan) {
        from =
            std::min(from, std::numeric_limits<std::int64_t>::max() - kLeastSpan) - kLeastSpan / 2;
        to = from + kLeastSpan;
    }
    constexpr double kRight = 16;
    PlotSheet const sheet{.width = style.width,
                          .margin = kMargin,
                          .time = TimeAxis(from, to, gutterOf(content, style.width),
                                           style.width - kRight, style.width - kMargin)};
    PlotLayout layout = PlotRows(sheet, content).make();
    if (style.height) {
        layout.stretchTo(*style.height, WaveformPanel::kLeastHeight);
    }
    SvgWriter svg(style.width, layout.height(), Palette(style.theme));
    svg.addWords("title", content.title);
    svg.addWords("desc", spanText(content));
    svg.addBox(0, 0, style.width, layout.height(), Ink::ground, "ground");
    layout.draw(svg);
    return svg.take();
}

}  // namespace TalIec61850Tools
