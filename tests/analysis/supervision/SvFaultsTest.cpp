// One SV stream with a known fault, and all that is found of it.

#include <gtest/gtest.h>

#include "analysis/supervision/FoundIn.hpp"

namespace TalTest::SvFaultsTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr std::int64_t kSecond = 1'000'000'000;
/// Between frames of 4000 a second.
constexpr std::int64_t kInterval = 250'000;

FaultyStation svStation(SvPlan const& plan = {}) {
    FaultyStation station;
    station.add(plan);
    return station;
}

TEST(SvFaults, FindsNothingInCleanStreams) {
    auto station = svStation({.frames = 9000, .start = 20'000});
    station.add({.svID = "MU02", .rate = 4800, .asdus = 2, .frames = 5400});
    station.add({.svID = "MU03", .rate = 14400, .asdus = 6, .firstCount = 600, .frames = 5400});
    station.add({.svID = "MU04", .rate = 12800, .asdus = 8, .frames = 3600});
    station.add({.svID = "MU05", .frames = 9000, .prpDelay = 40'000});
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(SvFaults, CountsMissingSamples) {
    auto station = svStation();
    station.drop(0, 100).drop(0, 200, 3).drop(0, 202, 40);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #101 after #99 lost 1",
                                       "sampleGap MU01 #242 after #199 lost 42"}));
}

TEST(SvFaults, CountsMissingSamplesOfSeveralInAFrame) {
    auto station = svStation({.rate = 14400, .asdus = 6});
    station.drop(0, 100).drop(0, 200, 3);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #101 after #99 lost 6",
                                       "sampleGap MU01 #203 after #199 lost 18"}));
}

TEST(SvFaults, CountsMissingSamplesAtTheWrap) {
    for (std::size_t const first : {3997U, 3998U, 3999U, 4000U}) {
        auto station = svStation({.frames = 8000});
        station.drop(0, first, 2);
        EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #" + std::to_string(first + 2) +
                                           " after #" + std::to_string(first - 1) + " lost 2"}));
    }
}

TEST(SvFaults, SeesWholeSecondsThatAreMissing) {
    auto station = svStation({.frames = 20000});
    station.drop(0, 6000, 8000);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #14000 after #5999 lost 8000"}));
}

TEST(SvFaults, TellsGapsWithGoodPacketsBetweenThem) {
    auto station = svStation();
    station.drop(0, 100).drop(0, 102);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #101 after #99 lost 1",
                                       "sampleGap MU01 #103 after #101 lost 1"}));
}

TEST(SvFaults, TellsALatePacketAlone) {
    for (std::int64_t const behind : {1, 2, 15, 16}) {
        auto station = svStation();
        station.delay(0, 100, behind * kInterval + kInterval / 2);
        EXPECT_EQ(foundIn(station),
                  (Lines{"late MU01 #100 after #" + std::to_string(100 + behind)}))
            << behind;
    }
}

TEST(SvFaults, TakesWhatIsLateFromAGap) {
    auto station = svStation();
    station.drop(0, 100, 2).delay(0, 102, 4 * kInterval + kInterval / 2);
    EXPECT_EQ(foundIn(station),
              (Lines{"sampleGap MU01 #103 after #99 lost 2", "late MU01 #102 after #106"}));
}

TEST(SvFaults, TellsRepeatedPackets) {
    auto station = svStation();
    station.repeat(0, 100, kInterval / 4).repeat(0, 3999, kInterval / 4);
    EXPECT_EQ(foundIn(station),
              (Lines{"repeated MU01 #100 after #100", "repeated MU01 #3999 after #3999"}));
}

TEST(SvFaults, TellsWhatWasSeenLongerAgoAsRepeated) {
    auto station = svStation();
    station.repeat(0, 100, 9 * kInterval + kInterval / 2);
    EXPECT_EQ(foundIn(station), (Lines{"repeated MU01 #100 after #109"}));
}

