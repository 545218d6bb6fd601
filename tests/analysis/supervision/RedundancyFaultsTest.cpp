// What is found of the copies of frames over both LANs.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <variant>

#include "analysis/supervision/FoundIn.hpp"

namespace TalTest::RedundancyFaultsTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kDelay = 20'000;

FaultyStation redundantStation() {
    FaultyStation station;
    station.add(SvPlan{.frames = 8000, .prpDelay = kDelay});
    return station;
}

StationFrame& copyIn(FaultyStation& station, std::size_t number, char lan) {
    return *std::find_if(station.frames().begin(), station.frames().end(), [&](auto const& frame) {
        return frame.number == number && frame.ethernet.prpLan == lan;
    });
}

void loseCopies(FaultyStation& station, char lan, std::size_t number, std::size_t count) {
    std::erase_if(station.frames(), [&](StationFrame const& frame) {
        return frame.ethernet.prpLan == lan && frame.number >= number &&
               frame.number < number + count;
    });
}

std::string textIn(FindingValue const& value) {
    auto const& octets = std::get<OctetString>(value);
    return {octets.begin(), octets.end()};
}

TEST(RedundancyFaults, AreNotThereInACleanCapture) {
    auto station = redundantStation();
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(RedundancyFaults, AreCopiesThatAreMissing) {
    auto station = redundantStation();
    loseCopies(station, 'B', 4000, 1);
    loseCopies(station, 'A', 5000, 8);
    EXPECT_EQ(foundIn(station),
              (Lines{"copyMissing MU01 #4000 network", "copyMissing MU01 #5000 count 8 network"}));
    auto const captures = station.captures();
    Finding const finding = findingsIn(captures).front();
    EXPECT_EQ(finding.severity(), Severity::error);
    EXPECT_EQ(textIn(finding.expected), "B");
    EXPECT_EQ(textIn(finding.found), "A");
    EXPECT_EQ(finding.protocol, StreamProtocol::sv);
    EXPECT_EQ(finding.witness, LossWitness::otherCopy);
    EXPECT_EQ(finding.witnessFrames, 1U);
}

TEST(RedundancyFaults, AreLossesWhereBothCopiesAreMissing) {
    auto station = redundantStation();
    station.drop(0, 4000, 3);
    EXPECT_EQ(foundIn(station).size(), 1U);
    EXPECT_EQ(foundIn(station).front().substr(0, 15), "sampleGap MU01 ");
}

TEST(RedundancyFaults, AreCopiesOfOtherOctets) {
    auto station = redundantStation();
    auto& copy = copyIn(station, 4000, 'B');
    std::get<SvMessage>(copy.message).asdus.front().seqData = Bytes(64, 7);
    EXPECT_EQ(foundIn(station), Lines{"copyDiffers MU01 #4000 after #4000"});
}

TEST(RedundancyFaults, AreCopiesTooMany) {
    auto station = redundantStation();
    station.repeat(0, 4000, 2 * kDelay);
    EXPECT_EQ(foundIn(station), Lines{"copyExtra MU01 #4000 after #4000"});
}

TEST(RedundancyFaults, AreCopiesOfTheWrongLan) {
    auto station = redundantStation();
    copyIn(station, 4000, 'B').ethernet.prpLan = 'A';
    auto const captures = station.captures();
    auto const findings = findingsIn(captures);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(lineOf(findings.front(), station), "wrongLan MU01 #4000 after #4000");
    EXPECT_EQ(textIn(findings.front().expected), "B");
    EXPECT_EQ(textIn(findings.front().found), "A");
}

/// The capture with the size in the trailers of a frame changed.
Bytes withMisfits(FaultyStation& station, std::vector<std::pair<std::size_t, char>> const& which) {
    Bytes capture = station.captures().front();
    constexpr std::size_t kCaptureHeader = 24;
    constexpr std::size_t kRecordHeader = 16;
    std::size_t at = kCaptureHeader;
    for (StationFrame const& frame : station.frames()) {
        std::size_t const size = capture[at + 8] | std::size_t{capture[at + 9]} << 8U;
        std::size_t const end = at + kRecordHeader + size;
        for (auto const& [number, lan] : which) {
            if (frame.number == number && frame.ethernet.prpLan == lan) {
                capture[end - 3] ^= 0x55U;
            }
        }
        at = end;
    }
    return capture;
}

TEST(RedundancyFaults, AreTrailersThatDoNotFit) {
    for (auto const& which : {std::vector<std::pair<std::size_t, char>>{{4000, 'A'}},
                              std::vector<std::pair<std::size_t, char>>{{4000, 'B'}}}) {
        auto station = redundantStation();
        Bytes const capture = withMisfits(station, which);
        auto const findings = findingsIn({capture});
        ASSERT_EQ(findings.size(), 1U);
        EXPECT_EQ(findings.front().kind, FindingKind::trailerInvalid);
        EXPECT_EQ(findings.front().severity(), Severity::warning);
        EXPECT_NE(findings.front().expected, findings.front().found);
    }
}

TEST(RedundancyFaults, AreNoRepetitionWhereNoTrailerFits) {
    auto station = redundantStation();
    Bytes const capture = withMisfits(station, {{4000, 'A'}, {4000, 'B'}, {4001, 'A'}});
    for (Finding const& finding : findingsIn({capture})) {
        EXPECT_EQ(finding.kind, FindingKind::trailerInvalid);
    }
}

TEST(RedundancyFaults, AreJoinedWhereTheyAreMany) {
    auto station = redundantStation();
    std::erase_if(station.frames(), [](StationFrame const& frame) {
        return frame.ethernet.prpLan == 'B' && frame.number >= 2000 && frame.number < 6000 &&
               frame.number % 2 == 0;
    });
    auto const lines = foundIn(station);
    EXPECT_EQ(lines, Lines{"copyMissing MU01 #2000 count 2000 network"});
}

}  // namespace
}  // namespace TalTest::RedundancyFaultsTest
