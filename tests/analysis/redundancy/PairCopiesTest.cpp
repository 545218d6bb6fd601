// What is counted of frames of which it is known when each copy came.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "analysis/redundancy/RedundantTraffic.hpp"

namespace TalTest::PairCopiesTest {
namespace {

using namespace TalIec61850Analysis;

TEST(PairCopies, CountsBothWaysAndMeasuresToTheNanosecond) {
    auto const paired = pairIn(sendBoth({.frames = 500, .delayA = 10'007, .delayB = 13'010}));
    CopyCounts const& counts = paired.counts();
    EXPECT_EQ(counts.redundancy, Redundancy::prp);
    EXPECT_EQ(counts.both, 500U);
    EXPECT_EQ(counts.frames(), 500U);
    EXPECT_EQ(counts.firstA, 500U);
    EXPECT_EQ(counts.firstB, 0U);
    EXPECT_EQ(counts.differences,
              (TimeDifferences{.min = 3'003, .p50 = 3'003, .p99 = 3'003, .max = 3'003}));
    EXPECT_EQ(counts.clockOffset, std::nullopt);
    EXPECT_EQ(paired.faultLines(), FaultLines());
    ASSERT_EQ(paired.redundancy.sources.size(), 1U);
    EXPECT_EQ(paired.redundancy.sources[0].counts, counts);
    EXPECT_EQ(paired.redundancy.sources[0].source, (MacAddress{2, 0, 0, 0, 0, 1}));
}

TEST(PairCopies, TellsMedianAndPercentileOfDelays) {
    // Differences of -49 to 50 microseconds, in another order.
    WireFrames frames = sendBoth({.frames = 100, .delayA = 0, .delayB = 0});
    for (std::size_t number = 0; number < 100; ++number) {
        auto const away = static_cast<std::int64_t>(number * 37 % 100) - 49;
        copyOf(frames, number, 'B').time += away * kMicrosecond;
        copyOf(frames, number, 'A').time += kMillisecond;
        copyOf(frames, number, 'B').time += kMillisecond;
    }
    auto const counts = pairIn(frames).counts();
    EXPECT_EQ(counts.differences, (TimeDifferences{.min = -49 * kMicrosecond,
                                                   .p50 = 0,
                                                   .p99 = 49 * kMicrosecond,
                                                   .max = 50 * kMicrosecond}));
    // Of those at the same time, A comes first in the file.
    EXPECT_EQ(counts.firstA, 51U);
    EXPECT_EQ(counts.firstB, 49U);
}

TEST(PairCopies, GoesOnAfterTheWrapOfTheSequence) {
    auto const counts =
        pairIn(
            sendBoth({.frames = 70'000, .firstSequence = 65'000, .interval = 100 * kMicrosecond}))
            .counts();
    EXPECT_EQ(counts.both, 70'000U);
    EXPECT_EQ(counts.frames(), 70'000U);
}

TEST(PairCopies, WaitsFor400Milliseconds) {
    auto const bothAfter = [](std::int64_t delay) {
        return pairIn(sendBoth({.frames = 20, .delayA = 0, .delayB = delay})).counts().both;
    };
    EXPECT_EQ(bothAfter(400 * kMillisecond), 20U);
    EXPECT_EQ(bothAfter(400 * kMillisecond + 1), 0U);
}

TEST(PairCopies, LeavesOutStreamsWithoutRedundancy) {
    WireFrames frames = sendBoth({.frames = 10});
    std::vector<Bytes> captures = capturesOf(frames);
    EXPECT_TRUE(pairIn(std::vector<Bytes>()).redundancy.streams.empty());
    EXPECT_EQ(pairIn(captures).redundancy.streams.size(), 1U);
}

TEST(PairCopies, FindsNothingMissingOfASourceOverOneWay) {
    WireFrames frames = sendBoth({});
    lose(frames, 'B', 0, 2000);
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().onlyA, 2000U);
    EXPECT_EQ(paired.counts().frames(), 2000U);
    EXPECT_EQ(paired.counts().missingRunsB, 0U);
    EXPECT_EQ(paired.counts().differences, std::nullopt);
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

TEST(PairCopies, TellsWhichCopiesAreMissing) {
    WireFrames frames = sendBoth({});
    lose(frames, 'A', 700);
    lose(frames, 'B', 800);
    lose(frames, 'B', 900, 25);
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 2000U - 27);
    EXPECT_EQ(paired.counts().onlyA, 26U);
    EXPECT_EQ(paired.counts().onlyB, 1U);
    EXPECT_EQ(paired.counts().missingRunsA, 1U);
    EXPECT_EQ(paired.counts().missingRunsB, 2U);
    EXPECT_EQ(paired.faultLines(), (FaultLines{"copyMissing A #700", "copyMissing B #800",
                                               "copyMissing B #900 count 25"}));
    RedundancyFault const& run = paired.faults.back();
    PacketColumns const& packets = paired.index.streams()[0].parts[0].packets;
    EXPECT_EQ(run.from, packets.times()[run.packet.packet]);
    EXPECT_EQ(run.until - run.from, 24 * kMillisecond);
    ASSERT_TRUE(run.other);
    EXPECT_EQ(packets.smpCnts()[run.other->packet], 899U);
}

TEST(PairCopies, LosesNothingWhereBothCopiesAreMissing) {
    WireFrames frames = sendBoth({});
    lose(frames, 'A', 700, 10);
    lose(frames, 'B', 700, 10);
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 1990U);
    EXPECT_EQ(paired.counts().frames(), 1990U);
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

TEST(PairCopies, FindsNothingMissingWithin400MillisecondsOfTheEnds) {
    for (std::size_t const number : {0U, 1U, 100U, 399U, 1599U, 1600U, 1999U}) {
        WireFrames frames = sendBoth({.delayA = 3, .delayB = 0});
        lose(frames, 'B', number);
        auto const paired = pairIn(frames);
        EXPECT_EQ(paired.counts().onlyA, 1U) << number;
        EXPECT_EQ(paired.counts().missingRunsB, 0U) << number;
    }
    for (std::size_t const number : {400U, 1598U}) {
        WireFrames frames = sendBoth({.delayA = 3, .delayB = 0});
        lose(frames, 'B', number);
        EXPECT_EQ(pairIn(frames).counts().missingRunsB, 1U) << number;
    }
}

TEST(PairCopies, FindsNothingMissingASecondAfterAWayWentSilent) {
    WireFrames frames = sendBoth({.frames = 5000});
    lose(frames, 'B', 1000, 3000);
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().onlyA, 3000U);
    EXPECT_EQ(paired.counts().missingRunsB, 1U);
    // The last over B came 3 microseconds later than over A.
    EXPECT_EQ(paired.faultLines(), FaultLines{"copyMissing B #1000 count 1000"});
}

TEST(PairCopies, HearsASourceByAllOfItsStreams) {
    // The copies of one stream are lost from some time on; those of the other go on.
    WireFrames frames = sendBoth({.frames = 4000, .firstSequence = 0, .svID = "MU01"});
    lose(frames, 'B', 1000, 2000);
    WireFrames others = sendBoth({.frames = 4000, .firstSequence = 30000, .svID = "MU02"});
    frames.insert(frames.end(), others.begin(), others.end());
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts("MU01").onlyA, 2000U);
    EXPECT_EQ(paired.counts("MU02").both, 4000U);
    EXPECT_EQ(paired.faultLines(), FaultLines{"copyMissing B #1000 count 2000"});
    ASSERT_EQ(paired.redundancy.sources.size(), 1U);
    EXPECT_EQ(paired.redundancy.sources[0].counts.both, 6000U);
    EXPECT_EQ(paired.redundancy.sources[0].counts.onlyA, 2000U);
}

TEST(PairCopies, KeepsSourcesApart) {
    WireFrames frames = sendBoth({.frames = 50, .svID = "MU01", .source = "02:00:00:00:00:01"});
    WireFrames others = sendBoth({.frames = 50, .svID = "MU02", .source = "02:00:00:00:00:02"});
    lose(others, 'A', 0, 50);
    frames.insert(frames.end(), others.begin(), others.end());
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts("MU01").both, 50U);
    EXPECT_EQ(paired.counts("MU02").onlyB, 50U);
    EXPECT_EQ(paired.redundancy.sources.size(), 2U);
}

