// One difference of each kind between GOOSE messages and their description, and nothing else.

#include <gtest/gtest.h>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::CheckGooseTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::DataKind;

std::string const kGooseMatch = "match RELAY1LD0/LLN0$GO$gcb1";

std::string gooseDiffers(std::string const& difference) {
    return "differs RELAY1LD0/LLN0$GO$gcb1: " + difference;
}

std::string typeOf(BasicType type) { return "type" + std::to_string(static_cast<int>(type)); }
std::string kindText(DataKind kind) { return "kind" + std::to_string(static_cast<int>(kind)); }

/// What comes of a change of the third message and those after it.
SclLines checkAfter(GooseChange const& change,
                    StationDescription const& station = describedGoose()) {
    return checkLines(
        station, gooseFrames(6, [&](std::size_t number, Ethernet& ethernet, GooseMessage& message) {
            if (number >= 2) {
                change(number, ethernet, message);
            }
        }));
}

/// What comes of a change of all messages.
SclLines checkAll(GooseChange const& change, StationDescription const& station = describedGoose()) {
    return checkLines(station, gooseFrames(4, change));
}

/// What comes of other values from the third message on.
SclLines checkValues(std::vector<Bytes> const& values) {
    return checkAfter(
        [&](std::size_t, Ethernet&, GooseMessage& message) { message.setData(values); });
}

TEST(CheckGoose, MatchesWhatIsDescribed) {
    EXPECT_EQ(checkLines(describedGoose(), gooseFrames(5)), SclLines{kGooseMatch});
}

TEST(CheckGoose, TellsPacketsAndTheFirstOfThem) {
    CheckedStation const station(describedGoose(), {gooseFrames(5)});
    ASSERT_EQ(station.rows().size(), 1U);
    StationRow const& row = station.rows().front();
    EXPECT_EQ(row.packets, 5U);
    EXPECT_EQ(row.packet, TalIec61850Analysis::PacketRef());
    EXPECT_EQ(row.controlBlock, 0U);
    EXPECT_EQ(row.stream, 0U);
}

TEST(CheckGoose, FindsAnotherDestination) {
    EXPECT_EQ(checkAll([](std::size_t, Ethernet& ethernet, GooseMessage&) {
                  ethernet = ethernet.to("01:0c:cd:01:00:02");
              }),
              SclLines{gooseDiffers("mac 010ccd010001 != 010ccd010002 @0.0")});
}

TEST(CheckGoose, FindsAnotherAppId) {
    EXPECT_EQ(checkAll([](std::size_t, Ethernet&, GooseMessage& message) { message.appId = 9; }),
              SclLines{gooseDiffers("appId 1 != 9 @0.0")});
}

TEST(CheckGoose, FindsAnotherVlan) {
    EXPECT_EQ(checkAll([](std::size_t, Ethernet& ethernet, GooseMessage&) {
                  ethernet = ethernet.withVlan(6);
              }),
              SclLines{gooseDiffers("vlanId 5 != 6 @0.0")});
    EXPECT_EQ(
        checkAll([](std::size_t, Ethernet& ethernet, GooseMessage&) { ethernet.vlanId.reset(); }),
        SclLines{gooseDiffers("vlanId 5 != none @0.0")});
}

TEST(CheckGoose, TakesNoVlanAndVlanZeroForTheSame) {
    auto const untagged = [](std::size_t, Ethernet& ethernet, GooseMessage&) {
        ethernet.vlanId.reset();
    };
    auto const priorityTagged = [](std::size_t, Ethernet& ethernet, GooseMessage&) {
        ethernet = ethernet.withVlan(0);
    };
    for (auto const& vlan : {std::optional<std::uint16_t>(), std::optional<std::uint16_t>(0)}) {
        auto station = describedGoose();
        station.controlBlocks[0].address.vlanId = vlan;
        EXPECT_EQ(checkAll(untagged, station), SclLines{kGooseMatch});
        EXPECT_EQ(checkAll(priorityTagged, station), SclLines{kGooseMatch});
    }
    auto station = describedGoose();
    station.controlBlocks[0].address.vlanId.reset();
    EXPECT_EQ(checkLines(station, gooseFrames(2)), SclLines{gooseDiffers("vlanId none != 5 @0.0")});
}

