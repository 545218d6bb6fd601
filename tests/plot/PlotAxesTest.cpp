// Where instants and values are, and what is written at ticks.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "plot/SvgReader.hpp"
#include "tools/plot/TextWidth.hpp"
#include "tools/plot/TimeAxis.hpp"
#include "tools/plot/ValueAxis.hpp"

namespace TalTest::PlotAxesTest {
namespace {

using TalIec61850Tools::Palette;
using TalIec61850Tools::SvgWriter;
using TalIec61850Tools::textWidth;
using TalIec61850Tools::Theme;
using TalIec61850Tools::TimeAxis;
using TalIec61850Tools::ValueAxis;
using TalIec61850Tools::ValueRange;

constexpr std::int64_t kAxisStart = 1'710'928'800'000'000'000;  // 2024-03-20T10:00:00Z
constexpr std::int64_t kMicrosecond = 1000;
constexpr std::int64_t kSecond = 1'000'000'000;

ValueRange rangeFrom(double least, double largest) {
    ValueRange range;
    range.add(least);
    range.add(largest);
    return range;
}

std::vector<std::string> labelsOf(ValueAxis const& axis) {
    std::vector<std::string> labels;
    for (double const value : axis.ticks().values) {
        labels.push_back(axis.labelOf(value));
    }
    return labels;
}

SvgReader drawn(TimeAxis const& axis) {
    SvgWriter svg(800, 60, Palette(Theme::light));
    axis.drawLabels(svg, 10);
    return SvgReader(svg.take());
}

TEST(PlotTimeAxis, PutsInstantsToTheNanosecond) {
    TimeAxis const axis(kAxisStart, kAxisStart + 1000, 100, 700, 792);
    EXPECT_DOUBLE_EQ(axis.at(kAxisStart), 100);
    EXPECT_DOUBLE_EQ(axis.at(kAxisStart + 1), 100.6);
    EXPECT_DOUBLE_EQ(axis.at(kAxisStart + 1000), 700);
    EXPECT_DOUBLE_EQ(axis.at(kAxisStart - 5), 100);
    EXPECT_DOUBLE_EQ(axis.at(std::numeric_limits<std::int64_t>::max()), 700);
    EXPECT_EQ(drawn(axis).texts(),
              (std::vector<std::string>{"10:00:00.0000000", "10:00:00.0000002", "10:00:00.0000004",
                                        "10:00:00.0000006", "10:00:00.0000008", "10:00:00.0000010",
                                        "2024-03-20 UTC"}));
}

TEST(PlotTimeAxis, HasRoundTicksThatHaveRoom) {
    for (std::int64_t span = 2000; span < 40LL * 86400 * kSecond; span *= 3) {
        for (double const width : {250.0, 700.0, 1500.0}) {
            TimeAxis const axis(kAxisStart - 12'345, kAxisStart - 12'345 + span, 60, 60 + width,
                                60 + width + 8);
            SvgReader const svg = drawn(axis);
            double lastRight = 0;
            for (pugi::xml_node const node : svg.root().first_child().children("text")) {
                if (node.attribute("text-anchor").value() != std::string("middle")) {
                    continue;
                }
                double const half = textWidth(node.child_value(), 12) / 2;
                double const x = node.attribute("x").as_double();
                EXPECT_GT(x - half, lastRight) << span << ": " << node.child_value();
                lastRight = x + half;
                EXPECT_LE(lastRight, 60 + width + 8.1);
            }
            EXPECT_GE(axis.ticks().times.size(), 1U) << span;
        }
    }
}

TEST(PlotTimeAxis, NamesTheDayOnce) {
    SvgReader const svg =
        drawn(TimeAxis(kAxisStart, kAxisStart + 400'000 * kMicrosecond, 100, 700, 792));
    EXPECT_EQ(svg.texts(),
              (std::vector<std::string>{"10:00:00.0", "10:00:00.1", "10:00:00.2", "10:00:00.3",
                                        "10:00:00.4", "2024-03-20 UTC"}));
    EXPECT_EQ(svg.textNode("10:00:00.1").attribute("x").as_double(), 250);
}

TEST(PlotTimeAxis, NamesEachDayThatBegins) {
    std::int64_t const evening = kAxisStart + 12 * 3600 * kSecond;
    auto const texts =
        drawn(TimeAxis(evening, evening + 8 * 3600 * kSecond, 100, 700, 792)).texts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "2024-03-20 UTC"), 1);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "2024-03-21 UTC"), 1);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "00:00"), 1);
    auto const days = drawn(TimeAxis(kAxisStart, kAxisStart + 20 * 86400 * kSecond, 100, 700, 792));
    EXPECT_TRUE(days.shows("2024-04-0"));
    EXPECT_TRUE(days.shows("UTC"));
}

