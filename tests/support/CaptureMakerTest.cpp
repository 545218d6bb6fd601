#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/CaptureMaker.hpp"
#include "support/OtherTraffic.hpp"
#include "support/Relay.hpp"

namespace TalTest::CaptureMakerTest {
namespace {

std::vector<std::string> streamsOf(MadeCapture const& made) {
    std::vector<std::string> streams;
    for (MadePacket const& packet : made.packets) streams.push_back(packet.stream);
    return streams;
}

TEST(CaptureMaker, StatesThePositionAndTheTimeOfEachPacket) {
    SvMessage sampled;
    sampled.asdus.resize(2);
    Ethernet const ring = svEthernet().withVlan(4).withHsr('B');
    MadeCapture const made = CaptureMaker()
                                 .at(3 * second + 4'999)
                                 .add({}, GooseMessage())
                                 .addOther(arpRequest(0))
                                 .add(ring, sampled)
                                 .make();
    auto const records = readCapture(made.octets);
    ASSERT_EQ(records.size(), 3U);
    ASSERT_EQ(made.packets.size(), 2U);
    for (std::size_t const packet : {0U, 1U}) {
        CaptureRecord const& record = records[2 * packet];
        EXPECT_EQ(made.octets.at(made.packets[packet].position), packet == 0 ? 0x61 : 0xA2);
        EXPECT_EQ(made.packets[packet].seconds, record.seconds);
        EXPECT_EQ(made.packets[packet].nanoseconds, record.nanoseconds);
    }
    EXPECT_EQ(records[0].nanoseconds, 4'000U) << "whole microseconds";
    EXPECT_EQ(records[1].nanoseconds, 254'000U) << "250 us later";
    EXPECT_EQ(made.packets[0].position, records[0].position + recordHeaderSize + 14 + 8);
    EXPECT_EQ(made.packets[1].position,
              records[2].position + recordHeaderSize + 24 + 8 + sequenceOffset(sampled));
}

TEST(CaptureMaker, CountsPacketsAndStreams) {
    GooseMessage nameless;
    nameless.gocbRef.reset();
    MadeCapture const made = CaptureMaker()
                                 .add({}, GooseMessage())
                                 .add({}, GooseMessage())
                                 .add(svEthernet(), SvMessage())
                                 .add(streamText({}, nameless), std::nullopt, arpRequest(0))
                                 .make();
    EXPECT_EQ(made.gooseFrames(), 3U);
    EXPECT_EQ(made.svFrames(), 1U);
    EXPECT_EQ(made.streams(), 3U);
    EXPECT_EQ(made.withoutPosition(), 1U);
}

TEST(CaptureMaker, CutsFramesAndTheFile) {
    CaptureMaker maker;
    maker.snapTo(50).add({}, GooseMessage());
    auto const records = readCapture(maker.make().octets);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].inclLen, 50U);
    EXPECT_EQ(records[0].origLen, gooseFrame({}, GooseMessage()).size());
    EXPECT_TRUE(readCapture(maker.make(1).octets).empty());
    Bytes completed = completedCapture(maker.make(1).octets);
    EXPECT_EQ(completed.size(), maker.make().octets.size());
    EXPECT_EQ(completed.back(), 0);
    EXPECT_EQ(prefix(completed, completed.size() - 1), maker.make(1).octets);
}

TEST(CaptureMaker, TakesTheFramesOfDevicesInTheOrderOfTheirTimes) {
    StationDevices devices;
    for (unsigned const number : {1U, 2U})
        devices.push_back(std::make_unique<Relay>(
            RelaySettings{.ethernet = number == 1 ? Ethernet() : Ethernet().withVlan(9),
                          .appId = static_cast<std::uint16_t>(number),
                          .device = "R" + std::to_string(number),
                          .firstHeartbeat = (3 - number) * millisecond}));
    devices.push_back(std::make_unique<OtherTraffic>(0, 3 * millisecond, ptpSync));
    MadeCapture const made = CaptureMaker().addFrom(devices, 3).make();
    auto const streams = streamsOf(made);
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_NE(streams[0].find("R2LD0"), std::string::npos);
    EXPECT_NE(streams[1].find("R1LD0"), std::string::npos);
    for (MadePacket const& packet : made.packets) EXPECT_EQ(made.octets.at(packet.position), 0x61);
    EXPECT_EQ(readCapture(made.octets).size(), 3U);
}

TEST(GooseStreamText, TellsVlansApartAndNoWaysRoundARing) {
    GooseMessage const message;
    std::string const plain = streamText(Ethernet(), message);
    EXPECT_EQ(plain, streamText(Ethernet().withVlan(0), message));
    EXPECT_NE(plain, streamText(Ethernet().withVlan(1), message));
    EXPECT_EQ(plain, streamText(Ethernet().withHsr('A'), message));
    EXPECT_EQ(plain, streamText(Ethernet().withPrp('B', 1), message));
}

TEST(GooseStreamText, TellsFourOctetsOfConfRevAndWhetherThereIsSimulation) {
    GooseMessage message;
    std::string const plain = streamText({}, message);
    message.simulation = true;
    EXPECT_EQ(streamText({}, message), plain);
    message.simulation.reset();
    EXPECT_NE(streamText({}, message), plain);
    message.confRev = {0x1234, 5};
    EXPECT_TRUE(streamText({}, message).ends_with("confRev 18")) << "0x12";
}

TEST(SvStreamText, TellsTheLastNameAndTheWayRoundARing) {
    SvMessage message;
    message.asdus.resize(2);
    message.asdus[0].svID = "first";
    message.asdus[1].svID = "last";
    message.asdus[1].confRev = 7;
    std::string const plain = streamText(svEthernet(), message);
    EXPECT_TRUE(plain.ends_with("svID last confRev 7")) << plain;
    EXPECT_NE(plain, streamText(svEthernet().withHsr('A'), message));
    EXPECT_NE(streamText(svEthernet().withHsr('B'), message),
              streamText(svEthernet().withHsr('A'), message));
    EXPECT_EQ(plain, streamText(svEthernet().withPrp('A'), message));
    message.asdus[1].svID.reset();
    EXPECT_TRUE(streamText(svEthernet(), message).ends_with("svID first confRev 7"));
}

}  // namespace
}  // namespace TalTest::CaptureMakerTest