TEST(CheckGoose, ComparesNoAddressThatIsNotDescribed) {
    auto station = describedGoose();
    station.controlBlocks[0].address = {};
    EXPECT_EQ(checkLines(station, gooseFrames(2)), SclLines{kGooseMatch});
    station.controlBlocks[0].address.vlanId = 6;
    EXPECT_EQ(checkLines(station, gooseFrames(2)), SclLines{gooseDiffers("vlanId 6 != 5 @0.0")});
}

TEST(CheckGoose, FindsAnotherPriorityInTheMiddleOfAStream) {
    EXPECT_EQ(checkAfter([](std::size_t, Ethernet& ethernet, GooseMessage&) {
                  ethernet.vlanPriority = 6;
              }),
              SclLines{gooseDiffers("vlanPriority 4 != 6 @0.2")});
}

TEST(CheckGoose, ComparesNoPriorityThatIsNotDescribed) {
    auto station = describedGoose();
    station.controlBlocks[0].address.vlanPriority.reset();
    EXPECT_EQ(
        checkAll([](std::size_t, Ethernet& ethernet, GooseMessage&) { ethernet.vlanPriority = 6; },
                 station),
        SclLines{kGooseMatch});
}

TEST(CheckGoose, FindsAnotherNameByItsAddress) {
    EXPECT_EQ(checkAll([](std::size_t, Ethernet&, GooseMessage& message) {
                  message.gocbRef = "RELAY1LD0/LLN0$GO$gcb7";
              }),
              SclLines{"differs RELAY1LD0/LLN0$GO$gcb1 by address: gocbRef "
                       "RELAY1LD0/LLN0$GO$gcb1 != RELAY1LD0/LLN0$GO$gcb7 @0.0"});
}

TEST(CheckGoose, FindsAnotherGoIdWhereverItChanges) {
    EXPECT_EQ(
        checkAfter([](std::size_t, Ethernet&, GooseMessage& message) { message.goID = "else"; }),
        SclLines{gooseDiffers("goID RELAY1_gcb1 != else @0.2")});
    EXPECT_EQ(checkAfter([](std::size_t number, Ethernet&, GooseMessage& message) {
                  message.goID = number == 3 ? "else" : "RELAY1_gcb1";
              }),
              SclLines{gooseDiffers("goID RELAY1_gcb1 != else @0.3")});
}

TEST(CheckGoose, TakesGocbRefForAGoIdThatIsLeftOut) {
    auto const leaveOut = [](std::size_t, Ethernet&, GooseMessage& message) {
        message.goID.reset();
    };
    EXPECT_EQ(checkAll(leaveOut), SclLines{gooseDiffers("goID RELAY1_gcb1 != none @0.0")});
    auto station = describedGoose();
    station.controlBlocks[0].id = station.controlBlocks[0].reference;
    EXPECT_EQ(checkAll(leaveOut, station), SclLines{kGooseMatch});
    station.controlBlocks[0].id.clear();
    EXPECT_EQ(checkAll(leaveOut, station), SclLines{kGooseMatch});
    EXPECT_EQ(checkLines(station, gooseFrames(2)), SclLines{kGooseMatch});
}

TEST(CheckGoose, FindsAnotherDataSet) {
    EXPECT_EQ(
        checkAfter([](std::size_t, Ethernet&, GooseMessage& message) {
            message.datSet = "RELAY1LD0/LLN0$other";
        }),
        SclLines{gooseDiffers("datSet RELAY1LD0/LLN0$dataSet1 != RELAY1LD0/LLN0$other @0.2")});
    EXPECT_EQ(
        checkAfter([](std::size_t, Ethernet&, GooseMessage& message) { message.datSet.reset(); }),
        SclLines{gooseDiffers("datSet RELAY1LD0/LLN0$dataSet1 != none @0.2")});
}

TEST(CheckGoose, FindsADataSetWhereNoneIsDescribed) {
    auto station = describedGoose();
    station.controlBlocks[0].dataSetReference.reset();
    station.controlBlocks[0].dataSet.reset();
    EXPECT_EQ(checkLines(station, gooseFrames(2)),
              SclLines{gooseDiffers("datSet none != RELAY1LD0/LLN0$dataSet1 @0.0")});
}

