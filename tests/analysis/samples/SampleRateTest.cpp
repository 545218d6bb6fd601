// When samples are due.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <cstdint>

namespace TalIec61850Analysis::SampleRateTest {
namespace {

__extension__ typedef __int128 Wide;

/// 292 years, in nanoseconds.
constexpr Wide kMostTime = Wide{292} * 31'536'000 * 1'000'000'000;

TEST(SampleRateTimes, AreThoseOfTheStandardsRates) {
    SampleRate const rate{.samples = 4800};
    EXPECT_EQ(rate.timeOf(0), 0);
    EXPECT_EQ(rate.timeOf(1), 208'333);
    EXPECT_EQ(rate.timeOf(2), 416'666);
    EXPECT_EQ(rate.timeOf(3), 625'000);
    EXPECT_EQ(rate.timeOf(4799), 999'791'666);
    EXPECT_EQ(rate.timeOf(4800), 1'000'000'000);
    EXPECT_EQ((SampleRate{.samples = 1, .seconds = 10}).timeOf(7), 70'000'000'000);
    EXPECT_FALSE(SampleRate().isKnown());
    EXPECT_DOUBLE_EQ((SampleRate{.samples = 1, .seconds = 10}).perSecond(), 0.1);
}

RC_GTEST_PROP(SampleRateTimes, AreCutFromTheExactOnes, ()) {
    SampleRate const rate{
        .samples = *rc::gen::oneOf(rc::gen::inRange<std::uint32_t>(1, 100'000),
                                   rc::gen::inRange<std::uint32_t>(1, 0xFFFFFFFF)),
        .seconds = *rc::gen::oneOf(rc::gen::just<std::uint32_t>(1),
                                   rc::gen::inRange<std::uint32_t>(1, 100))};
    Wide const most = kMostTime * rate.samples / (Wide{rate.seconds} * 1'000'000'000);
    auto const limit = static_cast<std::int64_t>(most >= INT64_MAX ? Wide{INT64_MAX - 1} : most);
    std::int64_t const number = *rc::gen::oneOf(
        rc::gen::inRange<std::int64_t>(0, limit + 1),
        rc::gen::inRange<std::int64_t>(0, std::min<std::int64_t>(limit + 1, 200'000)));
    Wide const exact = Wide{number} * rate.seconds * 1'000'000'000 / rate.samples;
    RC_ASSERT(rate.timeOf(number) == static_cast<std::int64_t>(exact));
}

TEST(SampleRateTimes, HoldTheLargestRateAndUnit) {
    // The rest of a division times the unit and a second takes more than 64 bits.
    SampleRate const rate{.samples = 0xFFFFFFFF, .seconds = 1};
    EXPECT_EQ(rate.timeOf(0xFFFFFFFE), 999'999'999);
    SampleRate const slow{.samples = 1, .seconds = 0xFFFFFFFF};
    EXPECT_EQ(slow.timeOf(2), std::int64_t{0xFFFFFFFF} * 2'000'000'000);
}

}  // namespace
}  // namespace TalIec61850Analysis::SampleRateTest
