// Which sample a packet brings: walks of smpCnt.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/SampleCounter.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis::detail::SampleCounterTest {
namespace {

/// 4000 a second.
constexpr std::int64_t kInterval = 250'000;
constexpr std::int64_t kSecondOfCounter = 1'000'000'000;
constexpr CountRule k4000 = {.wrap = 4000, .interval = kInterval, .atOnce = 1};

/// A counter that has seen some samples, the last at time 0.
SampleCounter startedAt(std::uint32_t smpCnt, CountRule rule = k4000) {
    SampleCounter counter(rule);
    EXPECT_EQ(counter.add(smpCnt, 0), CountStep::first);
    return counter;
}

/// The number of the sample that was added last, as if counting had begun at 0; and the largest.
std::int64_t numberOf(SampleCounter const& counter, std::int64_t wrap = 4000) {
    return counter.number() - wrap;
}
std::int64_t newestOf(SampleCounter const& counter) { return counter.newest() - 4000; }

TEST(SampleCounterWalk, BeginsWithTheFirst) {
    SampleCounter counter(k4000);
    EXPECT_EQ(counter.add(1234, 5), CountStep::first);
    EXPECT_EQ(counter.number() % 4000, 1234);
    EXPECT_EQ(counter.newest(), counter.number());
}

TEST(SampleCounterWalk, GoesThroughTheWrap) {
    SampleCounter counter = startedAt(3999);
    EXPECT_EQ(counter.add(0, kInterval), CountStep::next);
    EXPECT_EQ(numberOf(counter), 4000);
}

TEST(SampleCounterWalk, CountsWhatIsMissingAcrossTheWrap) {
    SampleCounter counter = startedAt(3998);
    EXPECT_EQ(counter.add(1, 3 * kInterval), CountStep::next);
    EXPECT_EQ(numberOf(counter), 4001);
}

TEST(SampleCounterWalk, TellsARepeatedSample) {
    SampleCounter counter = startedAt(10);
    EXPECT_EQ(counter.add(10, 1000), CountStep::repeated);
    EXPECT_EQ(newestOf(counter), 10);
    EXPECT_EQ(counter.add(11, kInterval), CountStep::next);
    EXPECT_EQ(counter.add(10, kInterval + 1000), CountStep::repeated);
    EXPECT_EQ(numberOf(counter), 10);
    EXPECT_EQ(newestOf(counter), 11);
}

TEST(SampleCounterWalk, TellsALateSampleOnce) {
    SampleCounter counter = startedAt(8);
    EXPECT_EQ(counter.add(10, 2 * kInterval), CountStep::next);
    EXPECT_EQ(counter.add(9, 2 * kInterval + 1000), CountStep::late);
    EXPECT_EQ(numberOf(counter), 9);
    EXPECT_EQ(newestOf(counter), 10);
    EXPECT_EQ(counter.add(9, 2 * kInterval + 2000), CountStep::repeated);
    EXPECT_EQ(counter.add(11, 3 * kInterval), CountStep::next);
    EXPECT_EQ(numberOf(counter), 11);
}

TEST(SampleCounterWalk, TellsALateSampleFromBeforeTheFirst) {
    SampleCounter counter = startedAt(10);
    EXPECT_EQ(counter.add(9, 1000), CountStep::late);
    EXPECT_EQ(numberOf(counter), 9);
}

TEST(SampleCounterWalk, HasNoNegativeNumbers) {
    SampleCounter counter = startedAt(0);
    EXPECT_EQ(counter.add(3998, 1000), CountStep::late);
    EXPECT_GE(counter.number(), 0);
    EXPECT_EQ(counter.number() % 4000, 3998);
}

TEST(SampleCounterWalk, TellsLateSamplesThroughTheWrap) {
    SampleCounter counter = startedAt(3990);
    EXPECT_EQ(counter.add(2, 12 * kInterval), CountStep::next);
    EXPECT_EQ(numberOf(counter), 4002);
    EXPECT_EQ(counter.add(3998, 12 * kInterval + 1), CountStep::late);
    EXPECT_EQ(numberOf(counter), 3998);
    EXPECT_EQ(counter.add(0, 12 * kInterval + 2), CountStep::late);
    EXPECT_EQ(numberOf(counter), 4000);
}

TEST(SampleCounterWalk, TakesSixteenBehindForLateAndMoreForARestart) {
    SampleCounter counter = startedAt(100);
    EXPECT_EQ(counter.add(120, 20 * kInterval), CountStep::next);
    EXPECT_EQ(counter.add(104, 20 * kInterval + 1), CountStep::late);
    EXPECT_EQ(counter.add(103, 20 * kInterval + 2), CountStep::restart);
}

TEST(SampleCounterWalk, RestartsWhereTheCounterIsBeyondItsWrap) {
    SampleCounter counter = startedAt(10);
    EXPECT_EQ(counter.add(5000, kInterval), CountStep::restart);
    EXPECT_EQ(counter.add(4000, kInterval), CountStep::restart);
    EXPECT_EQ(counter.add(0xFFFFFFFF, kInterval), CountStep::restart);
    SampleCounter beyond = startedAt(5000);
    EXPECT_EQ(beyond.add(5001, kInterval), CountStep::restart);
}

TEST(SampleCounterWalk, RestartsWhereTheCounterIsFarBehind) {
    EXPECT_EQ(startedAt(100).add(3000, kInterval), CountStep::restart);
    EXPECT_EQ(startedAt(0).add(2000, kInterval), CountStep::restart);
    EXPECT_EQ(startedAt(0).add(1999, kInterval), CountStep::restart);
}

TEST(SampleCounterWalk, CountsALongLossThatTimeConfirms) {
    SampleCounter counter = startedAt(0);
    EXPECT_EQ(counter.add(1999, 1999 * kInterval), CountStep::next);
    EXPECT_EQ(numberOf(counter), 1999);
    SampleCounter half = startedAt(0);
    EXPECT_EQ(half.add(2000, 2000 * kInterval), CountStep::next);
    EXPECT_EQ(numberOf(half), 2000);
    SampleCounter more = startedAt(100);
    EXPECT_EQ(more.add(99, 3999 * kInterval), CountStep::next);
    EXPECT_EQ(numberOf(more), 4099);
}

TEST(CountRule, TellsAJumpWhereLessThanHalfOfTheTimePassed) {
    EXPECT_FALSE(k4000.isJump(1, 0, 1));
    EXPECT_TRUE(k4000.isJump(2, 1.4 * kInterval, 1));
    EXPECT_FALSE(k4000.isJump(2, 1.6 * kInterval, 1));
    EXPECT_TRUE(k4000.isJump(9, kInterval, 1));
    EXPECT_FALSE(k4000.isJump(9, 9 * kInterval, 1));
    // From the last ASDU of a frame to the first of the frame after the next.
    EXPECT_TRUE(k4000.isJump(9, 11 * kInterval, 8));
    EXPECT_FALSE(k4000.isJump(9, 13 * kInterval, 8));
    EXPECT_FALSE(CountRule().isJump(9, 0, 1));
}

TEST(SampleCounterWalk, LetsTimeDecideHalfOfTheWrapWhereThereIsNone) {
    SampleCounter counter = startedAt(0);
    EXPECT_EQ(counter.add(1999, kNoTime), CountStep::next);
    EXPECT_EQ(numberOf(counter), 1999);
    EXPECT_EQ(startedAt(0).add(2000, kNoTime), CountStep::restart);
    EXPECT_EQ(startedAt(100).add(90, kNoTime), CountStep::late);
    EXPECT_EQ(startedAt(100).add(100, kNoTime), CountStep::repeated);
}

TEST(SampleCounterWalk, CountsWholeSecondsByTime) {
    for (std::int64_t const seconds : {1, 2, 3, 60, 599}) {
        SampleCounter counter = startedAt(17);
        EXPECT_EQ(counter.add(18, seconds * kSecondOfCounter + kInterval), CountStep::next);
        EXPECT_EQ(numberOf(counter), 18 + 4000 * seconds);
        SampleCounter same = startedAt(17);
        EXPECT_EQ(same.add(17, seconds * kSecondOfCounter), CountStep::next);
        EXPECT_EQ(numberOf(same), 17 + 4000 * seconds);
    }
}

TEST(SampleCounterWalk, EndsAtAPause) {
    EXPECT_EQ(startedAt(17).add(18, 601 * kSecondOfCounter), CountStep::pause);
    EXPECT_EQ(startedAt(17).add(3000, std::int64_t{4'000'000'000} * kSecondOfCounter),
              CountStep::pause);
}

TEST(SampleCounterWalk, SaysWhereTheClockOfTheCaptureSteps) {
    EXPECT_EQ(startedAt(17).add(18, kInterval - kSecondOfCounter / 2), CountStep::clockStep);
    EXPECT_EQ(startedAt(17).add(18, kInterval + kSecondOfCounter / 2), CountStep::clockStep);
    EXPECT_EQ(startedAt(17).add(18, kInterval - kSecondOfCounter), CountStep::clockStep);
    EXPECT_EQ(startedAt(17).add(18, -kSecondOfCounter * 86'400 * 365), CountStep::clockStep);
    EXPECT_EQ(startedAt(3999).add(0, kInterval - kSecondOfCounter), CountStep::clockStep);
}

TEST(SampleCounterWalk, GoesOnThroughSmallStepsOfTheClock) {
    SampleCounter counter = startedAt(17);
    EXPECT_EQ(counter.add(18, -500'000), CountStep::next);
    EXPECT_EQ(numberOf(counter), 18);
    EXPECT_EQ(counter.add(19, 90'000'000), CountStep::next);
    EXPECT_EQ(numberOf(counter), 19);
}

TEST(SampleCounterWalk, TakesTheSamplesOfAFrameThatComeAtOnce) {
    SampleCounter counter = startedAt(0, {.wrap = 12800, .interval = 78'125, .atOnce = 8});
    for (std::uint32_t smpCnt = 1; smpCnt < 8; ++smpCnt)
        EXPECT_EQ(counter.add(smpCnt, 0), CountStep::next);
    EXPECT_EQ(counter.add(24, 3 * 625'000), CountStep::next);
    EXPECT_EQ(numberOf(counter, 12800), 24);
    EXPECT_EQ(counter.add(16, 3 * 625'000 + 1000), CountStep::late);
}

TEST(SampleCounterWalk, HoldsTimesThatAreFarApart) {
    constexpr std::int64_t most = INT64_MAX;
    constexpr std::int64_t least = INT64_MIN + 1;
    SampleCounter counter(k4000);
    EXPECT_EQ(counter.add(0, least), CountStep::first);
    EXPECT_NE(counter.add(1, most), CountStep::first);
    SampleCounter other(k4000);
    EXPECT_EQ(other.add(0, most), CountStep::first);
    EXPECT_NE(other.add(1, least), CountStep::first);
}

TEST(SampleCounterWalk, HasAnyWrap) {
    for (std::uint32_t const wrap : {1U, 2U, 3U, 17U, 65536U, 0xFFFFFFFFU}) {
        SampleCounter counter({.wrap = wrap, .interval = 1e6, .atOnce = 1});
        for (std::int64_t i = 0; i < 200; ++i) {
            CountStep const step = counter.add(static_cast<std::uint32_t>(i % wrap), i * 1'000'000);
            EXPECT_EQ(step, i == 0 ? CountStep::first : CountStep::next) << wrap << " " << i;
            EXPECT_EQ(numberOf(counter, wrap), i);
        }
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::SampleCounterTest