TEST(CheckGoose, FindsAnotherRevision) {
    EXPECT_EQ(
        checkAfter([](std::size_t, Ethernet&, GooseMessage& message) { message.confRev = 2; }),
        SclLines{gooseDiffers("confRev 1 != 2 @0.2")});
    EXPECT_EQ(checkAfter([](std::size_t, Ethernet&, GooseMessage& message) {
                  message.confRev = {3, 12};
              }),
              SclLines{gooseDiffers("confRev 1 != 3 @0.2")});
    EXPECT_EQ(
        checkAfter([](std::size_t, Ethernet&, GooseMessage& message) { message.confRev.reset(); }),
        SclLines{gooseDiffers("confRev 1 != none @0.2")});
    auto station = describedGoose();
    station.controlBlocks[0].confRev.reset();
    EXPECT_EQ(checkAfter([](std::size_t, Ethernet&, GooseMessage& message) { message.confRev = 2; },
                         station),
              SclLines{kGooseMatch});
}

TEST(CheckGoose, FindsMoreAndFewerValues) {
    auto values = describedValues();
    values.erase(values.begin());
    EXPECT_EQ(checkValues(values), SclLines{gooseDiffers("memberCount 4 != 3 @0.2")});
    values = describedValues();
    values.insert(values.begin() + 1, dataInteger(1));
    EXPECT_EQ(checkValues(values), SclLines{gooseDiffers("memberCount 4 != 5 @0.2")});
    EXPECT_EQ(checkValues({}), SclLines{gooseDiffers("memberCount 4 != 0 @0.2")});
    EXPECT_EQ(
        checkAfter([](std::size_t, Ethernet&, GooseMessage& message) { message.allData.reset(); }),
        SclLines{gooseDiffers("memberCount 4 != 0 @0.2")});
}

TEST(CheckGoose, FindsAValueOfAnotherType) {
    auto values = describedValues();
    values[3] = dataDouble(1.5);
    EXPECT_EQ(checkValues(values),
              SclLines{gooseDiffers("memberType [3] " + typeOf(BasicType::float32) +
                                    " != " + kindText(DataKind::floatingPoint) + " @0.2")});
    values = describedValues();
    values[2] = dataStructure({dataInteger(7), dataInteger(2), dataUtcTime(kDescribedStart)});
    EXPECT_EQ(checkValues(values),
              SclLines{gooseDiffers("memberType [2.1] " + typeOf(BasicType::dbpos) +
                                    " != " + kindText(DataKind::integer) + " @0.2")});
    values = describedValues();
    values[2] = dataInteger(1);
    EXPECT_EQ(checkValues(values),
              SclLines{gooseDiffers("memberType [2] " + typeOf(BasicType::structure) +
                                    " != " + kindText(DataKind::integer) + " @0.2")});
    values = describedValues();
    values[0] = dataStructure({dataBoolean(true)});
    EXPECT_EQ(checkValues(values),
              SclLines{gooseDiffers("memberType [0] " + typeOf(BasicType::boolean) +
                                    " != " + kindText(DataKind::structure) + " @0.2")});
}

TEST(CheckGoose, FindsOtherValuesInAStructure) {
    auto values = describedValues();
    values[2] = dataStructure({dataInteger(7), dataBitString({0x80}, 6)});
    EXPECT_EQ(checkValues(values),
              SclLines{gooseDiffers("memberType [2.2] " + typeOf(BasicType::timestamp) +
                                    " != none @0.2")});
    values[2] = dataStructure({dataInteger(7), dataBitString({0x80}, 6),
                               dataUtcTime(kDescribedStart), dataBoolean(true)});
    EXPECT_EQ(checkValues(values), SclLines{gooseDiffers("memberType [2.3] none != " +
                                                         kindText(DataKind::boolean) + " @0.2")});
}