TEST(PlotValueAxis, PutsValuesFromTheTop) {
    ValueAxis const axis(rangeFrom(-100, 100), "A", 110);
    EXPECT_NEAR(axis.at(100), 110 / 22.0, 1e-9);
    EXPECT_NEAR(axis.at(0), 55, 1e-9);
    EXPECT_NEAR(axis.at(-100), 105, 1e-9);
    EXPECT_EQ(labelsOf(axis), (std::vector<std::string>{"-100", "-50", "0", "50", "100"}));
    EXPECT_EQ(axis.unit(), "A");
}

TEST(PlotValueAxis, ChoosesAPrefix) {
    ValueAxis const kilo(rangeFrom(-89'000, 89'000), "V", 150);
    EXPECT_EQ(kilo.unit(), "kV");
    EXPECT_EQ(labelsOf(kilo), (std::vector<std::string>{"-50", "0", "50"}));
    EXPECT_EQ(ValueAxis(rangeFrom(0, 0.02), "A", 150).unit(), "mA");
    EXPECT_EQ(ValueAxis(rangeFrom(0, 2e9), "W", 150).unit(), "GW");
    EXPECT_EQ(ValueAxis(rangeFrom(0, 2e4), "deg", 150).unit(), "deg");
    ValueAxis const counts(rangeFrom(-9e6, 9e6), "", 150);
    EXPECT_EQ(counts.unit(), "");
    EXPECT_EQ(labelsOf(counts), (std::vector<std::string>{"-5M", "0", "5M"}));
    EXPECT_EQ(ValueAxis(rangeFrom(0, 0), "A", 150).unit(), "A");
}

TEST(PlotValueAxis, WritesTicksThatDiffer) {
    double const huge = std::numeric_limits<double>::max();
    struct Case {
        double least;
        double largest;
    };
    for (Case const each : {Case{0, 1},
                            {-1e30, 1e30},
                            {1e-30, 3e-30},
                            {-huge, huge},
                            {1e6, 1e6 + 1},
                            {-2e9, 2e9},
                            {0, 0},
                            {5, 5},
                            {-1e30, -1e30},
                            {1e300, 1.1e300},
                            {0.1, 0.3},
                            {1e-310, 1e-310},
                            {123456789, 123456790},
                            {-7e-5, 9e-5}}) {
        for (char const* const unit : {"A", ""}) {
            ValueAxis const axis(rangeFrom(each.least, each.largest), unit, 150);
            auto labels = labelsOf(axis);
            EXPECT_FALSE(labels.empty()) << each.least;
            for (std::string const& label : labels) {
                EXPECT_LE(label.size(), 16U) << label;
            }
            std::size_t const count = labels.size();
            std::sort(labels.begin(), labels.end());
            labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
            EXPECT_EQ(labels.size(), count) << each.least << " to " << each.largest;
            for (double const value : {each.least, each.largest}) {
                EXPECT_GE(axis.at(value), 0);
                EXPECT_LE(axis.at(value), 150);
            }
            EXPECT_GE(axis.at(each.least), axis.at(each.largest));
        }
    }
}

TEST(PlotValueAxis, PutsOneValueInTheMiddle) {
    for (double const value : {0.0, 5.0, -3e8, 1e30}) {
        EXPECT_NEAR(ValueAxis(rangeFrom(value, value), "", 150).at(value), 75, 0.01);
    }
}

TEST(PlotValueRange, TakesFiniteValuesAlone) {
    ValueRange range;
    range.add(std::numeric_limits<double>::quiet_NaN());
    range.add(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(range.hasValues);
    range.add(3);
    range.add(-1);
    EXPECT_EQ(range.least, -1);
    EXPECT_EQ(range.largest, 3);
}

}  // namespace
}  // namespace TalTest::PlotAxesTest
