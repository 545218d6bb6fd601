// LANs that are captured by taps of their own, whose clocks do not agree.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/redundancy/AlignClocks.hpp>
#include <algorithm>
#include <string>
#include <utility>
#include <variant>

#include "analysis/supervision/FoundIn.hpp"
#include "support/PcapngMaker.hpp"
#include "support/TempFile.hpp"

namespace TalTest::AlignedClocksTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kLanDelay = 20'000;
constexpr std::int64_t kWholeSecond = 1'000'000'000;

/// Two merging units and a relay, that send over both LANs.
FaultyStation tappedStation() {
    FaultyStation station;
    station.add(SvPlan{.frames = 8000, .prpDelay = kLanDelay});
    station.add({.svID = "MU02",
                 .source = "02:00:00:00:00:02",
                 .frames = 8000,
                 .start = 60'000,
                 .prpDelay = kLanDelay});
    station.add(GoosePlan{
        .firstMessage = 100, .states = {10, 14}, .start = 30'000'000, .prpDelay = kLanDelay});
    return station;
}

void loseOver(FaultyStation& station, char lan, std::size_t stream, std::size_t number,
              std::size_t count = 1) {
    std::erase_if(station.frames(), [&](StationFrame const& frame) {
        return frame.stream == stream && frame.ethernet.prpLan == lan && frame.number >= number &&
               frame.number < number + count;
    });
}

/// Losses of one LAN and of both, and what else is a fault whatever the clocks.
FaultyStation tappedFaults() {
    auto station = tappedStation();
    loseOver(station, 'B', 0, 4000);
    loseOver(station, 'A', 0, 5000, 8);
    loseOver(station, 'A', 2, 14);
    station.drop(1, 3000, 4).drop(2, 16).repeat(1, 6000, 5 * kLanDelay);
    station.changeSvFrom(
        0, 7000, [](SvMessage& message) { message.asdus.front().smpSynch = Unsigned<1>(0); });
    return station;
}

/// Without what says that times are those by another clock.
Lines withoutTimes(Lines lines) {
    std::string const mark = " !time";
    for (std::string& line : lines) {
        if (auto const at = line.find(mark); at != std::string::npos) {
            line.erase(at, mark.size());
        }
    }
    return lines;
}

TrafficIndex indexOf(TempDir const& folder, std::vector<Bytes> const& captures) {
    std::vector<std::string> paths;
    for (Bytes const& capture : captures) {
        paths.push_back(folder.write(std::to_string(paths.size()), capture));
    }
    return indexCaptures(paths);
}

class AlignedClocks : public testing::TestWithParam<std::int64_t> {};

TEST_P(AlignedClocks, FindNothingInCleanCaptures) {
    auto station = tappedStation();
    EXPECT_EQ(foundIn(station.tapLans(GetParam())), Lines());
}

TEST_P(AlignedClocks, FindTheFaultsOfOneClock) {
    auto station = tappedFaults();
    Lines const expected = foundIn(station.tapLans(0));
    EXPECT_EQ(expected.size(), 7U);
    auto other = tappedFaults();
    EXPECT_EQ(withoutTimes(foundIn(other.tapLans(GetParam()))), withoutTimes(expected));
}

TEST_P(AlignedClocks, FindTheFaultsOfARing) {
    auto station = tappedFaults();
    Lines const expected = foundIn(station.tapLans(0).makeRing());
    EXPECT_EQ(expected.size(), 7U);
    auto other = tappedFaults();
    EXPECT_EQ(withoutTimes(foundIn(other.tapLans(GetParam()).makeRing())), withoutTimes(expected));
}

TEST_P(AlignedClocks, GiveTheFiguresOfOneClock) {
    auto station = tappedFaults();
    auto const expected = summariesIn(station.tapLans(0).captures());
    auto other = tappedFaults();
    auto const found = summariesIn(other.tapLans(GetParam()).captures());
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].packets, expected[i].packets);
        EXPECT_EQ(found[i].lost, expected[i].lost);
        EXPECT_EQ(found[i].late, expected[i].late);
        EXPECT_EQ(found[i].repeated, expected[i].repeated);
        EXPECT_EQ(found[i].states, expected[i].states);
        EXPECT_EQ(found[i].first, expected[i].first);
        EXPECT_EQ(found[i].errors, expected[i].errors);
    }
}