TEST(CheckGoose, FindsATypeThatIsAnotherInOneMessageAlone) {
    EXPECT_EQ(checkAfter([](std::size_t number, Ethernet&, GooseMessage& message) {
                  auto values = describedValues();
                  values[0] = dataBoolean(number == 4);
                  values[2] = dataStructure({dataInteger(70000), dataBitString({0x40}, 6),
                                             dataUtcTime(kDescribedStart + 1)});
                  if (number == 4) {
                      values[1] = dataBitString({0x00, 0x00}, 4);
                  }
                  message.setData(values);
              }),
              SclLines{gooseDiffers("memberType [1] " + typeOf(BasicType::quality) +
                                    " != " + kindText(DataKind::bitString) + " @0.4")});
}

TEST(CheckGoose, TellsCountAndTypeWhereDifferentMessagesShowThem) {
    EXPECT_EQ(checkAfter([](std::size_t number, Ethernet&, GooseMessage& message) {
                  auto values = describedValues();
                  if (number == 3) {
                      values.pop_back();
                  }
                  if (number == 5) {
                      values[0] = dataInteger(1);
                  }
                  message.setData(values);
              }),
              SclLines{gooseDiffers("memberCount 4 != 3 @0.3, memberType [0] " +
                                    typeOf(BasicType::boolean) +
                                    " != " + kindText(DataKind::integer) + " @0.5")});
}

TEST(CheckGoose, ComparesNoValuesOfADataSetThatIsNotDescribed) {
    auto station = describedGoose();
    station.controlBlocks[0].dataSet.reset();
    EXPECT_EQ(checkAll([](std::size_t, Ethernet&,
                          GooseMessage& message) { message.setData({dataInteger(1)}); },
                       station),
              SclLines{kGooseMatch});
    station.controlBlocks[0].dataSet = 7;
    EXPECT_EQ(checkLines(station, gooseFrames(2)), SclLines{kGooseMatch});
}

/// Messages, from one of which on all come later.
std::vector<DescribedFrame> delayedFrom(std::size_t number, std::int64_t delay) {
    auto frames = gooseFrames(6);
    for (std::size_t i = number; i < frames.size(); ++i) {
        frames[i].time += delay;
    }
    return frames;
}

TEST(CheckGoose, FindsIntervalsBeyondMaxTime) {
    EXPECT_EQ(checkLines(describedGoose(), delayedFrom(3, 10'000'001)),
              SclLines{gooseDiffers("maxTime 100000000 != 110000001 @0.3")});
    EXPECT_EQ(checkLines(describedGoose(), delayedFrom(3, 10'000'000)), SclLines{kGooseMatch});
}

TEST(CheckGoose, LeavesAMillisecondToShortIntervals) {
    auto station = describedGoose();
    station.controlBlocks[0].address.maxTime = 4'000'000;
    auto frames = gooseFrames(4);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        frames[i].time = static_cast<std::int64_t>(i) * 5'000'000;
    }
    EXPECT_EQ(checkLines(station, frames), SclLines{kGooseMatch});
    frames[3].time += 1;
    EXPECT_EQ(checkLines(station, frames),
              SclLines{gooseDiffers("maxTime 4000000 != 5000001 @0.3")});
}

TEST(CheckGoose, TellsTheLongestInterval) {
    auto frames = delayedFrom(2, 50'000'000);
    for (std::size_t i = 4; i < frames.size(); ++i) {
        frames[i].time += 90'000'000;
    }
    EXPECT_EQ(checkLines(describedGoose(), frames),
              SclLines{gooseDiffers("maxTime 100000000 != 190000000 @0.4")});
}

TEST(CheckGoose, ComparesNoIntervalsWithoutMaxTime) {
    for (auto const& maxTime : {std::optional<std::int64_t>(), std::optional<std::int64_t>(0),
                                std::optional<std::int64_t>(-5)}) {
        auto station = describedGoose();
        station.controlBlocks[0].address.maxTime = maxTime;
        EXPECT_EQ(checkLines(station, delayedFrom(3, 900'000'000)), SclLines{kGooseMatch});
    }
}

TEST(CheckGoose, ComparesNoMinTime) {
    auto station = describedGoose();
    station.controlBlocks[0].address.minTime = 90'000'000'000;
    EXPECT_EQ(checkLines(station, gooseFrames(3)), SclLines{kGooseMatch});
}

