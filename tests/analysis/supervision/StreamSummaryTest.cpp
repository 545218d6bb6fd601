// Streams in figures.

#include <gtest/gtest.h>

#include "analysis/supervision/FoundIn.hpp"
#include "support/Data.hpp"

namespace TalTest::StreamSummaryTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kMicrosecond = 1'000;
constexpr std::int64_t kMillisecondNs = 1'000'000;
/// Of 4000 samples a second.
constexpr std::int64_t kSampleInterval = 250 * kMicrosecond;

StreamSummary summaryOf(FaultyStation& station, std::size_t stream = 0) {
    return summariesIn(station.captures()).at(stream);
}

TEST(SvSummary, HasTheFiguresOfACleanStream) {
    FaultyStation station;
    station.add({.frames = 8000});
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.stream, 0U);
    EXPECT_EQ(figures.packets, 8000U);
    EXPECT_EQ(figures.first, FaultyStation::kStart * 1'000'000'000);
    EXPECT_EQ(figures.last, figures.first + 7999 * kSampleInterval);
    EXPECT_EQ(figures.nominalRate, 4000);
    EXPECT_EQ(figures.measuredRate, 4000);
    EXPECT_EQ(figures.lost + figures.late + figures.repeated + figures.restarts, 0U);
    EXPECT_EQ(figures.largestGap, kSampleInterval);
    EXPECT_EQ(figures.largestGapLost, 0U);
    EXPECT_EQ(figures.jitter, StreamJitter());
    EXPECT_EQ(figures.lowestSynch, 2);
    EXPECT_EQ(figures.lastSynch, 2);
    EXPECT_FALSE(figures.isSimulated);
    EXPECT_FALSE(figures.timeAllowedtoLiveMargin);
    EXPECT_EQ(figures.states, 0U);
    EXPECT_EQ(figures.errors + figures.warnings + figures.notes, 0U);
}

TEST(SvSummary, CountsWhatIsLostLateAndRepeated) {
    FaultyStation station;
    station.add({.frames = 4000});
    station.drop(0, 1000, 3).drop(0, 2000, 5).repeat(0, 2500, 20'000);
    station.delay(0, 3000, 2 * kSampleInterval + 20'000);
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.packets, 3993U);
    EXPECT_EQ(figures.lost, 8U);
    EXPECT_EQ(figures.repeated, 1U);
    EXPECT_EQ(figures.late, 1U);
    EXPECT_EQ(figures.largestGap, 6 * kSampleInterval);
    EXPECT_EQ(figures.largestGapLost, 5U);
    EXPECT_EQ(figures.errors, 4U);
}

TEST(SvSummary, CountsAllOfAFloodThatIsJoined) {
    FaultyStation station;
    station.add({.frames = 8000});
    for (std::size_t number = 100; number < 7900; number += 10) {
        station.drop(0, number);
    }
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.lost, 780U);
    EXPECT_LT(figures.errors, 10U);
}

TEST(SvSummary, CountsRestarts) {
    FaultyStation station;
    station.add({.frames = 4000});
    station.changeSvFrom(0, 2000, [](SvMessage& message) {
        auto& smpCnt = message.asdus.front().smpCnt;
        smpCnt = Unsigned<2>((smpCnt->value + 1234) % 4000);
    });
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.restarts, 1U);
    EXPECT_EQ(figures.lost, 0U);
    EXPECT_EQ(figures.warnings, 1U);
}

TEST(SvSummary, TellsPausesWithoutLossAsLargestGap) {
    FaultyStation station;
    station.add({.frames = 4000});
    station.drop(0, 1000, 3);
    // Held up, then sent at once.
    for (std::size_t number = 2000; number < 2050; ++number) {
        station.frame(0, number).time =
            2049 * kSampleInterval + static_cast<std::int64_t>(number - 2000) * kMicrosecond;
    }
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.lost, 3U);
    EXPECT_EQ(figures.largestGap, 50 * kSampleInterval);
    EXPECT_EQ(figures.largestGapLost, 0U);
}

TEST(SvSummary, MeasuresDistancesFromTheEvenCourse) {
    FaultyStation station;
    station.add({.frames = 4000});
    // Of a hundred frames, ten are 10 us late and two 40 us; one alone is 90 us early.
    for (std::size_t number = 0; number < 4000; ++number) {
        std::size_t const place = number % 100;
        station.frame(0, number).time +=
            place < 10 ? 10 * kMicrosecond : (place < 12 ? 40 * kMicrosecond : 0);
    }
    station.frame(0, 3050).time -= 90 * kMicrosecond;
    auto const figures = summaryOf(station);
    ASSERT_TRUE(figures.jitter);
    EXPECT_EQ(figures.jitter->median, 0);
    EXPECT_NEAR(static_cast<double>(figures.jitter->percentile99), 40'000, 400);
    EXPECT_EQ(figures.jitter->largest, 90'000);
}

TEST(SvSummary, HasNoJitterOfAFewFrames) {
    FaultyStation station;
    station.add({.frames = 10});
    EXPECT_FALSE(summaryOf(station).jitter);
}

TEST(SvSummary, TellsTheWorstSynchronism) {
    FaultyStation station;
    station.add({.frames = 4000});
    auto const setFrom = [&](std::size_t number, std::uint64_t smpSynch) {
        station.changeSvFrom(0, number, [=](SvMessage& message) {
            message.asdus.front().smpSynch = Unsigned<1>(smpSynch);
        });
    };
    setFrom(1000, 5);
    setFrom(2000, 0);
    setFrom(2500, 1);
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.lowestSynch, 0);
    EXPECT_EQ(figures.lastSynch, 1);
    EXPECT_EQ(figures.warnings, 2U);
    EXPECT_EQ(figures.notes, 1U);
}

TEST(SvSummary, TellsSimulation) {
    FaultyStation station;
    station.add({.frames = 400});
    station.sv(0, 200).reserved1 = 0x8000;
    EXPECT_TRUE(summaryOf(station).isSimulated);
}

TEST(SvSummary, MeasuresTheRateWithWhatIsLost) {
    FaultyStation station;
    station.add({.asdus = 4, .frames = 4000});
    station.drop(0, 500, 20).drop(0, 1500, 7);
    for (StationFrame& frame : station.frames()) {
        frame.time += frame.time / 10'000;  // 100 ppm
    }
    auto const rate = summaryOf(station).measuredRate;
    ASSERT_TRUE(rate);
    EXPECT_NEAR(*rate, 4000 / 1.0001, 0.0001);
}

TEST(SvSummary, CountsCopiesOnce) {
    FaultyStation station;
    station.add({.frames = 400, .prpDelay = 5 * kMicrosecond});
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.packets, 400U);
    EXPECT_EQ(figures.last - figures.first, 399 * kSampleInterval);
    EXPECT_EQ(figures.largestGap, kSampleInterval);
}

