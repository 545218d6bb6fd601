// Curves are where the samples are, and what is missing or bad is seen.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <string>

#include "plot/MadeSamples.hpp"
#include "plot/SvgReader.hpp"
#include "tools/plot/PlotPage.hpp"
#include "tools/plot/WaveformPanel.hpp"

namespace TalTest::WaveformPanelTest {
namespace {

using TalIec61850Tools::channelLooks;
using TalIec61850Tools::channelPanels;
using TalIec61850Tools::drawPlot;
using TalIec61850Tools::panelName;
using TalIec61850Tools::PictureChannel;
using TalIec61850Tools::PlotContent;
using TalIec61850Tools::PlotStyle;
using TalIec61850Tools::PlottedSamples;

double sine(double seconds) { return 100 * std::sin(2 * std::numbers::pi * 50 * seconds); }

SvgReader pictureOf(MadeSamples const& made, PlotStyle const& style = {}) {
    return SvgReader(drawPlot(contentOf(made), style));
}

TEST(PlotCurve, GoesThroughEachSampleWhereThereIsRoom) {
    // Two cycles in 160 samples.
    SvgReader const svg = pictureOf({.count = 160, .channels = {sine}});
    PixelScale const x = svg.seconds();
    PixelScale const y = svg.values("-100", "100");
    auto const paths = svg.paths("curve");
    ASSERT_EQ(paths.size(), 1U);
    ASSERT_EQ(paths[0].size(), 1U);
    auto const& points = paths[0][0];
    ASSERT_EQ(points.size(), 160U);
    for (std::size_t i = 0; i < points.size(); ++i) {
        double const seconds = static_cast<double>(i) * 250e-6;
        EXPECT_NEAR(points[i].x, x.at(seconds), 0.03);
        EXPECT_NEAR(points[i].y, y.at(sine(seconds)), 0.03);
    }
    EXPECT_TRUE(svg.ofClass("samples").empty());
    EXPECT_TRUE(svg.shows("currents, A"));
    EXPECT_TRUE(svg.shows("I1"));
}

TEST(PlotCurve, HasAPeakAtItsPixelHoweverManySamplesThereAre) {
    // A second of 4,000 samples, with one that is far higher than the others.
    auto const withPeak = [](double seconds) {
        return std::abs(seconds - 0.62525) < 1e-6 ? 500.0 : sine(seconds);
    };
    SvgReader const svg = pictureOf({.count = 4000, .channels = {withPeak}});
    PixelScale const x = svg.seconds();
    PixelScale const y = svg.values("0", "400");
    auto const paths = svg.paths("curve");
    ASSERT_EQ(paths.size(), 1U);
    ASSERT_EQ(paths[0].size(), 1U);
    auto const& points = paths[0][0];
    // The least and the largest of each column of pixels, and no more.
    EXPECT_LE(points.size(), 2 * 760U);
    auto const highest =
        std::min_element(points.begin(), points.end(), [](Point a, Point b) { return a.y < b.y; });
    EXPECT_NEAR(highest->x, x.at(0.62525), 1.0);
    EXPECT_NEAR(highest->y, y.at(500), 0.05);
    auto const lowest =
        std::max_element(points.begin(), points.end(), [](Point a, Point b) { return a.y < b.y; });
    EXPECT_NEAR(lowest->y, y.at(-100), 0.05);
    for (std::size_t i = 1; i < points.size(); ++i) {
        EXPECT_GE(points[i].x, points[i - 1].x);
        EXPECT_LE(points[i].x, points[i - 1].x + 3);
    }
}

TEST(PlotCurve, IsAsLargeForAMillionSamplesAsForThousands) {
    auto const few = pictureOf({.count = 5000, .channels = {sine}}).text().size();
    auto const many = pictureOf({.count = 1'000'000, .channels = {sine}}).text().size();
    EXPECT_LT(many, few + few / 4);
    EXPECT_LT(many, 60'000U);
}

TEST(PlotCurve, EndsWhereSamplesAreMissing) {
    auto const isMissing = [](std::size_t i) { return i >= 60 && i < 80; };
    SvgReader const svg = pictureOf({.count = 160, .channels = {sine}, .isMissing = isMissing});
    PixelScale const x = svg.seconds();
    auto const paths = svg.paths("curve");
    ASSERT_EQ(paths[0].size(), 2U);
    EXPECT_EQ(paths[0][0].size(), 60U);
    EXPECT_EQ(paths[0][1].size(), 80U);
    auto const boxes = svg.boxes("missing");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_NEAR(boxes[0].left, x.at(60 * 250e-6), 1.0);
    EXPECT_NEAR(boxes[0].right, x.at(80 * 250e-6), 1.0);
    EXPECT_TRUE(svg.shows("samples are missing"));
    SvgReader const dense =
        pictureOf({.count = 16'000, .channels = {sine}, .isMissing = [&](std::size_t i) {
                       return isMissing(i / 100);
                   }});
    ASSERT_EQ(dense.paths("curve")[0].size(), 2U);
    ASSERT_EQ(dense.boxes("missing").size(), 1U);
}

TEST(PlotCurve, ShowsBadQualityAtTheBottom) {
    auto const quality = [](std::size_t i) { return i >= 40 && i < 120 ? 3U : 0U; };
    SvgReader const svg = pictureOf({.count = 160, .channels = {sine}, .quality = quality});
    PixelScale const x = svg.seconds();
    auto const boxes = svg.boxes("bad");
    auto const frame = svg.boxes("frame");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_NEAR(boxes[0].left, x.at(0.01), 1.0);
    EXPECT_NEAR(boxes[0].right, x.at(0.03), 1.0);
    EXPECT_NEAR(boxes[0].bottom, frame[0].bottom, 0.01);
    EXPECT_TRUE(svg.shows("quality is not good"));
    EXPECT_FALSE(pictureOf({.count = 160, .channels = {sine}}).shows("quality is not good"));
}

TEST(PlotCurve, HasDotsWhereSamplesAreFarFromEachOther) {
    SvgReader const svg = pictureOf({.count = 20, .channels = {sine}});
    ASSERT_EQ(svg.paths("samples").size(), 1U);
    EXPECT_EQ(svg.paths("samples")[0].size(), 20U);
    SvgReader const one = pictureOf({.count = 1, .channels = {sine}});
    ASSERT_EQ(one.paths("samples")[0].size(), 1U);
    ASSERT_EQ(one.paths("curve")[0].size(), 1U);
}

TEST(PlotCurve, StaysInItsPanelWhateverTheValues) {
    double const infinity = std::numeric_limits<double>::infinity();
    double const none = std::numeric_limits<double>::quiet_NaN();
    double const huge = std::numeric_limits<double>::max();
    for (std::size_t const count : {1U, 2U, 100U, 3000U}) {
        for (auto const& pair : std::vector<std::pair<double, double>>{{0, 0},
                                                                       {5, 5},
                                                                       {1e30, -1e30},
                                                                       {1e-30, 0},
                                                                       {huge, -huge},
                                                                       {none, 1},
                                                                       {infinity, -1},
                                                                       {none, infinity},
                                                                       {1e-310, 0}}) {
            auto const value = [&](double seconds) {
                return std::fmod(seconds, 0.02) < 0.01 ? pair.first : pair.second;
            };
            SvgReader const svg = pictureOf({.count = count, .channels = {value}});
            auto const frame = svg.boxes("frame");
            ASSERT_EQ(frame.size(), 1U);
            for (auto const& path : svg.paths("curve")) {
                for (auto const& part : path) {
                    for (Point const point : part) {
                        EXPECT_GE(point.x, frame[0].left);
                        EXPECT_LE(point.x, frame[0].right);
                        EXPECT_GE(point.y, frame[0].top - 0.01);
                        EXPECT_LE(point.y, frame[0].bottom + 0.01);
                    }
                }
            }
            EXPECT_EQ(svg.text().find("nan"), std::string::npos);
            EXPECT_EQ(svg.text().find("inf\""), std::string::npos);
            bool const hasNone =
                !std::isfinite(pair.first) && (count < 40 || !std::isfinite(pair.second));
            EXPECT_EQ(svg.shows("no values in this time"), hasNone) << count;
        }
    }
}

TEST(PlotPanels, AreThoseOfUnits) {
    std::vector<PictureChannel> channels;
    for (char const* const unit : {"A", "A", "V", "A", "", "", "", "", "", "V"}) {
        channels.push_back({.name = "x", .unit = unit, .phase = "", .scale = {}});
    }
    using Panels = std::vector<std::vector<std::size_t>>;
    EXPECT_EQ(channelPanels(channels), (Panels{{0, 1, 3}, {2, 9}, {4, 5, 6, 7}, {8}}));
    EXPECT_EQ(channelPanels({}), Panels());
}

TEST(PlotPanels, AreOfAnyUnit) {
    std::vector<PictureChannel> channels;
    for (char const* const unit : {"", "#0", "constructor", "A"}) {
        channels.push_back({.name = "x", .unit = unit, .phase = "", .scale = {}});
    }
    using Panels = std::vector<std::vector<std::size_t>>;
    EXPECT_EQ(channelPanels(channels), (Panels{{0}, {1}, {2}, {3}}));
    EXPECT_EQ(panelName("constructor", "constructor"), "constructor");
    EXPECT_EQ(panelName("A", "kA"), "currents, kA");
    EXPECT_EQ(panelName("", ""), "counts");
}

TEST(PlotPanels, TellChannelsOfOneColourApart) {
    PlottedSamples samples;
    for (char const* const phase : {"A", "B", "A", "A", "N"}) {
        samples.channels.push_back({.name = "x", .unit = "A", .phase = phase, .scale = {}});
    }
    auto const looks = channelLooks(samples, {0, 1, 2, 3, 4});
    EXPECT_EQ(looks[0].ink, TalIec61850Tools::Ink::a);
    EXPECT_EQ(looks[0].dashes, "");
    EXPECT_EQ(looks[1].ink, TalIec61850Tools::Ink::b);
    EXPECT_EQ(looks[2].ink, looks[0].ink);
    EXPECT_NE(looks[2].dashes, "");
    EXPECT_NE(looks[3].dashes, looks[2].dashes);
    EXPECT_EQ(looks[4].ink, TalIec61850Tools::Ink::n);
}

TEST(PlotPanels, ShowQuantitiesByTheirScale) {
    PlotContent content = contentOf({.count = 160, .channels = {sine, sine}});
    auto& samples = content.samples[0];
    samples.channels[1].unit = "V";
    samples.channels[1].scale = {.factor = 1000, .divides = false, .offset = 0};
    samples.panels = channelPanels(samples.channels);
    SvgReader const svg(drawPlot(content, {}));
    EXPECT_TRUE(svg.shows("currents, A"));
    EXPECT_TRUE(svg.shows("voltages, kV"));
    EXPECT_EQ(svg.boxes("frame").size(), 2U);
    EXPECT_LT(svg.boxes("frame")[0].bottom, svg.boxes("frame")[1].top);
}

}  // namespace
}  // namespace TalTest::WaveformPanelTest