TEST(PairCopies, TellsCopiesThatDiffer) {
    WireFrames frames = sendBoth({});
    copyOf(frames, 500, 'B').value = 1;
    copyOf(frames, 501, 'A').value = 1;
    copyOf(frames, 900, 'B').value = 1;
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 2000U);
    EXPECT_EQ(paired.counts().differs, 3U);
    EXPECT_EQ(paired.faultLines(),
              (FaultLines{"copyDiffers B #500 count 2", "copyDiffers B #900"}));
    ASSERT_TRUE(paired.faults[0].other);
    EXPECT_NE(paired.faults[0].other, paired.faults[0].packet);
}

TEST(PairCopies, DoesNotComparePadding) {
    WireFrames frames = sendBoth({.frames = 20});
    copyOf(frames, 5, 'A').padding = 8;
    copyOf(frames, 6, 'B').padding = 20;
    auto const counts = pairIn(frames).counts();
    EXPECT_EQ(counts.both, 20U);
    EXPECT_EQ(counts.differs, 0U);
}

TEST(PairCopies, TellsCopiesThatAreTooMany) {
    WireFrames frames = sendBoth({});
    for (std::size_t const number : {600U, 601U, 1200U}) {
        WireFrame again = copyOf(frames, number, 'A');
        again.time += kMillisecond / 10;
        frames.push_back(again);
    }
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 1997U);
    EXPECT_EQ(paired.counts().more, 3U);
    EXPECT_EQ(paired.counts().frames(), 2000U);
    EXPECT_EQ(paired.faultLines(), (FaultLines{"copyExtra A #600 count 2", "copyExtra A #1200"}));
}

