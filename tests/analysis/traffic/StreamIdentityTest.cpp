// What tells streams apart, and what does not.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <functional>
#include <string>
#include <vector>

#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Ber.hpp"

namespace TalIec61850Analysis::StreamIdentityTest {
namespace {

using namespace TalTest;

TEST(TrafficStreams, OfGooseAreToldApartByEachPartOfTheirKey) {
    GooseMessage const message;
    GooseMessage otherAppId = message;
    otherAppId.appId = 2;
    GooseMessage otherName = message;
    otherName.gocbRef = "RELAY1LD0/LLN0$GO$gcb2";
    GooseMessage emptyName = message;
    emptyName.gocbRef = "";
    TrafficCapture capture;
    capture.add(Ethernet(), message)
        .add(Ethernet().to("01:0c:cd:01:00:02"), message)
        .add(Ethernet().from("02:00:00:00:00:02"), message)
        .add(Ethernet().withVlan(0), message)
        .add(Ethernet().withVlan(5), message)
        .add(Ethernet(), otherAppId)
        .add(Ethernet(), otherName)
        .add(Ethernet(), emptyName);
    TrafficIndex const index = capture.index();
    EXPECT_EQ(index.streams().size(), 8U);
    for (TrafficStream const& stream : index.streams()) EXPECT_EQ(stream.packets, 1U);
    EXPECT_EQ(index.files()[0].summary.gooseFrames, 8U);
}

TEST(TrafficStreams, AreTheSameWhateverElsePacketsSay) {
    auto const with = [](std::function<void(GooseMessage&)> const& change) {
        GooseMessage message;
        change(message);
        return message;
    };
    TrafficCapture capture;
    capture.add(Ethernet(), GooseMessage())
        .add(Ethernet().withHsr('A', 1), GooseMessage())
        .add(Ethernet().withHsr('B', 1), GooseMessage())
        .add(Ethernet().withPrp('A', 2), GooseMessage())
        .add(Ethernet().withPrp('B', 2), GooseMessage())
        .add(Ethernet(), with([](auto& m) { m.confRev = 7; }))
        .add(Ethernet(), with([](auto& m) { m.datSet.reset(); }))
        .add(Ethernet(), with([](auto& m) { m.goID = "other"; }))
        .add(Ethernet(), with([](auto& m) { m.simulation = true; }))
        .add(Ethernet(), with([](auto& m) { m.reserved1 = 0x8001; }))
        .add(Ethernet(), with([](auto& m) { m.ndsCom = true; }));
    TrafficIndex const index = capture.index();
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams()[0].size(), 11U);
}

TEST(TrafficStreams, OfVlansDifferInThePriorityAloneAreOne) {
    TrafficCapture capture;
    capture.add(Ethernet().withVlan(5, 4), GooseMessage());
    capture.add(Ethernet().withVlan(5, 6, true), GooseMessage());
    EXPECT_EQ(capture.index().streams().size(), 1U);
}

TEST(TrafficStreams, HaveTheirWholeVlanStack) {
    Bytes const frame = gooseFrame(Ethernet(), GooseMessage());
    auto const tagged = [&](Bytes const& tags) {
        return concat({prefix(frame, 12), tags, Bytes(frame.begin() + 12, frame.end())});
    };
    TrafficCapture capture;
    capture.add(tagged({0x88, 0xA8, 0x00, 0x64, 0x81, 0x00, 0x80, 0x05}))
        .add(tagged({0x88, 0xA8, 0x00, 0x64, 0x91, 0x00, 0x80, 0x05}))
        .add(tagged({0x81, 0x00, 0x80, 0x05}))
        .add(tagged({0x91, 0x00, 0x80, 0x05}));
    TrafficIndex const index = capture.index();
    ASSERT_EQ(index.streams().size(), 4U);
    std::vector<std::vector<VlanKey>> stacks;
    for (TrafficStream const& stream : index.streams()) stacks.push_back(stream.key.vlans);
    std::vector<std::vector<VlanKey>> const expected = {
        {{0x8100, 5}}, {{0x88A8, 100}, {0x8100, 5}}, {{0x88A8, 100}, {0x9100, 5}}, {{0x9100, 5}}};
    EXPECT_EQ(stacks, expected);
}

TEST(TrafficStreams, OfSvAreOneForEachSvIdOfAFrame) {
    SvMessage message;
    message.asdus = {Asdu(), Asdu(), Asdu()};
    message.asdus[0].svID = "MU01";
    message.asdus[1].svID = "MU02";
    message.asdus[2].svID = "MU01";
    message.asdus[2].smpCnt = 1;
    TrafficCapture capture;
    std::uint64_t const offset = capture.nextFrameOffset();
    capture.add(svEthernet(), message);
    TrafficIndex const index = capture.index();
    ASSERT_EQ(streamNames(index), (std::vector<std::string>{"MU01", "MU02"}));
    PacketColumns const& first = index.streams()[0].parts[0].packets;
    ASSERT_EQ(first.size(), 2U);
    EXPECT_EQ(first.asdus()[0], 0);
    EXPECT_EQ(first.asdus()[1], 2);
    EXPECT_EQ(first.smpCnts()[1], 1U);
    EXPECT_EQ(first.frameOffsets()[0], offset);
    EXPECT_EQ(first.frameOffsets()[1], offset);
    EXPECT_EQ(first.pduOffsets()[0], 22 + sequenceOffset(message));
    EXPECT_EQ(index.streams()[1].parts[0].packets.asdus()[0], 1);
    EXPECT_EQ(index.files()[0].summary.svFrames, 1U);
    EXPECT_TRUE(index.files()[0].summary.unread.empty());
}

TEST(TrafficStreams, OfCookedCapturesHaveNoDestination) {
    Bytes const start = {0x00, 0x03, 0x00, 0x01, 0x00, 0x06, 0x02, 0, 0, 0, 0, 9, 0, 0, 0x88, 0xB8};
    TrafficCapture capture(113);
    capture.add(concat({start, gooseApdu(GooseMessage())}));
    TrafficIndex const index = capture.index();
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams()[0].key.destination, std::nullopt);
    EXPECT_EQ(index.streams()[0].key.source, (MacAddress{0x02, 0, 0, 0, 0, 9}));
    EXPECT_EQ(index.streams()[0].parts[0].packets.pduOffsets()[0], 24);
    EXPECT_EQ(index.files()[0].summary.linkTypes.at(113), 1U);
}