TEST_P(AlignedClocks, AreThoseOfLanA) {
    auto station = tappedStation();
    auto captures = station.tapLans(GetParam()).captures();
    for (std::size_t const ofA : {0U, 1U}) {
        TempDir const folder;
        TrafficIndex index = indexOf(folder, captures);
        TrafficIndex const before = indexOf(folder, captures);
        auto const reference = alignClocks(index);
        bool const isOne = GetParam() == 0;
        EXPECT_EQ(reference, isOne ? std::nullopt : std::optional<std::uint32_t>(ofA));
        EXPECT_EQ(index.files()[ofA], before.files()[ofA]);
        EXPECT_EQ(index.files()[1 - ofA].clockOffset, isOne ? 0 : GetParam() + kLanDelay);
        EXPECT_EQ(*index.files()[1 - ofA].summary.first,
                  *before.files()[1 - ofA].summary.first -
                      std::chrono::nanoseconds(isOne ? 0 : GetParam() + kLanDelay));
        for (TrafficStream const& stream : index.streams()) {
            EXPECT_EQ(stream.copies, stream.packets) << stream.key.name;
        }
        std::swap(captures[0], captures[1]);
    }
}

INSTANTIATE_TEST_SUITE_P(OfAllSizes, AlignedClocks,
                         testing::Values(0, 300'000'000, 5 * kWholeSecond, -3600 * kWholeSecond));

TEST(AlignedTaps, OfRotatedFilesHaveOneClockEach) {
    auto station = tappedFaults();
    Lines const expected = foundIn(station.tapLans(0));
    auto other = tappedFaults();
    for (StationFrame& frame : other.tapLans(5 * kWholeSecond).frames()) {
        frame.file += frame.time >= kWholeSecond ? 2U : 0U;
    }
    EXPECT_EQ(withoutTimes(foundIn(other)), withoutTimes(expected));
}

TEST(AlignedTaps, CountAPacketOfTwoFilesOfOneLanOnce) {
    auto station = tappedStation();
    station.tapLans(5 * kWholeSecond);
    auto captures = station.captures();
    captures.push_back(captures.back());
    EXPECT_EQ(foundIn(captures, station), Lines());
}

TEST(AlignedTaps, ComparesDropCountsByOneClock) {
    FaultyStation station;
    station.add({.frames = 1000, .prpDelay = kLanDelay});
    station.tapLans(5 * kWholeSecond).drop(0, 500, 7);
    loseOver(station, 'A', 0, 400, 300);
    PcapngMaker a;
    PcapngMaker b;
    constexpr std::uint16_t kDropCount = 4;
    for (PcapngMaker* const maker : {&a, &b}) maker->section().interface(1, 0, a.timeOptions(9));
    for (StationFrame const& frame : station.inTimeOrder()) {
        PcapngMaker::Packet packet;
        packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
        packet.frame = FaultyStation::octetsOf(frame);
        if (frame.number == 507) packet.options = a.numberOption(kDropCount, 7);
        (frame.file == 0 ? a : b).packet(packet);
    }
    bool isFound = false;
    for (Finding const& finding : findingsIn({a.bytes(), b.bytes()})) {
        if (finding.kind == FindingKind::sampleGap) {
            isFound = true;
            EXPECT_EQ(finding.cause, LossCause::capture);
            EXPECT_EQ(finding.witness, LossWitness::dropCounts);
        }
    }
    EXPECT_TRUE(isFound);
}

TEST(AlignedTaps, LeaveCapturesOfBothLansAsTheyAre) {
    auto station = tappedStation();
    station.splitAt(kWholeSecond);
    TempDir const folder;
    auto const captures = station.captures();
    TrafficIndex index = indexOf(folder, captures);
    TrafficIndex const before = indexOf(folder, captures);
    EXPECT_EQ(alignClocks(index), std::nullopt);
    EXPECT_EQ(index, before);
}

TEST(AlignedTaps, OfStreamsWithoutCopiesAreOfOneClock) {
    auto station = tappedStation();
    for (StationFrame& frame : station.tapLans(5 * kWholeSecond).frames()) {
        frame.ethernet.prpLan.reset();
    }
    TempDir const folder;
    TrafficIndex index = indexOf(folder, station.captures());
    EXPECT_EQ(alignClocks(index), std::nullopt);
}

}  // namespace
}  // namespace TalTest::AlignedClocksTest