TEST(PairCopies, TellsACopyThatHasTheWrongLan) {
    WireFrames frames = sendBoth({});
    copyOf(frames, 600, 'B').way = 'A';
    copyOf(frames, 900, 'A').way = 'B';
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 1998U);
    EXPECT_EQ(paired.counts().wrongLan, 2U);
    EXPECT_EQ(paired.counts().frames(), 2000U);
    EXPECT_EQ(paired.counts().missingRunsA + paired.counts().missingRunsB, 0U);
    EXPECT_EQ(paired.faultLines(), (FaultLines{"wrongLan A #600", "wrongLan B #900"}));
}

TEST(PairCopies, KnowsNoWrongLanWhereOneIsSeenOnceAtMost) {
    WireFrames frames = sendBoth({.frames = 10});
    for (WireFrame& frame : frames) {
        frame.way = 'A';
    }
    frames.back().way = 'B';
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().wrongLan, 0U);
    EXPECT_EQ(paired.counts().more, 9U);
    EXPECT_EQ(paired.faultLines(), FaultLines{"copyExtra A #0 count 9"});
}

TEST(PairCopies, CountsFramesInAWindowByTheirFirstCopy) {
    WireFrames frames = sendBoth({.frames = 2000, .delayA = 0, .delayB = 5 * kMillisecond});
    lose(frames, 'B', 1000, 10);
    auto const start = std::chrono::seconds(1'700'000'000);
    PairingOptions options;
    options.window.from = CaptureTime(start + std::chrono::milliseconds(995));
    options.window.to = CaptureTime(start + std::chrono::milliseconds(1004));
    auto const counts = pairIn(capturesOf(frames), options).counts();
    EXPECT_EQ(counts.both, 5U);
    EXPECT_EQ(counts.onlyA, 5U);
    EXPECT_EQ(counts.missingRunsB, 1U);
    EXPECT_EQ(counts.firstA, 5U);
}

TEST(PairCopies, PairsBothDirectionsOfARing) {
    WireFrames frames = sendBoth({.delayA = 40 * kMicrosecond, .delayB = 0, .isHsr = true});
    lose(frames, 'A', 1000, 3);
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().redundancy, Redundancy::hsr);
    EXPECT_EQ(paired.counts().both, 1997U);
    EXPECT_EQ(paired.counts().firstB, 1997U);
    EXPECT_EQ(paired.counts().differences->max, -40 * kMicrosecond);
    EXPECT_EQ(paired.counts().missingRunsA, 1U);
    EXPECT_EQ(paired.faultLines(), FaultLines{"copyMissing A #1000 count 3"});
}

TEST(PairCopies, TellsAFrameThatIsNotTakenFromTheRing) {
    WireFrames frames = sendBoth({.isHsr = true});
    WireFrame third = copyOf(frames, 1000, 'A');
    third.time += 2 * kMillisecond;
    frames.push_back(third);
    copyOf(frames, 1200, 'B').way = 'A';
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().more, 2U);
    EXPECT_EQ(paired.counts().wrongLan, 0U);
    EXPECT_EQ(paired.faultLines(),
              (FaultLines{"copyExtra A #1000", "copyExtra A #1200", "copyMissing B #1200"}));
}

TEST(PairCopies, ComparesTheSizeInTheTagOfARing) {
    WireFrames frames = sendBoth({.frames = 4, .isHsr = true});
    Bytes capture = capturesOf(frames).front();
    constexpr std::size_t kHeader = 24 + 16;
    constexpr std::size_t kSizeInTag = 15;
    capture[kHeader + kSizeInTag] ^= 1U;
    EXPECT_EQ(pairIn(std::vector<Bytes>{capture}).counts().differs, 1U);
}

TEST(PairCopies, DoesNotPairARingWithAParallelNetwork) {
    WireFrames frames = sendBoth({.frames = 10});
    for (WireFrame& frame : frames) {
        frame.isHsr = frame.way == 'B';
    }
    auto const counts = pairIn(frames).counts();
    EXPECT_EQ(counts.onlyA, 10U);
    EXPECT_EQ(counts.onlyB, 10U);
}

}  // namespace
}  // namespace TalTest::PairCopiesTest