TEST(TrafficStreams, OfTheSecondCookedFormAreReadToo) {
    Bytes const start = {0x88, 0xBA, 0, 0, 0, 0, 0, 7, 0, 1, 3, 6, 0x02, 0, 0, 0, 0, 9, 0, 0};
    TrafficCapture capture(276);
    capture.add(concat({start, svApdu(SvMessage())}));
    EXPECT_EQ(streamNames(capture.index()), std::vector<std::string>{"MU01"});
}

TEST(TrafficStreams, OfUnknownLinkTypesAreNoneAndTheFramesAreCounted) {
    TrafficCapture capture(250);
    capture.add(Ethernet(), GooseMessage());
    TrafficIndex const index = capture.index();
    EXPECT_TRUE(index.streams().empty());
    EXPECT_EQ(index.files()[0].summary.linkTypes.at(250), 1U);
    EXPECT_EQ(index.files()[0].summary.gooseFrames, 0U);
    EXPECT_EQ(index.files()[0].summary.records, 1U);
}

TEST(TrafficStreams, HaveNamesOctetForOctet) {
    GooseMessage message;
    message.gocbRef = std::string("a\0b\xff", 4);
    TrafficCapture capture;
    capture.add(Ethernet(), message);
    EXPECT_EQ(streamNames(capture.index()), std::vector<std::string>{*message.gocbRef});
}

TEST(TrafficStreams, AreFoundByTheirKeys) {
    TrafficCapture capture;
    capture.add(Ethernet(), GooseMessage()).add(svEthernet(), SvMessage());
    TrafficIndex const index = capture.index();
    for (TrafficStream const& stream : index.streams()) {
        EXPECT_EQ(index.find(stream.key), &stream);
        StreamKey other = stream.key;
        other.appId = 0x3333;
        EXPECT_EQ(index.find(other), nullptr);
    }
}

TEST(TrafficStreams, ThatAreNotWantedAreCountedAlone) {
    TrafficCapture capture;
    capture.add(Ethernet(), GooseMessage()).add(svEthernet(), SvMessage());
    capture.add(svEthernet(), SvMessage());
    TrafficIndex const index = capture.index(
        {.keeps = [](StreamKey const& key) { return key.protocol == StreamProtocol::goose; }});
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams()[0].key.protocol, StreamProtocol::goose);
    EXPECT_EQ(index.files()[0].summary.svFrames, 2U);
}

TEST(TrafficStreams, ComeByTheHundredThousandOutOfFramesFullOfAsdus) {
    TrafficCapture capture;
    std::size_t number = 0;
    for (int frame = 0; frame < 20; ++frame) {
        SvMessage message;
        message.asdus.clear();
        for (int asdu = 0; asdu < 5000; ++asdu) {
            Asdu each;
            each.svID = std::to_string(number++);
            each.seqData.reset();
            each.confRev.reset();
            each.smpSynch.reset();
            each.smpCnt.reset();
            message.asdus.push_back(each);
        }
        message.asdus.back().svID = message.asdus.front().svID;
        capture.add(svEthernet(), message);
    }
    TrafficIndex const index = capture.index();
    EXPECT_EQ(index.streams().size(), number - 20);
    std::uint64_t packets = 0;
    for (TrafficStream const& stream : index.streams()) packets += stream.packets;
    EXPECT_EQ(packets, number);
    // One set of attributes is kept once, whatever the number of streams.
    EXPECT_EQ(index.files()[0].attributes.size(), 1U);
}

}  // namespace
}  // namespace TalIec61850Analysis::StreamIdentityTest