TEST(CheckGoose, CountsCopiesOverAnotherLanAsNoMessages) {
    // Each frame over LAN A, but for one, comes again over LAN B 3 ms later.
    std::vector<DescribedFrame> frames;
    for (char const lan : {'A', 'B'}) {
        auto const ofLan =
            gooseFrames(4, [&](std::size_t number, Ethernet& ethernet, GooseMessage&) {
                ethernet = ethernet.withPrp(lan, static_cast<std::uint16_t>(number));
            });
        for (DescribedFrame frame : ofLan) {
            frame.time = frame.time * 6 / 5 + (lan == 'B' ? 30'000'000 : 0);
            frames.push_back(frame);
        }
    }
    // Without the copies an interval is 120 ms, with them 90 ms.
    CheckedStation const station(describedGoose(), {frames});
    ASSERT_EQ(station.rows().size(), 1U);
    EXPECT_EQ(station.rows()[0].packets, 4U);
    EXPECT_EQ(station.lines(), SclLines{gooseDiffers("maxTime 100000000 != 120000000 @0.2")});
}

TEST(CheckGoose, LeavesOutTheTimeBetweenFiles) {
    auto const frames = delayedFrom(3, 900'000'000);
    std::vector<DescribedFrame> const first(frames.begin(), frames.begin() + 3);
    std::vector<DescribedFrame> const second(frames.begin() + 3, frames.end());
    EXPECT_EQ(CheckedStation(describedGoose(), {first, second}).lines(), SclLines{kGooseMatch});
}

TEST(CheckGoose, ComparesIntervalsOverFilesThatFollowEachOther) {
    auto const frames = delayedFrom(3, 900'000'000);
    std::vector<DescribedFrame> first(frames.begin(), frames.begin() + 3);
    std::vector<DescribedFrame> second(frames.begin() + 3, frames.end());
    // Something else is captured up to the end of the first file, and from then on.
    DescribedFrame other{.time = 700'000'000,
                         .octets = ethernetFrame(Ethernet(), 0x0806, Bytes(46))};
    first.push_back(other);
    other.time += 900'000;
    second.push_back(other);
    EXPECT_EQ(CheckedStation(describedGoose(), {first, second}).lines(),
              SclLines{gooseDiffers("maxTime 100000000 != 1000000000 @1.0")});
    second.back().time += 200'000;
    EXPECT_EQ(CheckedStation(describedGoose(), {first, second}).lines(), SclLines{kGooseMatch});
}

/// What is captured beside GOOSE.
DescribedFrame otherFrame(std::int64_t time) {
    return {.time = time, .octets = ethernetFrame(Ethernet(), 0x0806, Bytes(46))};
}

TEST(CheckGoose, FindsAPublisherThatFallsSilent) {
    // The last of three messages comes after 200 ms.
    auto frames = gooseFrames(3);
    frames.push_back(otherFrame(310'000'000));
    EXPECT_EQ(checkLines(describedGoose(), frames), SclLines{kGooseMatch});
    frames.push_back(otherFrame(310'000'001));
    EXPECT_EQ(checkLines(describedGoose(), frames),
              SclLines{gooseDiffers("maxTime 100000000 != 110000001 @0.2")});
}

