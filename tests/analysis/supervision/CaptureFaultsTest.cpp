// Faults of captures, not of streams; and one history over several files.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "analysis/supervision/FoundIn.hpp"
#include "support/Station.hpp"

namespace TalTest::CaptureFaultsTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr std::int64_t kSecond = 1'000'000'000;

FaultyStation fullStation() {
    FaultyStation station;
    station.add({.svID = "MU01", .frames = 8000});
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .frames = 8000, .start = 60'000});
    station.add(GoosePlan{.firstMessage = 100, .states = {20}, .start = 70'000});
    return station;
}

TEST(CaptureFaults, AreNoneInTheTrafficOfAStation) {
    std::ostringstream out;
    // Past a fault of the line, which the relays report, and several seconds of samples.
    writeStation(out, CaptureVariant::microLittle, 60'000);
    std::string const octets = out.str();
    EXPECT_TRUE(findingsIn({Bytes(octets.begin(), octets.end())}).empty());
}

TEST(CaptureFaults, TellsStepsOfItsClock) {
    for (std::int64_t const step : {-5 * kSecond, 5 * kSecond, 90 * kMillisecond,
                                    -90 * kMillisecond, 600 * kSecond, kSecond}) {
        auto station = fullStation();
        station.stepClock(1200 * kMillisecond, step);
        EXPECT_EQ(foundIn(station), (Lines{"clockStep MU01 #4800"})) << step;
    }
}

TEST(CaptureFaults, AreNoStepWhereMessagesAreMissing) {
    auto station = fullStation();
    station.dropBetween(500 * kMillisecond, 1500 * kMillisecond);
    EXPECT_EQ(foundIn(station),
              (Lines{"captureGap MU01 #6000 after #1999 lost 8010 capture",
                     "sampleGap MU01 #6000 after #1999 lost 4000 capture",
                     "sampleGap MU02 #6000 after #1999 lost 4000 capture",
                     "sqNumGap RELAY1LD0/LLN0$GO$gcb1 #15 after #4 lost 10 capture",
                     "expired RELAY1LD0/LLN0$GO$gcb1 #15 after #4"}));
}

TEST(CaptureFaults, TellsWholeSecondsThatOneStreamLost) {
    auto station = fullStation();
    station.drop(1, 2000, 4000);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU02 #6000 after #1999 lost 4000 network"}));
}

TEST(CaptureFaults, TakesAPauseUpToASecondsStartForALoss) {
    for (std::size_t const seconds : {0U, 1U, 3U}) {
        FaultyStation station;
        station.add({.frames = 20000});
        std::size_t const lost = 3000 + seconds * 4000;
        station.drop(0, 1000, lost);
        std::string const next = std::to_string(1000 + lost);
        EXPECT_EQ(foundIn(station),
                  (Lines{"sampleGap MU01 #" + next + " after #999 lost " + std::to_string(lost)}));
    }
}

TEST(CaptureFaults, TakesPausesUpToTheStartOfEachSecondForLosses) {
    // The counter never comes to its wrap.
    FaultyStation station;
    station.add({.frames = 13000});
    station.drop(0, 1000, 3000).drop(0, 5000, 3000).drop(0, 9000, 3000);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #4000 after #999 lost 3000",
                                       "sampleGap MU01 #8000 after #4999 lost 3000",
                                       "sampleGap MU01 #12000 after #8999 lost 3000"}));
}

