// LANs that are captured by taps of their own, whose clocks need not agree.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "analysis/redundancy/RedundantTraffic.hpp"

namespace TalTest::TapClocksTest {
namespace {

using namespace TalIec61850Analysis;

/// Each way in a file of its own.
WireFrames tapped(WireFrames frames) {
    for (WireFrame& frame : frames) {
        frame.file = frame.way == 'A' ? 0 : 1;
    }
    return frames;
}

class TapClocks : public testing::TestWithParam<std::int64_t> {};

TEST_P(TapClocks, AreEstimatedAndTold) {
    std::int64_t const clock = GetParam();
    WireFrames const frames = tapped(sendBoth({.delayA = 10'000, .delayB = 13'003}));
    auto const paired = pairIn(capturesOf(frames, {0, clock}));
    EXPECT_EQ(paired.counts().both, 2000U);
    EXPECT_EQ(paired.counts().frames(), 2000U);
    EXPECT_EQ(paired.counts().clockOffset, clock + 3'003);
    EXPECT_EQ(paired.counts().differences,
              (TimeDifferences{clock + 3'003, clock + 3'003, clock + 3'003, clock + 3'003}));
    EXPECT_EQ(paired.counts().firstA, clock + 3'003 > 0 ? 2000U : 0U);
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

TEST_P(TapClocks, AreTheSameWhateverTheOrderOfFiles) {
    WireFrames frames = tapped(sendBoth({}));
    for (WireFrame& frame : frames) {
        frame.time += static_cast<std::int64_t>(frame.number * 7919 % 1000);
    }
    lose(frames, 'B', 1000, 4);
    auto captures = capturesOf(frames, {0, GetParam()});
    auto const first = pairIn(captures);
    std::reverse(captures.begin(), captures.end());
    auto const second = pairIn(captures);
    EXPECT_EQ(first.redundancy, second.redundancy);
    EXPECT_EQ(first.faultLines(), second.faultLines());
    EXPECT_EQ(first.faultLines(), FaultLines{"copyMissing B #1000 count 4"});
}

INSTANTIATE_TEST_SUITE_P(OfAllSizes, TapClocks,
                         testing::Values(0, 250, -50'000, 399 * kMillisecond, -700 * kMillisecond,
                                         3 * kWholeSecond, -86'400 * kWholeSecond));

TEST(Taps, OfRotatedFilesHaveOneHistory) {
    WireFrames whole = sendBoth({.frames = 3000});
    lose(whole, 'A', 1500, 2);
    lose(whole, 'B', 2000, 3);
    auto const expected = pairIn(whole);
    WireFrames split = whole;
    for (WireFrame& frame : split) {
        frame.file = static_cast<std::size_t>(frame.time / (700 * kMillisecond));
    }
    auto captures = capturesOf(split);
    ASSERT_EQ(captures.size(), 5U);
    EXPECT_EQ(pairIn(captures).redundancy, expected.redundancy);
    EXPECT_EQ(pairIn(captures).faultLines(), expected.faultLines());
    std::rotate(captures.begin(), captures.begin() + 2, captures.end());
    EXPECT_EQ(pairIn(captures).redundancy, expected.redundancy);
    EXPECT_EQ(pairIn(captures).faultLines(), expected.faultLines());
}

TEST(Taps, OfRotatedFilesOfEachLanHaveOneClockEach) {
    constexpr std::int64_t kClock = 5 * kWholeSecond;
    WireFrames frames = sendBoth({.frames = 3000});
    for (WireFrame& frame : frames) {
        auto const turn = static_cast<std::size_t>(frame.time / kWholeSecond);
        frame.file = 2 * turn + (frame.way == 'A' ? 0 : 1);
    }
    auto const paired = pairIn(capturesOf(frames, {0, kClock, 0, kClock, 0, kClock}));
    EXPECT_EQ(paired.counts().both, 3000U);
    EXPECT_EQ(paired.counts().clockOffset, kClock + 3'000);
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

TEST(Taps, ThatEndEarlyLackNoCopies) {
    WireFrames frames = tapped(sendBoth({.frames = 4000}));
    lose(frames, 'B', 0, 1000);
    lose(frames, 'B', 3000, 1000);
    auto const paired = pairIn(capturesOf(frames, {0, 2 * kWholeSecond}));
    EXPECT_EQ(paired.counts().both, 2000U);
    EXPECT_EQ(paired.counts().onlyA, 2000U);
    EXPECT_EQ(paired.counts().missingRunsB, 0U);
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

TEST(Taps, OfBothWaysCountEachFrameOnce) {
    WireFrames frames = sendBoth({});
    lose(frames, 'A', 1000);
    WireFrames second = sendBoth({.delayA = 50'000, .delayB = 60'000});
    lose(second, 'A', 1000);
    lose(second, 'A', 1200);
    for (WireFrame& frame : second) {
        frame.file = 1;
    }
    frames.insert(frames.end(), second.begin(), second.end());
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 1999U);
    EXPECT_EQ(paired.counts().onlyB, 1U);
    EXPECT_EQ(paired.counts().frames(), 2000U);
    EXPECT_EQ(paired.counts().clockOffset, std::nullopt);
    // Of the tap that was first.
    EXPECT_EQ(paired.counts().differences->min, 3'000);
    EXPECT_EQ(paired.counts().differences->max, 3'000);
    EXPECT_EQ(paired.faultLines(), FaultLines{"copyMissing A #1000"});
}

TEST(Taps, WithTheSameOctetsOftenAreToldApartByMost) {
    // Frames are alike again after each 4096, as those of two publishers' counters would be.
    WireFrames frames;
    for (std::size_t round = 0; round < 4; ++round) {
        WireFrames part = sendBoth({.frames = 1000, .firstSequence = 0});
        for (WireFrame& frame : part) {
            frame.time += static_cast<std::int64_t>(round) * 10 * kWholeSecond;
        }
        frames.insert(frames.end(), part.begin(), part.end());
    }
    auto const paired = pairIn(capturesOf(tapped(frames), {0, kWholeSecond}));
    EXPECT_EQ(paired.counts().both, 4000U);
    EXPECT_EQ(paired.counts().clockOffset, kWholeSecond + 3'000);
}

TEST(Taps, WithAWrongLanAmongThemAreStillOfOneLanEach) {
    WireFrames frames = tapped(sendBoth({}));
    copyOf(frames, 1000, 'B').way = 'A';
    auto const paired = pairIn(capturesOf(frames, {0, kWholeSecond}));
    EXPECT_EQ(paired.counts().both, 1999U);
    EXPECT_EQ(paired.counts().wrongLan, 1U);
    EXPECT_EQ(paired.faultLines(), FaultLines{"wrongLan A #1000"});
}

TEST(Taps, OfOneLanThatAreTwoAreNoWrongLan) {
    WireFrames frames = tapped(sendBoth({}));
    lose(frames, 'B', 1000);
    WireFrames more;
    for (WireFrame const& frame : frames) {
        if (frame.way == 'A') {
            more.push_back(frame);
            more.back().file = 2;
            more.back().time += 7 * kMicrosecond;
        }
    }
    frames.insert(frames.end(), more.begin(), more.end());
    auto const paired = pairIn(capturesOf(frames, {0, kWholeSecond, 0}));
    EXPECT_EQ(paired.counts().both, 1999U);
    EXPECT_EQ(paired.counts().onlyA, 1U);
    EXPECT_EQ(paired.faultLines(), FaultLines{"copyMissing B #1000"});
}

TEST(Taps, OfOneCaptureThatOverlapCountEachFrameOnce) {
    WireFrames frames = sendBoth({.frames = 3000});
    WireFrames again;
    for (WireFrame& frame : frames) {
        frame.file = frame.time < 1500 * kMillisecond ? 0 : 1;
        if (frame.time >= 1200 * kMillisecond && frame.time < 1500 * kMillisecond) {
            again.push_back(frame);
            again.back().file = 1;
        }
    }
    frames.insert(frames.end(), again.begin(), again.end());
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 3000U);
    EXPECT_EQ(paired.counts().frames(), 3000U);
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

}  // namespace
}  // namespace TalTest::TapClocksTest
