#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tools/render/RoundTicks.hpp"

namespace TalIec61850Tools::RoundTicksTest {
namespace {

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr std::int64_t kOneSecond = 1'000 * kMillisecond;
constexpr std::int64_t kOneHour = 3'600 * kOneSecond;
constexpr std::int64_t kOneDay = 24 * kOneHour;
/// 2024-03-20T10:00:00Z
constexpr std::int64_t kTen = 1'710'928'800 * kOneSecond;

std::vector<std::string> textsOf(TimeTicks const& ticks) {
    std::vector<std::string> texts;
    for (std::int64_t const time : ticks.times) {
        texts.push_back(tickText(time, ticks.step));
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(RoundTicks, AreAtRoundPartsOfASecond) {
    auto const ticks = roundTimes(kTen + 101 * kMillisecond, kTen + 501 * kMillisecond, 4);
    EXPECT_EQ(ticks.step, 100 * kMillisecond);
    EXPECT_EQ(textsOf(ticks), (Texts{"10:00:00.2", "10:00:00.3", "10:00:00.4", "10:00:00.5"}));
}

TEST(RoundTicks, AreAtSecondsMinutesHoursAndDays) {
    EXPECT_EQ(roundTimes(kTen, kTen + 40 * kOneSecond, 4).step, 10 * kOneSecond);
    EXPECT_EQ(roundTimes(kTen, kTen + 50 * kOneSecond, 4).step, 15 * kOneSecond);
    EXPECT_EQ(textsOf(roundTimes(kTen, kTen + 2 * kOneHour, 4)),
              (Texts{"10:00", "10:30", "11:00", "11:30", "12:00"}));
    EXPECT_EQ(roundTimes(kTen, kTen + 20 * kOneHour, 4).step, 6 * kOneHour);
    EXPECT_EQ(textsOf(roundTimes(kTen, kTen + 3 * kOneDay, 4)),
              (Texts{"2024-03-21", "2024-03-22", "2024-03-23"}));
    EXPECT_EQ(roundTimes(kTen, kTen + 41 * kOneDay, 4).step, 20 * kOneDay);
}

TEST(RoundTicks, HaveAscendingStepsWithTheirLabels) {
    auto const& steps = timeSteps();
    EXPECT_EQ(steps.front().length, 1);
    EXPECT_EQ(steps.back().length, 100'000 * kOneDay);
    std::string const instant = "2024-03-20T10:15:30.123456789Z";
    for (std::size_t i = 0; i < steps.size(); ++i) {
        EXPECT_TRUE(i == 0 || steps[i - 1].length < steps[i].length);
        std::int64_t const time = kTen + 930'123'456'789;
        EXPECT_EQ(instant.substr(steps[i].first, steps[i].end - steps[i].first),
                  tickText(time, steps[i].length));
    }
}

TEST(RoundTicks, AreTrueToTheNanosecond) {
    auto const ticks = roundTimes(kTen + 7, kTen + 12, 5);
    EXPECT_EQ(ticks.step, 1);
    ASSERT_EQ(ticks.times.size(), 6U);
    EXPECT_EQ(tickText(ticks.times.front(), ticks.step), "10:00:00.000000007");
    EXPECT_EQ(tickText(kTen + 20, 20), "10:00:00.00000002");
}

TEST(RoundTicks, AreTheInstantWhereTheAxisIsOne) {
    EXPECT_EQ(roundTimes(kTen + 3, kTen + 3, 4).times, std::vector<std::int64_t>{kTen + 3});
    EXPECT_TRUE(roundTimes(kTen, kTen - 1, 4).times.empty());
}

TEST(RoundTicks, AreNoMoreThanThereIsRoomForHoweverLongTheAxis) {
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    EXPECT_LE(roundTimes(kLeast, kMost, 1).times.size(), 3U);
    EXPECT_LE(roundTimes(kLeast, kMost, 0).times.size(), 3U);
    EXPECT_LE(roundTimes(0, kMost, 10).times.size(), 11U);
    EXPECT_FALSE(roundTimes(0, kMost, 10).times.empty());
}

RC_GTEST_PROP(RoundTicks, AreMultiplesOnTheAxisAndNotCloserThanAsked, ()) {
    auto const from = *rc::gen::inRange<std::int64_t>(0, 4 * kTen);
    auto const bits = *rc::gen::inRange(0, 60);
    auto const length = *rc::gen::inRange<std::int64_t>(0, std::int64_t{1} << bits);
    auto const most = *rc::gen::inRange<std::size_t>(1, 30);
    auto const ticks = roundTimes(from, from + length, most);
    RC_ASSERT(ticks.times.size() <= most + 1);
    for (std::int64_t const time : ticks.times) {
        RC_ASSERT(time >= from);
        RC_ASSERT(time - from <= length);
        RC_ASSERT(time % ticks.step == 0);
    }
    // One step finer would be too many: none is left out for nothing.
    RC_ASSERT(ticks.step <= 3 * (length / static_cast<std::int64_t>(most) + 1));
}

TEST(RoundTicks, OfValuesAreOneTwoOrFive) {
    EXPECT_EQ(roundValues(0, 1, 10).values,
              (std::vector<double>{0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1}));
    EXPECT_EQ(roundValues(-173, 171, 4).values, (std::vector<double>{-100, 0, 100}));
    EXPECT_EQ(roundValues(0, 7.1, 4).step, 2);
    EXPECT_EQ(roundValues(0, 17, 4).step, 5);
    EXPECT_EQ(roundValues(-0.3, 0.3, 6).values,
              (std::vector<double>{-0.3, -0.2, -0.1, 0, 0.1, 0.2, 0.3}));
    EXPECT_FALSE(std::signbit(roundValues(-1, 1, 4).values[2]));
}

TEST(RoundTicks, OfValuesTakeAnyRange) {
    constexpr double kHuge = std::numeric_limits<double>::max();
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(roundValues(-kHuge, kHuge, 4).values.size(), 3U);
    EXPECT_EQ(roundValues(0, 1e30, 5).values.size(), 6U);
    EXPECT_EQ(roundValues(0, 1e-30, 5).values.size(), 6U);
    EXPECT_EQ(roundValues(5, 5, 4).values, std::vector<double>{5});
    EXPECT_EQ(roundValues(0, std::numeric_limits<double>::denorm_min(), 4).values,
              std::vector<double>{0});
    EXPECT_EQ(roundValues(1e30, std::nextafter(1e30, 2e30), 4).values, std::vector<double>{1e30});
    EXPECT_TRUE(roundValues(kNaN, 1, 4).values.empty());
    EXPECT_TRUE(roundValues(0, HUGE_VAL, 4).values.empty());
    EXPECT_TRUE(roundValues(1, 0, 4).values.empty());
}

TEST(RoundTicks, NameTheirDay) { EXPECT_EQ(dayText(kTen), "2024-03-20"); }

}  // namespace
}  // namespace TalIec61850Tools::RoundTicksTest
