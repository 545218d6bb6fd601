#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/terminal/PlainPictures.hpp"
#include "tools/terminal/SparklineRows.hpp"

namespace TalTest::SparklineRowsTest {
namespace {

using namespace TalIec61850Tools;

constexpr TextForm kUtf8Of80{.columns = 80, .isUtf8 = true, .inColour = false};
constexpr TextForm kAsciiOf80{.columns = 80, .isUtf8 = false, .inColour = false};

/// Samples of a sine of amplitude 100, a number of cycles in 100 ms.
std::vector<PlainSample> sine(std::size_t samples, double cycles) {
    std::vector<PlainSample> made;
    for (std::size_t i = 0; i < samples; ++i) {
        double const part = static_cast<double>(i) / static_cast<double>(samples);
        std::int64_t const time = kPictureStart + static_cast<std::int64_t>(i) * 100 * kPictureMs /
                                                      static_cast<std::int64_t>(samples);
        made.push_back({.time = time,
                        .values = {100 * std::sin(2 * std::numbers::pi * cycles * part)},
                        .qualities = {0}});
    }
    return made;
}

std::string rowsOfSine(std::size_t samples, double cycles, TextForm const& form) {
    return sparklineRows(
        plainPicture(sine(samples, cycles), kPictureStart, kPictureStart + 100 * kPictureMs), form);
}

TEST(SparklineRows, DrawASine) {
    EXPECT_EQ("\n" + rowsOfSine(400, 2, kUtf8Of80), R"(
a     100 ⣀⣠⠤⠖⠒⠚⠉⠉⠉⠉⠉⠙⠒⠒⠦⢤⣀⣀                 ⣀⣠⠤⠖⠒⠚⠉⠉⠉⠉⠉⠙⠒⠒⠦⢤⣀⣀
     -100 ⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠈⠉⠓⠲⠤⠤⣄⣀⣀⣀⣀⣀⡤⠤⠴⠒⠋⠉⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠈⠉⠓⠲⠤⠤⣄⣀⣀⣀⣀⣀⡤⠤⠴⠒⠋⠉
          ╵10:00:00.00  ╵10:00:00.02  ╵10:00:00.04  ╵10:00:00.06  ╵10:00:00.08
)");
    EXPECT_EQ("\n" + rowsOfSine(400, 2, {.columns = 120, .isUtf8 = true}), R"(
a     100 ⣀⣀⣠⠤⠤⠖⠒⠒⠒⠋⠉⠉⠉⠉⠉⠉⠉⠉⠓⠒⠒⠒⠦⠤⢤⣀⣀⣀                           ⣀⣀⣠⠤⠤⠖⠒⠒⠒⠋⠉⠉⠉⠉⠉⠉⠉⠉⠓⠒⠒⠒⠦⠤⢤⣀⣀⣀
     -100 ⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠈⠉⠉⠓⠒⠲⠤⠤⠤⢤⣀⣀⣀⣀⣀⣀⣀⣀⣠⠤⠤⠤⠴⠒⠒⠋⠉⠉⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠈⠉⠉⠓⠒⠲⠤⠤⠤⢤⣀⣀⣀⣀⣀⣀⣀⣀⣠⠤⠤⠤⠴⠒⠒⠋⠉⠉
          ╵10:00:00.00          ╵10:00:00.02          ╵10:00:00.04          ╵10:00:00.06          ╵10:00:00.08
)");
    EXPECT_EQ("\n" + rowsOfSine(400, 2, kAsciiOf80), R"(
a     100 ..|--|''''''|--|..                 ..|--|''''''|--|..
     -100 '''''''''''''''''''|--|......|--|'''''''''''''''''''''|--|......|--|''
          |10:00:00.00  |10:00:00.02  |10:00:00.04  |10:00:00.06  |10:00:00.08
)");
}

TEST(SparklineRows, DrawColumnsAsTheSamplesThatTheyAreMadeOf) {
    auto const samples = sine(20'000, 2);
    auto const of = [&](std::size_t mostSamples) {
        return sparklineRows(
            plainPicture(samples, kPictureStart, kPictureStart + 100 * kPictureMs, mostSamples),
            kUtf8Of80);
    };
    EXPECT_EQ(of(0), of(20'000));
}

TEST(SparklineRows, JoinSamplesByLinesWhereTheyAreFew) {
    EXPECT_EQ("\n" + rowsOfSine(12, 1, {.columns = 40, .isUtf8 = true}), R"(
a     100 ⣀⡤⠴⠒⠚⠉⠉⠉⠉⠉⠓⠒⠦⢤⣀⡀
     -100 ⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠉⠓⠲⠤⢤⣀⣀⣀⣀⣀⡤⠤⠆⠁⠁
          ╵10:00:00.00   ╵10:00:00.05
)");
}

TEST(SparklineRows, ShadeWhereSamplesAreMissing) {
    auto samples = sine(400, 2);
    for (std::size_t i = 100; i < 140; ++i) {
        samples[i].isMissing = true;
    }
    auto const picture = plainPicture(samples, kPictureStart, kPictureStart + 100 * kPictureMs);
    EXPECT_EQ("\n" + sparklineRows(picture, {.columns = 60, .isUtf8 = true}), R"(
a     100 ⣀⡤⠖⠒⠋⠉⠉⠉⠓⠒⠦⣄⡀░░░░        ⣀⡤⠖⠒⠋⠉⠉⠉⠓⠒⠦⣄⣀
     -100 ⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁░░░░⢀⣀⣀⣠⠤⠴⠚⠉⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠁⠈⠙⠲⠤⢤⣀⣀⣀⣠⠤⠴⠚⠉
missing               ░░░░░░
          ╵10:00:00.00             ╵10:00:00.05
)");
    EXPECT_EQ("\n" + sparklineRows(picture, {.columns = 60}), R"(
a     100 .|-|''''|-|..xxxx        .|-|''''|-|..
     -100 '''''''''''''xxxx....|-|'''''''''''''''|-|....|-|'
missing               xxxxxx
          |10:00:00.00             |10:00:00.05
)");
}

TEST(SparklineRows, MarkOneMissingSampleAmongManyInItsColumn) {
    auto samples = sine(20'000, 2);
    samples[10'000].isMissing = true;
    auto const lines = linesOf(sparklineRows(
        plainPicture(samples, kPictureStart, kPictureStart + 100 * kPictureMs, 0), kAsciiOf80));
    ASSERT_GE(lines.size(), 4U);
    std::size_t const labels = lines[3].find('|');
    EXPECT_EQ(lines[2].substr(0, 7), "missing");
    EXPECT_EQ(lines[2].find('x'), labels + (80 - labels) / 2);
    EXPECT_EQ(lines[0].find('x'), std::string::npos);
}

TEST(SparklineRows, MarkBadQualityBelowTheChannel) {
    auto samples = sine(400, 2);
    for (std::size_t i = 200; i < 300; ++i) {
        samples[i].qualities = {2};
    }
    auto const picture =
        plainPicture(samples, kPictureStart, kPictureStart + 100 * kPictureMs, 1000, 4000);
    auto const lines = linesOf(sparklineRows(picture, kAsciiOf80));
    // From the middle to three quarters of 70 columns.
    EXPECT_EQ(lines.at(2), "bad       " + std::string(35, ' ') + std::string(18, '!'));
    EXPECT_EQ(lines.at(3).find('|'), 10U);
}

TEST(SparklineRows, HaveNamesUnitsAndScaledValuesInFront) {
    auto picture = plainPicture(sine(400, 2), kPictureStart, kPictureStart + 100 * kPictureMs);
    picture.channels[0] = {
        .name = "Ua", .unit = "V", .phase = "A", .scale = ChannelScale{.factor = -0.5}};
    auto const lines = linesOf(sparklineRows(picture, kAsciiOf80));
    EXPECT_EQ(lines.at(0).substr(0, 9), "Ua    50 ");
    EXPECT_EQ(lines.at(1).substr(0, 9), "V    -50 ");
}

TEST(SparklineRows, DrawAConstantInTheMiddle) {
    auto const picture = plainPicture(plainSamples(kPictureStart, {5, 5, 5, 5}), kPictureStart,
                                      kPictureStart + 4 * kPictureMs);
    EXPECT_EQ("\n" + sparklineRows(picture, {.columns = 40, .isUtf8 = true}), R"(
a    5
     5 ⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉
       ╵10:00:00.000   ╵10:00:00.002
)");
}

TEST(SparklineRows, DrawOneSampleAsOneDot) {
    auto const picture =
        plainPicture(plainSamples(kPictureStart, {-3}), kPictureStart, kPictureStart + 1);
    EXPECT_EQ("\n" + sparklineRows(picture, {.columns = 40, .isUtf8 = true}), R"(
a    -3
     -3 ⠁
        ╵10:00:00.000000000
)");
}

TEST(SparklineRows, PassOverWhatIsNoNumber) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    auto const picture = plainPicture(plainSamples(kPictureStart, {1, 2, kNaN, 1, kInfinity, 2, 1}),
                                      kPictureStart, kPictureStart + 7 * kPictureMs);
    EXPECT_EQ("\n" + sparklineRows(picture, {.columns = 40, .isUtf8 = true}), R"(
a    2   ⣀⡴⠋                  ⠘⠲⣄
     1 ⡤⠞⠁           ⡀          ⠈⠙⢦⡀
       ╵10:00:00.000          ╵
)");
    auto const nothing = plainPicture(plainSamples(kPictureStart, {kNaN, kNaN}), kPictureStart,
                                      kPictureStart + 2 * kPictureMs);
    EXPECT_EQ("\n" + sparklineRows(nothing, {.columns = 40, .isUtf8 = true}), R"(
a

     ╵10:00:00.000    ╵10:00:00.001
)");
}

TEST(SparklineRows, TakeTheLargestNumbersThatThereAre) {
    constexpr double kHuge = std::numeric_limits<double>::max();
    auto const picture = plainPicture(plainSamples(kPictureStart, {-kHuge, kHuge, 0, 1e-300}),
                                      kPictureStart, kPictureStart + 4 * kPictureMs);
    auto const lines = linesOf(sparklineRows(picture, kAsciiOf80));
    EXPECT_EQ(lines.at(0).substr(0, 18), "a     1.79769e+308");
    EXPECT_EQ(lines.at(1).substr(0, 18), "     -1.79769e+308");
}

TEST(SparklineRows, DrawNoLineFromRunToRun) {
    auto picture = plainPicture(plainSamples(kPictureStart, {0, 0, 0, 0, 10, 10, 10, 10}),
                                kPictureStart, kPictureStart + 8 * kPictureMs);
    picture.picture.waveform.runs.push_back(
        {.firstRow = 4, .rate = {}, .start = TalIec61850Analysis::RunStart::restart});
    EXPECT_EQ("\n" + sparklineRows(picture, {.columns = 40, .isUtf8 = true}), R"(
a    10                 ⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠉⠁
      0 ⣀⣀⣀⣀⣀⣀⣀⣀⣀⣀⣀⣀⡀
        ╵10:00:00.000       ╵
)");
}

TEST(SparklineRows, SayLessWhereThereIsNoRoom) {
    auto picture = plainPicture(sine(400, 2), kPictureStart, kPictureStart + 100 * kPictureMs);
    picture.channels[0].name = "a name that is long";
    EXPECT_EQ("\n" + sparklineRows(picture, {.columns = 20}), R"(
a nng ||||   ||||
      '''||||'''||||
      |10:00:00.0
)");
}

RC_GTEST_PROP(SparklineRows, NeverTakeMoreThanTheirColumns, ()) {
    auto const columns = *rc::gen::inRange<std::size_t>(20, 200);
    auto const name = *rc::gen::element<std::string>(
        "", "a", "\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d", "\\u202eabc\\xff", "e\u0301",
        "a name that is too long for any terminal, of which the middle is left out everywhere");
    auto const values = *rc::gen::container<std::vector<double>>(30, rc::gen::arbitrary<double>());
    std::vector<PlainSample> samples;
    for (double const value : values) {
        samples.push_back({.time = kPictureStart + static_cast<int>(samples.size()) * kPictureMs,
                           .values = {value},
                           .qualities = {*rc::gen::inRange<std::uint32_t>(0, 4)},
                           .isMissing = *rc::gen::inRange(0, 5) == 0});
    }
    auto const shift = *rc::gen::inRange<std::int64_t>(-10, 20) * kPictureMs;
    auto picture =
        plainPicture(samples, kPictureStart + shift, kPictureStart + shift + 30 * kPictureMs);
    for (auto& channel : picture.channels) {
        channel.name = name;
        channel.unit = "A";
    }
    for (bool const isUtf8 : {true, false}) {
        for (auto const& line :
             linesOf(sparklineRows(picture, {.columns = columns, .isUtf8 = isUtf8}))) {
            RC_ASSERT(countColumns(line) <= columns);
        }
    }
}

}  // namespace
}  // namespace TalTest::SparklineRowsTest
