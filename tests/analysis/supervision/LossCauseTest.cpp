// Who lost what is missing, by what came meanwhile.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <utility>

#include "analysis/supervision/FoundIn.hpp"
#include "support/PcapngMaker.hpp"

namespace TalTest::LossCauseTest {
namespace {

constexpr std::int64_t kMillisecond = 1'000'000;

/// Three merging units of three sources.
FaultyStation threeUnits(std::optional<std::int64_t> prpDelay = {}) {
    FaultyStation station;
    for (std::size_t unit = 0; unit < 3; ++unit) {
        std::string const number = std::to_string(unit + 1);
        station.add({.svID = "MU0" + number,
                     .source = "02:00:00:00:00:0" + number,
                     .start = static_cast<std::int64_t>(unit) * 60'000,
                     .prpDelay = prpDelay});
    }
    return station;
}

TEST(LossCause, IsTheCaptureWhereAllStreamsLose) {
    auto station = threeUnits();
    station.dropBetween(500 * kMillisecond, 520 * kMillisecond);
    EXPECT_EQ(foundIn(station), (Lines{"captureGap MU01 #2080 after #1999 lost 240 capture",
                                       "sampleGap MU01 #2080 after #1999 lost 80 capture",
                                       "sampleGap MU02 #2080 after #1999 lost 80 capture",
                                       "sampleGap MU03 #2080 after #1999 lost 80 capture"}));
}

TEST(LossCause, IsTheNetworkWhereOthersRunOn) {
    auto station = threeUnits();
    station.drop(1, 1000, 5);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU02 #1005 after #999 lost 5 network"}));
}

TEST(LossCause, IsUnknownWhereTooLittleCameMeanwhile) {
    auto station = threeUnits();
    station.drop(2, 1000);
    // Between two frames there are two of each of the other streams.
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU03 #1001 after #999 lost 1 network"}));
    FaultyStation two;
    two.add(SvPlan{});
    two.add({.svID = "MU02", .source = "02:00:00:00:00:02", .start = 60'000});
    two.drop(0, 1000);
    EXPECT_EQ(foundIn(two), (Lines{"sampleGap MU01 #1001 after #999 lost 1"}));
}

TEST(LossCause, IsTheNetworkWhereSomeOthersLoseAndOneRunsOn) {
    auto station = threeUnits();
    station.drop(0, 2000, 80).drop(1, 2000, 80);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #2080 after #1999 lost 80 network",
                                       "sampleGap MU02 #2080 after #1999 lost 80 network"}));
}

TEST(LossCause, IsUnknownWhereOneOtherStreamAloneLosesToo) {
    FaultyStation station;
    station.add(SvPlan{});
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .start = 60'000});
    station.dropBetween(500 * kMillisecond, 520 * kMillisecond);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #2080 after #1999 lost 80",
                                       "sampleGap MU02 #2080 after #1999 lost 80"}));
}

TEST(LossCause, IsUnknownWithOneStream) {
    FaultyStation station;
    station.add(SvPlan{});
    station.drop(0, 1000, 100);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #1100 after #999 lost 100"}));
}