TEST(SvFaults, TellsARestartWithoutLoss) {
    auto station = svStation();
    station.changeSvFrom(0, 1000, [](SvMessage& message) {
        auto& smpCnt = *message.asdus.front().smpCnt;
        smpCnt = Unsigned<2>((smpCnt.value + 1500) % 4000);
    });
    EXPECT_EQ(foundIn(station), (Lines{"counterRestart MU01 #1000"}));
}

TEST(SvFaults, TellsASmallJumpInTimeAsARestart) {
    auto station = svStation();
    station.changeSvFrom(0, 1000, [](SvMessage& message) {
        auto& smpCnt = *message.asdus.front().smpCnt;
        smpCnt = Unsigned<2>((smpCnt.value + 3) % 4000);
    });
    EXPECT_EQ(foundIn(station), (Lines{"counterRestart MU01 #1000"}));
}

TEST(SvFaults, TellsStepsOfSynchronization) {
    auto station = svStation();
    auto const set = [](unsigned smpSynch) {
        return [=](SvMessage& message) { message.asdus.front().smpSynch = Unsigned<1>(smpSynch); };
    };
    station.changeSvFrom(0, 100, set(1)).changeSvFrom(0, 200, set(0)).changeSvFrom(0, 300, set(2));
    station.changeSvFrom(0, 400, set(7)).changeSvFrom(0, 500, set(1));
    EXPECT_EQ(foundIn(station), (Lines{"synchLost MU01 #100", "synchLost MU01 #200",
                                       "synchRegained MU01 #300", "synchLost MU01 #400"}));
}

TEST(SvFaults, TellsWhatAStreamSaysOfItself) {
    auto station = svStation();
    station.changeSvFrom(0, 100, [](SvMessage& message) { message.asdus.front().confRev = 7; });
    station.changeSvFrom(0, 200,
                         [](SvMessage& message) { message.asdus.front().datSet = "dsOther"; });
    station.changeSvFrom(0, 300, [](SvMessage& message) { message.reserved1 = 0x8000; });
    station.changeSvFrom(0, 400, [](SvMessage& message) { message.reserved1 = 0; });
    EXPECT_EQ(foundIn(station), (Lines{"confRevChanged MU01 #100", "dataSetChanged MU01 #200",
                                       "simulationBegan MU01 #300", "simulationEnded MU01 #400"}));
}

TEST(SvFaults, TellsSimulationFromTheFirstPacketOn) {
    auto station = svStation();
    station.changeSvFrom(0, 0, [](SvMessage& message) { message.reserved1 = 0x8000; });
    EXPECT_EQ(foundIn(station), (Lines{"simulationBegan MU01 #0"}));
}

TEST(SvFaults, TellsFramesAwayFromTheirCourse) {
    auto station = svStation();
    station.delay(0, 1000, kInterval * 3 / 5).delay(0, 2000, kInterval * 2 / 5);
    station.delay(0, 3000, kInterval * 4 / 5).delay(0, 3001, kInterval * 3 / 5);
    EXPECT_EQ(foundIn(station), (Lines{"jitter MU01 #1000", "jitter MU01 #3000 count 2"}));
}