TEST(StreamSummaries, CountWhatTwoTapsHaveOnce) {
    FaultyStation station;
    station.add({.frames = 400});
    station.add(GoosePlan{.firstMessage = 100, .states = {10, 10}});
    auto const own = station.frames();
    for (StationFrame frame : own) {
        bool const isLostHere = frame.stream == 0 && frame.number == 55;
        frame.time += 7 * kMicrosecond;
        frame.file = 1;
        if (!isLostHere) station.frames().push_back(frame);
    }
    std::erase_if(station.frames(), [](StationFrame const& frame) {
        return frame.file == 0 && frame.stream == 0 && frame.number == 77;
    });
    auto const summaries = summariesIn(station.captures());
    ASSERT_EQ(summaries.size(), 2U);
    std::vector<std::uint64_t> packets{summaries[0].packets, summaries[1].packets};
    std::sort(packets.begin(), packets.end());
    EXPECT_EQ(packets, (std::vector<std::uint64_t>{20, 400}));
}

TEST(SvSummary, IsNotMisledByAClockThatIsSet) {
    FaultyStation station;
    station.add({.frames = 4000});
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .start = 60'000});
    station.stepClock(500 * kMillisecondNs, 20'000 * kMillisecondNs);
    EXPECT_EQ(summaryOf(station, 0).largestGap, kSampleInterval);
    EXPECT_EQ(summaryOf(station, 1).largestGap, kSampleInterval);
}

TEST(GooseSummary, HasTheFiguresOfACleanStream) {
    FaultyStation station;
    station.add(GoosePlan{.states = {12, 13, 12}});
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.packets, 37U);
    EXPECT_EQ(figures.states, 3U);
    EXPECT_EQ(figures.largestGap, 100 * kMillisecondNs);
    // A life of 250 ms, and a message each 100 ms.
    EXPECT_EQ(figures.timeAllowedtoLiveMargin, 2.5);
    EXPECT_FALSE(figures.jitter);
    EXPECT_FALSE(figures.nominalRate);
    EXPECT_FALSE(figures.lowestSynch);
    EXPECT_EQ(figures.errors, 0U);
}

TEST(GooseSummary, MeasuresLivesBetweenNeighboursAlone) {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = 10, .states = {20}});
    station.drop(0, 8, 2);
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.timeAllowedtoLiveMargin, 2.5);
    EXPECT_EQ(figures.largestGap, 300 * kMillisecondNs);
    EXPECT_EQ(figures.largestGapLost, 2U);
    EXPECT_EQ(figures.lost, 2U);
    EXPECT_EQ(figures.errors, 2U);  // lost, and expired
}

TEST(GooseSummary, TellsALifeThatIsTooShort) {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = 10, .states = {20}, .timeAllowedtoLive = 80});
    EXPECT_EQ(summaryOf(station).timeAllowedtoLiveMargin, 0.8);
}

TEST(GooseSummary, CountsReplaysAsRepeated) {
    FaultyStation station;
    station.add(GoosePlan{.states = {12, 12}});
    station.repeat(0, 3, 1200 * kMillisecondNs).repeat(0, 20, kMillisecondNs);
    auto const figures = summaryOf(station);
    EXPECT_EQ(figures.repeated, 2U);
    EXPECT_EQ(figures.states, 2U);
}

TEST(GooseSummary, TellsSimulationByTheElement) {
    FaultyStation station;
    station.add(GoosePlan{.states = {12}});
    station.changeGooseFrom(0, 6, [](GooseMessage& message) { message.simulation = true; });
    EXPECT_TRUE(summaryOf(station).isSimulated);
}

TEST(StreamSummaries, AreTheSameInOneFileAndInMany) {
    auto const make = [] {
        FaultyStation station;
        station.add({.frames = 8000});
        station.add(GoosePlan{.firstMessage = 9, .states = {8, 12}, .start = 3'000});
        station.drop(0, 1234, 5).drop(1, 5);
        return station;
    };
    auto whole = make();
    auto split = make();
    split.splitAt(500 * kMillisecondNs).splitAt(1'400 * kMillisecondNs);
    EXPECT_EQ(summariesIn(split.captures()), summariesIn(whole.captures()));
}

}  // namespace
}  // namespace TalTest::StreamSummaryTest