TEST(LossCause, IsThePublisherWhereItsRedundancyNumbersRunOn) {
    auto station = threeUnits(20'000);
    // The numbers go on as if the frames had not been.
    for (StationFrame& frame : station.frames()) {
        if (frame.stream == 1 && frame.number >= 1005) {
            frame.ethernet.prpSequence = static_cast<std::uint16_t>(frame.ethernet.prpSequence - 5);
        }
    }
    station.drop(1, 1000, 5);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU02 #1005 after #999 lost 5 publisher"}));
}

TEST(LossCause, IsTheNetworkWhereTheRedundancyNumbersHaveTheSameGap) {
    auto station = threeUnits(20'000);
    station.drop(1, 1000, 1);
    auto const findings = findingsIn(station.captures());
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings.front().cause, TalIec61850Analysis::LossCause::network);
    EXPECT_EQ(findings.front().witness, TalIec61850Analysis::LossWitness::redundancyGap);
    EXPECT_EQ(findings.front().witnessFrames, 1U);
}

TEST(LossCause, IsThePublisherWhereTheNumbersOfARingRunOn) {
    auto station = threeUnits(20'000);
    for (StationFrame& frame : station.frames()) {
        if (frame.stream == 1 && frame.number >= 1005) {
            frame.ethernet.prpSequence = static_cast<std::uint16_t>(frame.ethernet.prpSequence - 5);
        }
    }
    station.drop(1, 1000, 5).makeRing();
    auto const captures = station.captures();
    EXPECT_EQ(foundIn(captures, station),
              (Lines{"sampleGap MU02 #1005 after #999 lost 5 publisher"}));
    EXPECT_EQ(findingsIn(captures).front().witness,
              TalIec61850Analysis::LossWitness::redundancyRanOn);
}

TEST(LossCause, IsTheNetworkWhereTheNumbersOfARingHaveTheSameGap) {
    auto station = threeUnits(20'000);
    station.drop(1, 1000, 5).makeRing();
    auto const captures = station.captures();
    EXPECT_EQ(foundIn(captures, station),
              (Lines{"sampleGap MU02 #1005 after #999 lost 5 network"}));
    auto const finding = findingsIn(captures).front();
    EXPECT_EQ(finding.witness, TalIec61850Analysis::LossWitness::redundancyGap);
    EXPECT_EQ(finding.witnessFrames, 5U);
}

TEST(LossCause, IsUnknownOfARingOfWhichNoOtherSourceWasThere) {
    FaultyStation station;
    station.add(SvPlan{.prpDelay = 20'000});
    station.drop(0, 1000, 5).makeRing();
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #1005 after #999 lost 5"}));
}

TEST(LossCause, TellsBothAtOnceApart) {
    auto station = threeUnits();
    station.drop(1, 1000, 50).dropBetween(500 * kMillisecond, 520 * kMillisecond);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU02 #1050 after #999 lost 50 network",
                                       "captureGap MU01 #2080 after #1999 lost 240 capture",
                                       "sampleGap MU01 #2080 after #1999 lost 80 capture",
                                       "sampleGap MU02 #2080 after #1999 lost 80 capture",
                                       "sampleGap MU03 #2080 after #1999 lost 80 capture"}));
}

TEST(LossCause, IsTheCaptureWhereItsCountsSaySo) {
    FaultyStation station;
    station.add({.frames = 1000});
    station.drop(0, 500, 7);
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(9));
    constexpr std::uint16_t kDropCount = 4;
    for (StationFrame const& frame : station.frames()) {
        PcapngMaker::Packet packet;
        packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
        packet.frame = svFrame(frame.ethernet, std::get<SvMessage>(frame.message));
        if (frame.number == 507) {
            packet.options = maker.numberOption(kDropCount, 7);
        }
        maker.packet(packet);
    }
    auto const findings = findingsIn({maker.bytes()});
    using namespace TalIec61850Analysis;
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[1].kind, FindingKind::sampleGap);
    EXPECT_EQ(findings[1].cause, LossCause::capture);
    EXPECT_EQ(findings[1].witness, LossWitness::dropCounts);
    EXPECT_EQ(findings[1].witnessFrames, 7U);
    EXPECT_EQ(findings[0].kind, FindingKind::captureDropped);
    EXPECT_EQ(findings[0].lost, 7U);
    EXPECT_EQ(findings[1].from, findings[0].from);
}

TEST(LossCause, IsToldOfCountsOfInterfaces) {
    FaultyStation station;
    station.add({.frames = 1000});
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(9));
    constexpr std::uint16_t kInterfaceDrops = 5;
    for (StationFrame const& frame : station.frames()) {
        PcapngMaker::Packet packet;
        packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
        packet.frame = svFrame(frame.ethernet, std::get<SvMessage>(frame.message));
        maker.packet(packet);
        if (frame.number == 400) {
            maker.statistics(0, maker.numberOption(kInterfaceDrops, 4));
        }
    }
    maker.statistics(0, maker.numberOption(kInterfaceDrops, 9));
    auto const findings = findingsIn({maker.bytes()});
    using namespace TalIec61850Analysis;
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].kind, FindingKind::captureDropped);
    EXPECT_EQ(findings[0].lost, 4U);
    EXPECT_EQ(findings[1].kind, FindingKind::captureDropped);
    EXPECT_EQ(findings[1].lost, 5U);
}

constexpr std::uint16_t kInterfaceDropOption = 5;