TEST(CaptureFaults, TakesAPauseOfAllStreamsUpToASecondsStartForALoss) {
    FaultyStation station;
    station.add({.svID = "MU01", .frames = 8000});
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .frames = 8000, .start = 60'000});
    station.add({.svID = "MU03", .source = "02:00:00:00:00:03", .frames = 8000, .start = 90'000});
    station.dropBetween(250 * kMillisecond, kSecond);
    EXPECT_EQ(foundIn(station), (Lines{"captureGap MU01 #4000 after #999 lost 9000 capture",
                                       "sampleGap MU01 #4000 after #999 lost 3000 capture",
                                       "sampleGap MU02 #4000 after #999 lost 3000 capture",
                                       "sampleGap MU03 #4000 after #999 lost 3000 capture"}));
}

TEST(CaptureFaults, TellsStepsOfItsClockByOneStream) {
    for (std::size_t const frame : {3999U, 4000U, 4001U, 4800U}) {
        for (std::int64_t const step :
             {-5 * kSecond, 90 * kMillisecond, 5300 * kMillisecond, -700 * kMillisecond}) {
            FaultyStation station;
            station.add({.frames = 8000});
            station.stepClock(static_cast<std::int64_t>(frame) * 250'000, step);
            EXPECT_EQ(foundIn(station), (Lines{"clockStep MU01 #" + std::to_string(frame)}))
                << step;
        }
    }
}

TEST(CaptureFaults, TellsStepsOfItsClockAtTheOnlyStartOfASecond) {
    for (std::uint32_t const rate : {4000U, 4123U}) {
        FaultyStation station;
        station.add({.rate = rate, .firstCount = rate - 1000, .frames = 3000});
        std::int64_t const wrap = station.frame(0, 1000).time;
        station.stepClock(wrap, 5300 * kMillisecond);
        EXPECT_EQ(foundIn(station), (Lines{"clockStep MU01 #1000"})) << rate;
    }
}

TEST(CaptureFaults, TakesWholeSecondsForALossWhereTheOtherStreamHasEnded) {
    FaultyStation station;
    station.add({.svID = "MU01", .frames = 12000});
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .frames = 1000, .start = 60'000});
    station.drop(0, 2000, 4000);
    EXPECT_EQ(foundIn(station),
              (Lines{"sampleGap MU01 #6000 after #1999 lost 4000", "silent MU02 end after #999"}));
}

TEST(CaptureFaults, TakesAWholeWrapOfACounterThatRunsFreelyForALoss) {
    // Of a counter of two octets, in frames of eight samples: some 5.12 s.
    FaultyStation station;
    station.add({.rate = 12800, .asdus = 8, .frames = 10000});
    for (StationFrame& frame : station.frames()) {
        std::size_t number = frame.number * 8;
        for (Asdu& asdu : std::get<SvMessage>(frame.message).asdus) {
            asdu.smpCnt = Unsigned<2>(number++ % 65536);
        }
    }
    station.drop(0, 1000, 8192);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #9192 after #999 lost 65536"}));
}

TEST(CaptureFaults, TellsStepsOfItsClockAtTheEndOfAWrapOfAnotherRate) {
    FaultyStation station;
    station.add({.frames = 8000});
    FaultyStation other;
    other.add({.rate = 4800, .frames = 9600, .start = 2 * kSecond});
    for (StationFrame frame : other.frames()) {
        frame.number += 8000;
        station.frames().push_back(frame);
    }
    station.stepClock(3 * kSecond, 5300 * kMillisecond);
    EXPECT_EQ(foundIn(station), (Lines{"rateChanged MU01 #8000", "clockStep MU01 #12800"}));
}

TEST(CaptureFaults, TellsAStepBackWhereTheCounterBeginsAgain) {
    FaultyStation station;
    station.add({.frames = 6000});
    station.changeSvFrom(0, 1000, [](SvMessage& message) {
        auto& smpCnt = *message.asdus.front().smpCnt;
        smpCnt = Unsigned<2>((smpCnt.value + 3000) % 4000);
    });
    station.stepClock(250 * kMillisecond, -5 * kSecond);
    Lines const lines = foundIn(station);
    EXPECT_TRUE(std::find(lines.begin(), lines.end(), "clockStep MU01 #1000") != lines.end());
    EXPECT_TRUE(std::find(lines.begin(), lines.end(), "counterRestart MU01 #1000") != lines.end());
}

TEST(CaptureFaults, TellsHowFarItsClockWasSet) {
    auto station = fullStation();
    station.stepClock(1200 * kMillisecond, -7 * kSecond);
    auto const findings = findingsIn(station.captures());
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings.front().found, FindingValue(-7 * kSecond));
}

TEST(CaptureFaults, SeesFaultsAfterAStepOfItsClock) {
    auto station = fullStation();
    station.stepClock(1200 * kMillisecond, 20 * kSecond);
    station.drop(0, 7000, 3);
    EXPECT_EQ(foundIn(station),
              (Lines{"clockStep MU01 #4800", "sampleGap MU01 #7003 after #6999 lost 3 network"}));
}

TEST(CaptureFaults, TellsRecordsThatWereCut) {
    auto station = fullStation();
    auto captures = station.captures();
    captures.front().resize(captures.front().size() - 20);
    auto const findings = findingsIn(captures);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings.front().kind, FindingKind::fileEndsInRecord);
    EXPECT_EQ(findings.front().severity(), Severity::note);
}

TEST(CaptureFaults, TellsFramesThatCannotBeReadOnceForOneReason) {
    auto station = fullStation();
    for (std::size_t number = 100; number < 103; ++number) {
        station.goose(2, number % 20).gocbRef.reset();
    }
    auto const findings = findingsIn(station.captures());
    std::size_t unread = 0;
    for (Finding const& finding : findings) {
        if (finding.kind == FindingKind::unreadable) {
            ++unread;
            EXPECT_EQ(finding.count, 3U);
            EXPECT_EQ(finding.reason, UnreadReason::noName);
            EXPECT_EQ(finding.protocol, StreamProtocol::goose);
        }
    }
    EXPECT_EQ(unread, 1U);
}

/// Faults of all kinds, some at the borders of files.
FaultyStation faultyStation() {
    auto station = fullStation();
    station.drop(0, 3999, 2).drop(1, 5999).repeat(1, 4000, 20'000).delay(0, 6000, 300'000);
    station.drop(2, 5).repeat(2, 11, kMillisecond);
    return station;
}

TEST(CaptureFaults, AreTheSameInOneFileAndInMany) {
    auto whole = faultyStation();
    auto const lines = foundIn(whole);
    EXPECT_GE(lines.size(), 6U);
    auto split = faultyStation();
    split.splitAt(kSecond).splitAt(kSecond * 3 / 2).splitAt(kSecond * 3 / 2 + 100 * kMillisecond);
    EXPECT_EQ(foundIn(split), lines);
}

TEST(CaptureFaults, AreToldOnceWhereFilesOverlap) {
    auto whole = faultyStation();
    auto const lines = foundIn(whole);
    auto split = faultyStation();
    split.splitAt(kSecond).overlap(kSecond - 50 * kMillisecond, kSecond);
    EXPECT_EQ(foundIn(split), lines);
}

TEST(CaptureFaults, AreTheSameInAnyOrderOfFiles) {
    auto split = faultyStation();
    split.splitAt(kSecond).splitAt(kSecond * 3 / 2);
    auto captures = split.captures();
    auto const inOrder = findingsIn(captures);
    std::swap(captures.front(), captures.back());
    auto const inDisorder = findingsIn(captures);
    ASSERT_EQ(inOrder.size(), inDisorder.size());
    for (std::size_t i = 0; i < inOrder.size(); ++i) {
        EXPECT_EQ(inOrder[i].kind, inDisorder[i].kind);
        EXPECT_EQ(inOrder[i].from, inDisorder[i].from);
        EXPECT_EQ(inOrder[i].lost, inDisorder[i].lost);
        EXPECT_EQ(inOrder[i].cause, inDisorder[i].cause);
    }
}

TEST(CaptureFaults, AreNoneOfASecondTap) {
    auto station = fullStation();
    auto const own = station.frames();
    for (StationFrame frame : own) {
        frame.time += 7'000;
        frame.file = 1;
        station.frames().push_back(frame);
    }
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(CaptureFaults, AreLossesWhereBothTapsLackAPacket) {
    auto station = fullStation();
    station.drop(0, 4321);
    auto const own = station.frames();
    for (StationFrame frame : own) {
        bool const isLostHere = frame.stream == 1 && frame.number == 555;
        frame.time += 7'000;
        frame.file = 1;
        if (!isLostHere) {
            station.frames().push_back(frame);
        }
    }
    std::erase_if(station.frames(), [](StationFrame const& frame) {
        return frame.file == 0 && frame.stream == 1 && frame.number == 777;
    });
    auto const lines = foundIn(station, {.jitter = kSecond, .withSamples = false, .stop = {}});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front().substr(0, 39), "sampleGap MU01 #4322 after #4320 lost 1");
}

TEST(CaptureFaults, HandsOnNothingAfterAStop) {
    auto station = faultyStation();
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(findingsIn(station.captures(),
                           {.jitter = {}, .withSamples = false, .stop = stop.get_token()})
                    .empty());
}

}  // namespace
}  // namespace TalTest::CaptureFaultsTest