TEST(CheckGoose, FindsAPublisherThatFallsSilentBeforeOtherFiles) {
    std::vector<DescribedFrame> const second = {otherFrame(200'500'000), otherFrame(700'000'000)};
    std::vector<DescribedFrame> const third = {otherFrame(700'900'000), otherFrame(1'200'000'000)};
    EXPECT_EQ(CheckedStation(describedGoose(), {gooseFrames(3), third, second}).lines(),
              SclLines{gooseDiffers("maxTime 100000000 != 1000000000 @0.2")});
    // Files that do not follow may be of another network.
    EXPECT_EQ(CheckedStation(describedGoose(), {gooseFrames(3), third}).lines(),
              SclLines{kGooseMatch});
}

TEST(CheckGoose, TellsArraysFromStructures) {
    auto values = describedValues();
    Bytes const inside =
        concat({dataInteger(7), dataBitString({0x80}, 6), dataUtcTime(kDescribedStart)});
    values[2] = ber(0xA1, inside);
    EXPECT_EQ(checkValues(values),
              SclLines{gooseDiffers("memberType [2] " + typeOf(BasicType::structure) +
                                    " != " + kindText(DataKind::array) + " @0.2")});
    auto station = describedGoose();
    for (std::size_t i = 2; i < 5; ++i) {
        station.dataSets[0].members[i].arrays = 1;
    }
    EXPECT_EQ(checkLines(station, gooseFrames(2)),
              SclLines{gooseDiffers("memberType [2] " + kindText(DataKind::array) +
                                    " != " + kindText(DataKind::structure) + " @0.0")});
}

TEST(CheckGoose, FindsANumberBeyondItsTypeInOneMessageAlone) {
    auto station = describedGoose();
    station.dataSets[0].members[2].type = BasicType::int8;
    EXPECT_EQ(checkAfter(
                  [](std::size_t number, Ethernet&, GooseMessage& message) {
                      auto values = describedValues();
                      values[2] =
                          dataStructure({ber(0x85, {static_cast<std::uint8_t>(number == 4), 0x2C}),
                                         dataBitString({0x80}, 6), dataUtcTime(kDescribedStart)});
                      message.setData(values);
                  },
                  station),
              SclLines{gooseDiffers("memberType [2.0] " + typeOf(BasicType::int8) +
                                    " != " + kindText(DataKind::integer) + " @0.4")});
}

TEST(CheckGoose, TellsTheFirstPacketOfADifferenceOverFiles) {
    auto const frames =
        gooseFrames(6, [](std::size_t number, Ethernet& ethernet, GooseMessage& message) {
            if (number >= 4) {
                message.confRev = 2;
                message.setData({dataBoolean(true)});
                ethernet.vlanPriority = 1;
            }
        });
    std::vector<DescribedFrame> const first(frames.begin(), frames.begin() + 3);
    std::vector<DescribedFrame> const second(frames.begin() + 3, frames.end());
    EXPECT_EQ(CheckedStation(describedGoose(), {first, second}).lines(),
              SclLines{gooseDiffers("vlanPriority 4 != 1 @1.1, confRev 1 != 2 @1.1, "
                                    "memberCount 4 != 1 @1.1")});
    EXPECT_EQ(CheckedStation(describedGoose(), {second, first}).lines(),
              SclLines{gooseDiffers("vlanPriority 4 != 1 @0.1, confRev 1 != 2 @0.1, "
                                    "memberCount 4 != 1 @0.1")});
}

TEST(CheckGoose, TellsAllThatDiffersInTheOrderOfKinds) {
    CheckedStation const station(describedGoose(),
                                 {gooseFrames(4, [](std::size_t, Ethernet&, GooseMessage& message) {
                                     message.setData({dataBoolean(true)});
                                     message.appId = 7;
                                     message.goID = "x";
                                 })});
    EXPECT_EQ(station.lines(),
              SclLines{gooseDiffers("appId 1 != 7 @0.0, goID RELAY1_gcb1 != x @0.0, "
                                    "memberCount 4 != 1 @0.0")});
}

TEST(CheckGoose, MissesNothingThatASnapLengthCutOff) {
    auto frames = gooseFrames(4);
    std::size_t const size = frames[0].octets.size();
    // From the whole frame down to the end of gocbRef: what is there agrees.
    for (std::size_t snapped = size - 1; snapped > 70; --snapped) {
        frames[2].snappedTo = snapped;
        EXPECT_EQ(checkLines(describedGoose(), frames), SclLines{kGooseMatch}) << snapped;
    }
}

TEST(CheckGoose, FindsOtherTypesBeforeWhatWasCutOff) {
    auto frames = gooseFrames(4, [](std::size_t number, Ethernet&, GooseMessage& message) {
        auto values = describedValues();
        values[0] = number == 2 ? dataInteger(1) : values[0];
        message.setData(values);
    });
    frames[2].snappedTo = frames[2].octets.size() - 3;
    EXPECT_EQ(checkLines(describedGoose(), frames),
              SclLines{gooseDiffers("memberType [0] " + typeOf(BasicType::boolean) +
                                    " != " + kindText(DataKind::integer) + " @0.2")});
}

}  // namespace
}  // namespace TalTest::CheckGooseTest