/// The frames of a station in a next-generation capture.
/// @param counts  by the number of a frame of stream 0: what statistics say after it, in all
Bytes withStatistics(FaultyStation& station, std::map<std::size_t, std::uint64_t> const& counts,
                     std::size_t interfaces = 1) {
    std::stable_sort(station.frames().begin(), station.frames().end(),
                     [](StationFrame const& a, StationFrame const& b) { return a.time < b.time; });
    PcapngMaker maker;
    maker.section();
    for (std::size_t i = 0; i < interfaces; ++i) {
        maker.interface(1, 0, maker.timeOptions(9));
    }
    for (StationFrame const& frame : station.frames()) {
        PcapngMaker::Packet packet;
        packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
        packet.frame = svFrame(frame.ethernet, std::get<SvMessage>(frame.message));
        maker.packet(packet);
        auto const count = counts.find(frame.number);
        if (frame.stream == 0 && count != counts.end()) {
            maker.statistics(0, maker.numberOption(kInterfaceDropOption, count->second));
        }
    }
    return maker.bytes();
}

/// The causes of the gaps in a capture.
std::vector<TalIec61850Analysis::LossCause> causesIn(Bytes const& capture) {
    std::vector<TalIec61850Analysis::LossCause> causes;
    for (auto const& finding : findingsIn({capture})) {
        if (finding.kind == TalIec61850Analysis::FindingKind::sampleGap) {
            causes.push_back(finding.cause);
        }
    }
    return causes;
}

TEST(LossCause, IsTheCaptureWhereItsInterfaceDroppedAsManyMeanwhile) {
    using namespace TalIec61850Analysis;
    FaultyStation station;
    station.add({.frames = 1000});
    station.drop(0, 500, 7);
    Bytes const capture = withStatistics(station, {{300, 0}, {800, 9}});
    EXPECT_EQ(causesIn(capture), std::vector{LossCause::capture});
    for (Finding const& finding : findingsIn({capture})) {
        EXPECT_EQ(finding.witness, LossWitness::dropCounts);
        EXPECT_EQ(finding.witnessFrames, 9U);
    }
}

TEST(LossCause, IsUnknownWhereTheInterfaceDroppedLess) {
    using TalIec61850Analysis::LossCause;
    FaultyStation station;
    station.add({.frames = 1000});
    station.drop(0, 500, 7).drop(0, 600, 3);
    EXPECT_EQ(causesIn(withStatistics(station, {{800, 9}})),
              (std::vector{LossCause::unknown, LossCause::unknown}));
    EXPECT_EQ(causesIn(withStatistics(station, {{800, 10}})),
              (std::vector{LossCause::capture, LossCause::capture}));
    EXPECT_EQ(causesIn(withStatistics(station, {{550, 7}, {800, 9}})),
              (std::vector{LossCause::capture, LossCause::unknown}));
}

TEST(LossCause, IsUnknownWhereTheInterfaceDroppedAtAnotherTime) {
    using TalIec61850Analysis::LossCause;
    FaultyStation station;
    station.add({.frames = 1000});
    station.drop(0, 500, 7);
    EXPECT_EQ(causesIn(withStatistics(station, {{400, 50}})), std::vector{LossCause::unknown});
    EXPECT_EQ(causesIn(withStatistics(station, {{400, 50}, {600, 50}})),
              std::vector{LossCause::unknown});
}

TEST(LossCause, IsUnknownWhereSeveralInterfacesMayHaveDropped) {
    using TalIec61850Analysis::LossCause;
    FaultyStation station;
    station.add({.frames = 1000});
    station.drop(0, 500, 7);
    EXPECT_EQ(causesIn(withStatistics(station, {{800, 9}}, 2)), std::vector{LossCause::unknown});
}

TEST(LossCause, StaysTheNetworkWhateverTheInterfaceDropped) {
    using TalIec61850Analysis::LossCause;
    auto station = threeUnits();
    station.drop(1, 1000, 5);
    EXPECT_EQ(causesIn(withStatistics(station, {{2000, 50}})), std::vector{LossCause::network});
}

