// Lanes and findings are at their times, and a picture has its parts in their places.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "plot/MadeSamples.hpp"
#include "plot/SvgReader.hpp"
#include "tools/plot/LaneChoice.hpp"
#include "tools/plot/PlotPage.hpp"

namespace TalTest::PlotPageTest {
namespace {

using TalIec61850Analysis::BitString;
using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::DataValue;
using TalIec61850Analysis::LaneInterval;
using TalIec61850Analysis::LaneState;
using TalIec61850Analysis::MemberLane;
using TalIec61850Analysis::Severity;
using TalIec61850Tools::drawPlot;
using TalIec61850Tools::LaneChoice;
using TalIec61850Tools::PlotContent;
using TalIec61850Tools::PlottedLane;
using TalIec61850Tools::PlottedStates;
using TalIec61850Tools::Theme;

constexpr std::int64_t kMillisecond = 1'000'000;

DataValue valueOf(DataKind kind, DataValue::Content content) {
    DataValue value;
    value.kind = kind;
    value.value = std::move(content);
    return value;
}

DataValue boolean(bool value) { return valueOf(DataKind::boolean, value); }

LaneInterval interval(std::int64_t from, std::int64_t to, std::optional<DataValue> value) {
    LaneInterval made;
    made.from = kPlotStart + from * kMillisecond;
    made.to = kPlotStart + to * kMillisecond;
    made.state = value ? LaneState::known : LaneState::lost;
    made.value = std::move(value);
    return made;
}

PlottedLane tripLane(std::string name = "Tr.general") {
    PlottedLane lane{.name = std::move(name), .lane = {}, .bad = {}};
    lane.lane.intervals = {interval(0, 250, boolean(false)), interval(250, 300, boolean(true)),
                           interval(300, 350, std::nullopt), interval(350, 400, boolean(false))};
    return lane;
}

/// 400 ms without anything.
PlotContent emptyContent() {
    PlotContent content;
    content.title = "FEEDER1";
    content.source = "bay1.pcap";
    content.from = kPlotStart;
    content.to = kPlotStart + 400 * kMillisecond;
    return content;
}

/// Where a millisecond is.
double pixelAt(SvgReader const& svg, double milliseconds) {
    return svg.seconds().at(milliseconds / 1000);
}

TEST(PlotLanes, HaveTheirEdgesAtTheirTimes) {
    PlotContent content = emptyContent();
    content.states = {{.name = "FEEDER1/LLN0$GO$gcb", .lanes = {tripLane()}}};
    SvgReader const svg(drawPlot(content, {}));
    auto const on = svg.boxes("true");
    ASSERT_EQ(on.size(), 1U);
    EXPECT_NEAR(on[0].left, pixelAt(svg, 250), 0.02);
    EXPECT_NEAR(on[0].right, pixelAt(svg, 300), 0.02);
    auto const off = svg.boxes("false");
    ASSERT_EQ(off.size(), 2U);
    EXPECT_NEAR(off[0].left, pixelAt(svg, 0), 0.02);
    EXPECT_NEAR(off[0].right, pixelAt(svg, 250), 0.02);
    EXPECT_LT(off[0].bottom - off[0].top, on[0].bottom - on[0].top);
    auto const unknown = svg.ofClass("unknown");
    ASSERT_EQ(unknown.size(), 1U);
    EXPECT_NEAR(unknown[0].attribute("x1").as_double(), pixelAt(svg, 300), 0.02);
    EXPECT_NEAR(unknown[0].attribute("x2").as_double(), pixelAt(svg, 350), 0.02);
    EXPECT_EQ(svg.ofClass("change").size(), 3U);
    EXPECT_TRUE(svg.shows("Tr.general"));
    EXPECT_TRUE(svg.shows("FEEDER1/LLN0$GO$gcb"));
    EXPECT_TRUE(svg.shows("true, on"));
    EXPECT_TRUE(svg.shows("not known"));
}

TEST(PlotLanes, HaveValuesInBoxes) {
    PlottedLane lane{.name = "Pos.stVal", .lane = {}, .bad = {}};
    DataValue const between = valueOf(DataKind::bitString, BitString{{0x00}, 6});
    DataValue const on = valueOf(DataKind::bitString, BitString{{0x80}, 6});
    DataValue const off = valueOf(DataKind::bitString, BitString{{0x40}, 6});
    DataValue const number = valueOf(DataKind::integer, std::int64_t{-17});
    lane.lane.intervals = {interval(0, 100, off), interval(100, 200, between),
                           interval(200, 250, on), interval(250, 400, number)};
    lane.bad = {{kPlotStart + 50 * kMillisecond, kPlotStart + 60 * kMillisecond}};
    PlotContent content = emptyContent();
    content.states = {{.name = "gcb", .lanes = {lane}}};
    SvgReader const svg(drawPlot(content, {}));
    ASSERT_EQ(svg.boxes("value").size(), 2U);
    EXPECT_NEAR(svg.boxes("value")[0].left, pixelAt(svg, 100), 0.02);
    EXPECT_TRUE(svg.shows("intermediate"));
    EXPECT_TRUE(svg.shows("-17"));
    EXPECT_EQ(svg.boxes("true").size(), 1U);
    EXPECT_EQ(svg.boxes("false").size(), 1U);
    ASSERT_EQ(svg.boxes("bad").size(), 1U);
    EXPECT_NEAR(svg.boxes("bad")[0].left, pixelAt(svg, 50), 0.02);
    EXPECT_NEAR(svg.boxes("bad")[0].right, pixelAt(svg, 60), 0.02);
}

TEST(PlotLanes, CutNamesThatAreTooLong) {
    std::string const name = "IED1LD0/" + std::string(5000, 'x') + "PTRC1.Tr.general";
    PlotContent content = emptyContent();
    content.title = name;
    content.states = {{.name = name, .lanes = {tripLane(name)}}};
    SvgReader const svg(drawPlot(content, {}));
    for (std::string const& text : svg.texts()) {
        EXPECT_LT(text.size(), 150U);
    }
    EXPECT_TRUE(svg.shows("general"));
    EXPECT_TRUE(svg.shows("..."));
}

TEST(PlotFindings, HaveSignsAtTheirTimes) {
    PlotContent content = emptyContent();
    content.samples.push_back(
        madeSamples({.count = 1600, .channels = {[](double x) { return x; }}}));
    content.noFindings = "Nothing was found.";
    content.findings = {{kPlotStart + 100 * kMillisecond, Severity::error},
                        {kPlotStart + 200 * kMillisecond, Severity::warning},
                        {kPlotStart + 300 * kMillisecond, Severity::note},
                        {kPlotStart + 300 * kMillisecond + 10, Severity::note},
                        {kPlotStart + 900 * kMillisecond, Severity::note}};
    SvgReader const svg(drawPlot(content, {}));
    auto const centre = [](pugi::xml_node sign) {
        std::string points = sign.attribute("points").value();
        std::replace(points.begin(), points.end(), ',', ' ');
        auto const all = pointsOf("M" + points.substr(0, points.find(' ', points.find(' ') + 1)));
        return all[0][0].x;
    };
    auto const signs = [&](char const* kind, char const* element) {
        std::vector<pugi::xml_node> found;
        for (pugi::xml_node const node : svg.ofClass(kind)) {
            if (std::string_view(node.name()) == element) {
                found.push_back(node);
            }
        }
        return found;
    };
    auto const errors = signs("error", "polygon");
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_NEAR(centre(errors[0]) + 5, pixelAt(svg, 100), 0.02);  // the left corner is first
    auto const warnings = signs("warning", "polygon");
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NEAR(centre(warnings[0]), pixelAt(svg, 200), 0.02);
    auto const notes = signs("note", "circle");
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_NEAR(notes[0].attribute("cx").as_double(), pixelAt(svg, 300), 0.02);
    // An error is a line across the waveforms too.
    auto const lines = signs("error", "line");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NEAR(lines[0].attribute("x1").as_double(), pixelAt(svg, 100), 1.0);
    EXPECT_FALSE(svg.shows("Nothing was found."));
}

TEST(PlotFindings, AreNoMoreThanPixels) {
    PlotContent content = emptyContent();
    for (std::int64_t i = 0; i < 100'000; ++i) {
        content.findings.push_back({kPlotStart + i * 4000, Severity::error});
    }
    SvgReader const svg(drawPlot(content, {}));
    EXPECT_LE(svg.ofClass("error").size(), 400U);
}

TEST(PlotPage, SaysInItsPlaceWhatIsNotThere) {
    PlotContent content = emptyContent();
    content.noSamples = "There is no stream of Sampled Values.";
    content.noStates = "There is no GOOSE stream.";
    content.noFindings = "Nothing was found.";
    content.leftOut = "Not shown: 3 channels.";
    SvgReader const svg(drawPlot(content, {}));
    double before = 0;
    for (char const* const text :
         {"FEEDER1", "There is no stream of Sampled Values.", "There is no GOOSE stream.",
          "Nothing was found.", "Not shown: 3 channels."}) {
        double const y = svg.textNode(text).attribute("y").as_double();
        EXPECT_GT(y, before) << text;
        before = y;
    }
    EXPECT_TRUE(svg.shows(
        "2024-03-20T10:00:00.000000000Z to 2024-03-20T10:00:00.400000000Z, 400 ms; bay1.pcap"));
    EXPECT_TRUE(svg.shows("2024-03-20 UTC"));
}

TEST(PlotPage, IsAsWideAndAsHighAsIsAskedFor) {
    PlotContent content = contentOf({.count = 160, .channels = {[](double x) { return x; }}});
    for (double const width : {320.0, 800.0, 1600.0, 4000.0}) {
        SvgReader const svg(drawPlot(content, {.width = width, .height = 700.0}));
        EXPECT_EQ(svg.root().attribute("width").as_double(), width);
        EXPECT_NEAR(svg.root().attribute("height").as_double(), 700, 1);
        for (Box const& box : svg.boxes("frame")) {
            EXPECT_LE(box.right, width);
        }
    }
    SvgReader const low(drawPlot(content, {.width = 800, .height = 100.0}));
    EXPECT_GT(low.root().attribute("height").as_double(), 100);
    EXPECT_NEAR(low.boxes("frame")[0].bottom - low.boxes("frame")[0].top, 60, 0.1);
}

TEST(PlotPage, IsLightOrDark) {
    PlotContent const content = emptyContent();
    SvgReader const light(drawPlot(content, {}));
    SvgReader const dark(drawPlot(content, {.theme = Theme::dark}));
    EXPECT_STREQ(light.ofClass("ground")[0].attribute("fill").value(), "#ffffff");
    EXPECT_STREQ(dark.ofClass("ground")[0].attribute("fill").value(), "#14181f");
    EXPECT_EQ(light.texts(), dark.texts());
}

TEST(PlotPage, ShowsAnInstantAlone) {
    PlotContent content = emptyContent();
    content.to = content.from;
    content.states = {{.name = "gcb", .lanes = {tripLane()}}};
    SvgReader const svg(drawPlot(content, {}));
    EXPECT_TRUE(svg.shows("10:00:00.000000000"));
}

MemberLane changingLane(std::size_t changes) {
    MemberLane lane;
    for (std::size_t i = 0; i <= changes; ++i) {
        auto const at = static_cast<std::int64_t>(i);
        lane.intervals.push_back(interval(at, at + 1, boolean(i % 2 != 0)));
    }
    return lane;
}

PlottedStates statesOf(std::string name, std::vector<std::size_t> const& changes) {
    PlottedStates states{.name = std::move(name), .lanes = {}};
    for (std::size_t const count : changes) {
        states.lanes.push_back(
            {.name = std::to_string(count), .lane = changingLane(count), .bad = {}});
    }
    return states;
}

std::vector<std::string> lanesOf(std::vector<PlottedStates> const& all) {
    std::vector<std::string> names;
    for (PlottedStates const& states : all) {
        for (PlottedLane const& lane : states.lanes) {
            names.push_back(states.name + lane.name);
        }
    }
    return names;
}

TEST(LaneChoiceOfPlot, TakesMembersThatChange) {
    LaneChoice choice(24, 8);
    choice.add(statesOf("a", {0, 3, 0, 1}));
    choice.add(statesOf("b", {0, 0}));
    choice.add(statesOf("c", {}));
    EXPECT_EQ(lanesOf(choice.take()), (std::vector<std::string>{"a3", "a1", "b0", "b0"}));
    EXPECT_EQ(choice.unchanging(), 2U);
    EXPECT_EQ(choice.withoutRoom(), 0U);
}

TEST(LaneChoiceOfPlot, GivesTheRoomToThoseThatChangeFirst) {
    LaneChoice choice(3, 8);
    choice.add(statesOf("a", {0, 0}));
    choice.add(statesOf("b", {1, 2}));
    EXPECT_EQ(choice.withoutRoom(), 1U);
    choice.add(statesOf("c", {4, 5, 6}));
    EXPECT_EQ(lanesOf(choice.take()), (std::vector<std::string>{"b1", "b2", "c4"}));
    EXPECT_EQ(choice.withoutRoom(), 4U);
    LaneChoice streams(24, 2);
    for (char const* const name : {"a", "b", "c"}) {
        streams.add(statesOf(name, {1}));
    }
    EXPECT_EQ(lanesOf(streams.take()), (std::vector<std::string>{"a1", "b1"}));
    EXPECT_EQ(streams.withoutRoom(), 1U);
}

}  // namespace
}  // namespace TalTest::PlotPageTest