TEST(SvFaults, TakesTheLimitOfJitterThatIsGiven) {
    auto station = svStation();
    station.delay(0, 1000, 12'000).delay(0, 2000, 9'000);
    EXPECT_EQ(foundIn(station, {.jitter = 10'000, .withSamples = false, .stop = {}}),
              (Lines{"jitter MU01 #1000"}));
}

TEST(SvFaults, FollowsAConstantDrift) {
    auto station = svStation({.frames = 40000});
    for (StationFrame& frame : station.frames()) {
        frame.time += frame.time / 10'000;  // 100 ppm
    }
    EXPECT_EQ(foundIn(station, {.jitter = 10'000, .withSamples = false, .stop = {}}), Lines());
}

TEST(SvFaults, TellsQualitiesOfChannels) {
    auto station = svStation();
    auto const set = [](std::size_t channel, std::uint32_t quality) {
        return [=](SvMessage& message) {
            std::vector<Sample> channels(8);
            for (Sample& each : channels) {
                each = {1000, 0x2000};  // derived
            }
            channels[channel].second = quality;
            message.asdus.front().seqData = samples(channels);
        };
    };
    station.changeSvFrom(0, 0, set(0, 0)).changeSvFrom(0, 100, set(2, 0x2001));
    station.changeSvFrom(0, 200, set(2, 3)).changeSvFrom(0, 300, set(2, 0));
    auto const captures = station.captures();
    EXPECT_EQ(foundIn(captures, station), Lines());
    SupervisionOptions const options{.jitter = {}, .withSamples = true, .stop = {}};
    EXPECT_EQ(foundIn(captures, station, options),
              (Lines{"qualityChanged MU01 #100", "qualityChanged MU01 #300"}));
    auto const findings = findingsIn(captures, options);
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].member, std::vector<std::uint32_t>{2});
    EXPECT_EQ(findings[0].severity(), Severity::warning);
    EXPECT_EQ(findings[1].severity(), Severity::note);
}

TEST(SvFaults, TellsSamplesOfAnotherSize) {
    auto station = svStation();
    station.changeSvFrom(0, 100,
                         [](SvMessage& message) { message.asdus.front().seqData = Bytes(48); });
    EXPECT_EQ(foundIn(station, {.jitter = {}, .withSamples = true, .stop = {}}),
              (Lines{"dataSetChanged MU01 #100"}));
}

TEST(SvFaults, TellsSilenceWhereNothingIsMissing) {
    auto station = svStation();
    // Held up, then sent at once.
    for (std::size_t number = 1000; number < 1100; ++number) {
        station.frame(0, number).time = 274'800'000 + static_cast<std::int64_t>(number);
    }
    auto const lines = foundIn(station, {.jitter = kSecond, .withSamples = false, .stop = {}});
    EXPECT_EQ(lines, (Lines{"silent MU01 #1000"}));
}

TEST(SvFaults, TellsSilenceUntilTheEnd) {
    auto station = svStation();
    station.drop(0, 3000, 1000);
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .start = 100'000});
    EXPECT_EQ(foundIn(station), (Lines{"silent MU01 end after #2999"}));
}

TEST(SvFaults, TellsNoSilenceOfAStreamThatBeginsLate) {
    auto station = svStation();
    station.add({.svID = "MU02", .frames = 1000, .start = 750 * kMillisecond + 100'000});
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(SvFaults, TellsTwoCountersUnderOneName) {
    for (std::uint64_t const apart : {15U, 700U}) {
        auto station = svStation({.frames = 2000});
        auto& frames = station.frames();
        auto const own = frames;
        for (StationFrame frame : own) {
            if (frame.number >= 500 && frame.number < 1500) {
                auto& smpCnt = *std::get<SvMessage>(frame.message).asdus.front().smpCnt;
                smpCnt = Unsigned<2>((smpCnt.value + apart) % 4000);
                frame.time += kInterval / 3;
                frame.number += 10000;
                frames.push_back(frame);
            }
        }
        EXPECT_EQ(foundIn(station), (Lines{"twoPublishers MU01 #10500 after #500 count 1000"}))
            << apart;
    }
}

TEST(SvFaults, TellsTwoSourcesOfOneName) {
    auto station = svStation({.frames = 1000});
    station.add({.source = "02:00:00:00:00:02", .frames = 500, .start = 100'100'000});
    auto const lines = foundIn(station);
    EXPECT_EQ(lines, (Lines{"twoPublishers MU01 #0 after #0", "silent MU01 end after #499"}));
}

TEST(SvFaults, TellsAnotherRate) {
    for (std::size_t const seconds : {1U, 2U}) {
        std::size_t const before = seconds * 4000;
        auto station = svStation({.frames = before});
        FaultyStation other;
        other.add({.rate = 4800,
                   .frames = seconds * 4800,
                   .start = static_cast<std::int64_t>(seconds) * kSecond});
        for (StationFrame frame : other.frames()) {
            frame.number += before;
            station.frames().push_back(frame);
        }
        EXPECT_EQ(foundIn(station), (Lines{"rateChanged MU01 #" + std::to_string(before)}));
    }
}

TEST(SvFaults, JoinsAFloodOfOneKind) {
    auto station = svStation({.frames = 12000});
    for (std::size_t number = 4000; number < 6000; number += 2) {
        station.drop(0, number);
    }
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #4001 after #3999 lost 1000 count 1000"}));
}

TEST(SvFaults, TellsNothingOfCopies) {
    auto station = svStation({.frames = 4000, .prpDelay = 3 * kMillisecond});
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(SvFaults, TakesMoreCopiesThanTwoForNoRepetition) {
    auto station = svStation({.frames = 1000, .prpDelay = 20'000});
    station.repeat(0, 500, 40'000).repeat(0, 600, 400'000);
    EXPECT_EQ(foundIn(station),
              (Lines{"copyExtra MU01 #500 after #500", "copyExtra MU01 #600 after #600"}));
}

TEST(SvFaults, TellsWhatAPublisherRepeatsWithANewNumber) {
    auto station = svStation({.frames = 1000, .prpDelay = 20'000});
    for (StationFrame& frame : station.frames()) {
        frame.ethernet.prpSequence =
            static_cast<std::uint16_t>(frame.ethernet.prpSequence + (frame.number > 500 ? 1 : 0));
    }
    station.repeat(0, 500, 100'000);
    auto& again = station.frames().back();
    ++again.ethernet.prpSequence;
    EXPECT_EQ(foundIn(station), (Lines{"repeated MU01 #500 after #500"}));
}

TEST(SvFaults, TakesFromTheOtherLanWhatOneLacks) {
    auto station = svStation({.frames = 4000, .prpDelay = 100'000});
    std::size_t seen = 0;
    std::erase_if(station.frames(), [&](StationFrame const& frame) {
        return frame.number >= 100 && frame.number < 140 && frame.ethernet.prpLan == 'A' &&
               ++seen > 0;
    });
    ASSERT_EQ(seen, 40U);
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(SvFaults, FindsTheFirstAndTheLastPacket) {
    auto station = svStation();
    station.repeat(0, 0, kInterval / 4);
    station.drop(0, 1).drop(0, 3998);
    EXPECT_EQ(foundIn(station),
              (Lines{"repeated MU01 #0 after #0", "sampleGap MU01 #2 after #0 lost 1",
                     "sampleGap MU01 #3999 after #3997 lost 1"}));
}

TEST(SvFaults, CountsWhatIsMissingUntilTheOtherLanBegins) {
    auto station = svStation({.frames = 14'000});
    station.drop(0, 1001, 9499);
    for (StationFrame& frame : station.frames()) {
        frame.ethernet.prpLan = frame.number <= 1000 ? 'A' : 'B';
        frame.ethernet.prpSequence = static_cast<std::uint16_t>(frame.number);
    }
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #10500 after #1000 lost 9499"}));
}

TEST(SvFaults, TellsNoSilenceWhereNothingWasCaptured) {
    for (bool const isSplit : {true, false}) {
        auto station = svStation({.frames = 4000});
        std::vector<StationFrame> later = station.frames();
        for (StationFrame& frame : later) {
            frame.time += 3600 * kSecond;
            frame.number += 4000;
        }
        station.frames().insert(station.frames().end(), later.begin(), later.end());
        if (isSplit) station.splitAt(1800 * kSecond);
        EXPECT_EQ(foundIn(station), isSplit ? Lines() : Lines{"silent MU01 #4000"});
    }
}

}  // namespace
}  // namespace TalTest::SvFaultsTest