TEST(LossCause, IsTheNetworkWhereOthersRanOnInAllFilesOfTheHole) {
    auto station = threeUnits();
    station.drop(1, 1000, 2000);
    station.splitAt(300 * kMillisecond).splitAt(700 * kMillisecond);
    ASSERT_EQ(station.captures().size(), 3U);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU02 #3000 after #999 lost 2000 network"}));
    auto captures = station.captures();
    std::swap(captures[0], captures[1]);
    EXPECT_EQ(findingsIn(captures).front().cause, TalIec61850Analysis::LossCause::network);
}

TEST(LossCause, IsTheNetworkWhereOthersAreInTheMiddleFileAlone) {
    auto station = threeUnits();
    station.drop(1, 1000, 2000);
    for (std::size_t const unit : {0U, 2U}) {
        station.drop(unit, 0, 1300).drop(unit, 2700, 1300);
    }
    station.splitAt(300 * kMillisecond).splitAt(700 * kMillisecond);
    auto const findings = findingsIn(station.captures());
    ASSERT_FALSE(findings.empty());
    for (auto const& finding : findings) {
        if (finding.kind == TalIec61850Analysis::FindingKind::sampleGap) {
            EXPECT_EQ(finding.cause, TalIec61850Analysis::LossCause::network);
            EXPECT_EQ(finding.lost, 2000U);
        }
    }
}

TEST(LossCause, IsUnknownWhereFilesOfTheHoleOverlap) {
    auto station = threeUnits();
    station.drop(1, 1000, 2000);
    station.splitAt(300 * kMillisecond).splitAt(500 * kMillisecond).splitAt(700 * kMillisecond);
    station.overlap(480 * kMillisecond, 500 * kMillisecond);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU02 #3000 after #999 lost 2000"}));
}

TEST(LossCause, IsThePublisherWhereItsNumbersRunOnInTheMiddleFile) {
    FaultyStation station;
    // One source: one unit is silent for a time, the other one is not.
    station.add({.svID = "MU01", .frames = 1000, .prpDelay = 20'000});
    station.add({.svID = "MU02", .frames = 1000, .start = 60'000, .prpDelay = 20'000});
    station.drop(1, 300, 400).splitAt(100 * kMillisecond).splitAt(150 * kMillisecond);
    std::stable_sort(station.frames().begin(), station.frames().end(),
                     [](StationFrame const& a, StationFrame const& b) { return a.time < b.time; });
    std::map<std::pair<std::size_t, std::size_t>, std::uint16_t> numbers;
    for (StationFrame& frame : station.frames()) {
        auto const next = static_cast<std::uint16_t>(numbers.size());
        frame.ethernet.prpSequence =
            numbers.try_emplace({frame.stream, frame.number}, next).first->second;
    }
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU02 #700 after #299 lost 400 publisher"}));
}

TEST(LossCause, IsTheCaptureWhereAMiddleFileSaysSo) {
    FaultyStation station;
    station.add({.frames = 1000});
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .frames = 1000, .start = 60'000});
    station.drop(0, 300, 400).splitAt(100 * kMillisecond).splitAt(150 * kMillisecond);
    std::stable_sort(station.frames().begin(), station.frames().end(),
                     [](StationFrame const& a, StationFrame const& b) { return a.time < b.time; });
    std::vector<Bytes> captures;
    for (std::size_t file = 0; file < 3; ++file) {
        PcapngMaker maker;
        maker.section().interface(1, 0, maker.timeOptions(9));
        constexpr std::uint16_t kDropCount = 4;
        for (StationFrame const& frame : station.frames()) {
            PcapngMaker::Packet packet;
            packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
            packet.frame = svFrame(frame.ethernet, std::get<SvMessage>(frame.message));
            if (frame.stream == 1 && frame.number == 500) {
                packet.options = maker.numberOption(kDropCount, 400);
            }
            if (frame.file == file) {
                maker.packet(packet);
            }
        }
        captures.push_back(maker.bytes());
    }
    std::vector<TalIec61850Analysis::LossCause> causes;
    for (auto const& finding : findingsIn(captures)) {
        if (finding.kind == TalIec61850Analysis::FindingKind::sampleGap) {
            causes.push_back(finding.cause);
            EXPECT_EQ(finding.witness, TalIec61850Analysis::LossWitness::dropCounts);
        }
    }
    EXPECT_EQ(causes, std::vector{TalIec61850Analysis::LossCause::capture});
}

TEST(LossCause, IsTheNetworkWhereSlowStreamsRanOnMeanwhile) {
    auto station = threeUnits();
    for (char const number : {'1', '2', '3', '4'}) {
        station.add(GoosePlan{.gocbRef = std::string("R") + number,
                              .source = std::string("02:00:00:00:00:1") + number,
                              .firstMessage = 100,
                              .states = {10},
                              .start = 10 * kMillisecond});
    }
    for (std::size_t unit = 0; unit < 3; ++unit) station.drop(unit, 2000, 80);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #2080 after #1999 lost 80 network",
                                       "sampleGap MU02 #2080 after #1999 lost 80 network",
                                       "sampleGap MU03 #2080 after #1999 lost 80 network"}));
}

TEST(LossCause, IsNoPauseOfTheCaptureWhereOneFrameCameMeanwhile) {
    auto station = threeUnits();
    station.add(GoosePlan{
        .gocbRef = "R1", .firstMessage = 100, .states = {10}, .start = 10 * kMillisecond});
    for (std::size_t unit = 0; unit < 3; ++unit) station.drop(unit, 2000, 80);
    EXPECT_EQ(foundIn(station), (Lines{"sampleGap MU01 #2080 after #1999 lost 80 capture",
                                       "sampleGap MU02 #2080 after #1999 lost 80 capture",
                                       "sampleGap MU03 #2080 after #1999 lost 80 capture"}));
}

TEST(LossCause, IsUnknownWhereTheRedundancyNumbersLackFewer) {
    auto station = threeUnits(20'000);
    // Two of five were never sent.
    for (StationFrame& frame : station.frames()) {
        if (frame.stream == 1 && frame.number >= 1005) {
            frame.ethernet.prpSequence = static_cast<std::uint16_t>(frame.ethernet.prpSequence - 2);
        }
    }
    station.drop(1, 1000, 5);
    auto const findings = findingsIn(station.captures());
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_NE(findings.front().witness, TalIec61850Analysis::LossWitness::redundancyGap);
}

/// A relay whose sixth message is a state of its own, four milliseconds long.
GoosePlan briefState(std::optional<std::int64_t> prpDelay = {}) {
    return {.gocbRef = "R1",
            .firstMessage = 100,
            .states = {5, 1, 9},
            .start = 10 * kMillisecond,
            .prpDelay = prpDelay};
}

/// What is found of the relay.
Lines ofRelay(FaultyStation& station) {
    Lines lines = foundIn(station);
    std::erase_if(lines, [](std::string const& line) { return line.find(" R1 ") == line.npos; });
    return lines;
}

/// The redundancy numbers of a stream go on as if frames had not been.
void closeNumbers(FaultyStation& station, std::size_t stream, std::size_t number,
                  std::uint16_t count) {
    for (StationFrame& frame : station.frames()) {
        if (frame.stream == stream && frame.number >= number + count) {
            frame.ethernet.prpSequence =
                static_cast<std::uint16_t>(frame.ethernet.prpSequence - count);
        }
    }
    station.drop(stream, number, count);
}

TEST(LossCause, OfMessagesIsTheNetworkWhereOthersRanOn) {
    auto station = threeUnits();
    station.add(briefState());
    station.drop(3, 2, 2).drop(3, 5).drop(3, 10);
    EXPECT_EQ(ofRelay(station),
              (Lines{"sqNumGap R1 #4 after #1 lost 2 network", "expired R1 #4 after #1",
                     "stateGap R1 #6 after #4 lost 1 network",
                     "sqNumGap R1 #11 after #9 lost 1 network"}));
}

TEST(LossCause, OfTheStartOfAStateIsTheNetworkWhereOthersRanOn) {
    auto station = threeUnits();
    station.add(briefState());
    station.drop(3, 6, 3);
    EXPECT_EQ(ofRelay(station), (Lines{"stateStartMissing R1 #9 after #5 lost 3 network"}));
}

TEST(LossCause, OfMessagesIsTheCaptureWhereAllStreamsLose) {
    auto repetition = threeUnits();
    repetition.add(briefState());
    repetition.dropBetween(200 * kMillisecond, 220 * kMillisecond);
    EXPECT_EQ(ofRelay(repetition), (Lines{"sqNumGap R1 #3 after #1 lost 1 capture"}));
    auto state = threeUnits();
    state.add(briefState());
    state.dropBetween(500 * kMillisecond, 512 * kMillisecond);
    EXPECT_EQ(ofRelay(state), (Lines{"stateGap R1 #6 after #4 lost 1 capture"}));
}

TEST(LossCause, OfMessagesIsThePublisherWhereItsRedundancyNumbersRunOn) {
    for (bool const isRing : {false, true}) {
        auto station = threeUnits(20'000);
        station.add(briefState(20'000));
        closeNumbers(station, 3, 10, 1);
        closeNumbers(station, 3, 5, 1);
        closeNumbers(station, 3, 2, 1);
        if (isRing) station.makeRing();
        EXPECT_EQ(ofRelay(station), (Lines{"sqNumGap R1 #3 after #1 lost 1 publisher",
                                           "stateGap R1 #6 after #4 lost 1 publisher",
                                           "sqNumGap R1 #11 after #9 lost 1 publisher"}));
    }
}

TEST(LossCause, OfMessagesIsTheNetworkWhereTheRedundancyNumbersHaveTheSameGap) {
    using TalIec61850Analysis::LossWitness;
    auto station = threeUnits(20'000);
    station.add(briefState(20'000));
    station.drop(3, 2).drop(3, 5);
    auto const captures = station.captures();
    EXPECT_EQ(foundIn(captures, station), (Lines{"sqNumGap R1 #3 after #1 lost 1 network",
                                                 "stateGap R1 #6 after #4 lost 1 network"}));
    for (auto const& finding : findingsIn(captures)) {
        EXPECT_EQ(finding.witness, LossWitness::redundancyGap);
        EXPECT_EQ(finding.witnessFrames, 1U);
    }
}

TEST(LossCause, OfMessagesIsUnknownWhereNothingElseCame) {
    FaultyStation station;
    station.add(briefState());
    station.drop(0, 2).drop(0, 5);
    EXPECT_EQ(foundIn(station),
              (Lines{"sqNumGap R1 #3 after #1 lost 1", "stateGap R1 #6 after #4 lost 1"}));
}

/// A frame's own count of what was dropped before it.
Bytes withDropCount(FaultyStation& station, std::size_t number, std::uint64_t count,
                    std::size_t interfaces = 1) {
    constexpr std::uint16_t kDropCount = 4;
    std::stable_sort(station.frames().begin(), station.frames().end(),
                     [](StationFrame const& a, StationFrame const& b) { return a.time < b.time; });
    PcapngMaker maker;
    maker.section();
    for (std::size_t i = 0; i < interfaces; ++i) {
        maker.interface(1, 0, maker.timeOptions(9));
    }
    for (StationFrame const& frame : station.frames()) {
        PcapngMaker::Packet packet;
        packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
        packet.frame = FaultyStation::octetsOf(frame);
        if (frame.stream == 0 && frame.number == number) {
            packet.options = maker.numberOption(kDropCount, count);
        }
        maker.packet(packet);
    }
    return maker.bytes();
}

TEST(LossCause, IsTheCaptureWhereItsCountsCoverTheLoss) {
    using TalIec61850Analysis::LossCause;
    FaultyStation station;
    station.add({.frames = 1000});
    station.drop(0, 500, 7);
    EXPECT_EQ(causesIn(withDropCount(station, 507, 7)), std::vector{LossCause::capture});
    EXPECT_EQ(causesIn(withDropCount(station, 507, 6)), std::vector{LossCause::unknown});
    EXPECT_EQ(causesIn(withDropCount(station, 507, 7, 2)), std::vector{LossCause::unknown});
}

TEST(LossCause, IsAPauseOfTheCaptureWhereItsCountsSaySo) {
    using TalIec61850Analysis::FindingKind;
    auto station = threeUnits();
    station.dropBetween(500 * kMillisecond, 520 * kMillisecond);
    auto const findings = findingsIn({withDropCount(station, 2080, 240)});
    EXPECT_EQ(std::count_if(findings.begin(), findings.end(),
                            [](auto const& each) { return each.kind == FindingKind::captureGap; }),
              1);
}

}  // namespace
}  // namespace TalTest::LossCauseTest
