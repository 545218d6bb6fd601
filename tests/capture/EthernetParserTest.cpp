#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::EthernetParserTest {
namespace {

using namespace TalIec61850Parser;

constexpr char const* kFileName = "no such capture.pcap";

/// Hands frames to the parser as if they stood in a capture.
struct Dispatcher {
    Db db;
    Filter filter;
    /// Only its name and position count, so it need not exist.
    PcapFile file{kFileName};
    bool isNanosecond = true;
    PcapPacketHeader header = {.tsSec = 5, .tsUsec = 250'000};

    Dispatcher& parse(Bytes const& buffer, unsigned long offset = 0) {
        EthernetParser::parsePacket(buffer, offset, file, isNanosecond, header, filter, db);
        return *this;
    }
    [[nodiscard]] Goose const& goose() const { return only(db.gooseProto.streams); }
    [[nodiscard]] Sv const& sv() const { return only(db.svProto.streams); }
};

std::vector<Ethernet> linkLayers() {
    return {Ethernet(), Ethernet().withVlan(5), Ethernet().withHsr('B'),
            Ethernet().withVlan(5).withHsr('A')};
}

TEST(EthernetParserMacToString, WritesLowerCasePairsJoinedByColons) {
    std::array<std::uint8_t, 6> const mac = {0x01, 0x0C, 0xCD, 0x00, 0xFF, 0x9A};
    EXPECT_EQ(EthernetParser::_macToString(mac.data()), "01:0c:cd:00:ff:9a");
    std::array<std::uint8_t, 6> const zeros = {};
    EXPECT_EQ(EthernetParser::_macToString(zeros.data()), "00:00:00:00:00:00");
}

TEST(EthernetParserParsePacket, AddressesGoToTheStream) {
    Ethernet const link = Ethernet().to("01:0c:cd:01:ab:cd").from("00:1e:2f:30:41:5f");
    Dispatcher dispatcher;
    dispatcher.parse(gooseFrame(link, {})).parse(svFrame(link, {}));
    EXPECT_EQ(dispatcher.goose().dstMac, "01:0c:cd:01:ab:cd");
    EXPECT_EQ(dispatcher.goose().srcMac, "00:1e:2f:30:41:5f");
    EXPECT_EQ(dispatcher.sv().dstMac, "01:0c:cd:01:ab:cd");
    EXPECT_EQ(dispatcher.sv().srcMac, "00:1e:2f:30:41:5f");
    EXPECT_FALSE(dispatcher.goose().vlan.has_value());
    EXPECT_FALSE(dispatcher.goose().hsr.has_value());
    EXPECT_FALSE(dispatcher.goose().prp.has_value());
    EXPECT_EQ(only(dispatcher.goose().files).fileName, kFileName);
}

TEST(EthernetParserParsePacket, PositionCountsFromTheRecord) {
    SvMessage const message;
    for (Ethernet const& link : linkLayers()) {
        for (std::uint64_t const recordPosition : {0UL, 24UL, 0x1'0000'0000UL}) {
            for (std::size_t const offset : {0UL, 5UL, 16UL}) {
                Bytes const before = repeat(0xFF, offset);
                Dispatcher dispatcher;
                dispatcher.file.recordPosition = recordPosition;
                dispatcher.parse(concat({before, gooseFrame(link, {})}), offset);
                dispatcher.parse(concat({before, svFrame(link, message)}), offset);
                std::uint64_t const pdu = recordPosition + offset + payloadOffset(link) + 8;
                EXPECT_EQ(packagesOf(dispatcher.goose()).front().position, pdu);
                EXPECT_EQ(packagesOf(dispatcher.sv()).front().position,
                          pdu + sequenceOffset(message));
            }
        }
    }
}

TEST(EthernetParserParsePacket, OtherEtherTypesAreIgnored) {
    for (std::uint16_t const etherType : std::vector<std::uint16_t>{
             0x0000, 0x0800, 0x88B7, 0x88B9, 0x88BB, 0x88F7, 0x88FB, 0xB888, 0xFFFF}) {
        EXPECT_TRUE(isEmpty(Dispatcher().parse(ethernetFrame({}, etherType, gooseApdu({}))).db));
    }
}

TEST(EthernetParserParsePacket, DisabledProtocolIsIgnored) {
    Dispatcher dispatcher;
    dispatcher.filter.parseSv = false;
    dispatcher.parse(gooseFrame({}, {})).parse(svFrame(svEthernet(), {}));
    EXPECT_EQ(dispatcher.db.gooseProto.getGooseCount(), 1U);
    EXPECT_EQ(dispatcher.db.svProto.getSvCount(), 0U);
    dispatcher.filter = {.parseSv = true, .parseGoose = false, .svFilters = {}, .gooseFilters = {}};
    dispatcher.parse(gooseFrame({}, {})).parse(svFrame(svEthernet(), {}));
    EXPECT_EQ(dispatcher.goose().packetCount, 1U);
    EXPECT_EQ(dispatcher.sv().packetCount, 1U);
}

TEST(EthernetParserVlan, IdentifierIsTheTwelveLowBits) {
    for (std::uint16_t const id :
         std::vector<std::uint16_t>{0x000, 0x001, 0x0FF, 0x100, 0xABC, 0xFFF}) {
        for (bool const dei : {false, true}) {
            Ethernet const link = Ethernet().withVlan(id, 7, dei);
            Dispatcher dispatcher;
            dispatcher.parse(gooseFrame(link, {})).parse(svFrame(link, {}));
            EXPECT_EQ(dispatcher.goose().vlan.value().vlanId, id);
            EXPECT_EQ(dispatcher.sv().vlan.value().vlanId, id);
            EXPECT_FALSE(dispatcher.goose().vlan->priority.has_value());
            EXPECT_FALSE(dispatcher.goose().vlan->dei.has_value());
        }
    }
}

TEST(EthernetParserVlan, ServiceTagIsNotRead) {
    Bytes const behind = concat({{0x00, 0x05}, bigEndian(etherTypeGoose, 2), gooseApdu({})});
    EXPECT_TRUE(isEmpty(Dispatcher().parse(ethernetFrame({}, 0x88A8, behind)).db));
    EXPECT_FALSE(isEmpty(Dispatcher().parse(ethernetFrame({}, etherTypeVlan, behind)).db));
}

TEST(EthernetParserVlan, SecondTagIsNotRead) {
    Bytes const behind = concat({{0x00, 0x05}, bigEndian(etherTypeGoose, 2), gooseApdu({})});
    EXPECT_TRUE(isEmpty(
        Dispatcher().parse(ethernetFrame(Ethernet().withVlan(5), etherTypeVlan, behind)).db));
}

TEST(EthernetParserHsr, LanIsBitFourOfTheFirstOctet) {
    for (bool const tagged : {false, true}) {
        Ethernet link = Ethernet().withHsr('A');
        if (tagged) link = link.withVlan(5);
        Bytes frame = gooseFrame(link, {});
        for (int octet = 0; octet < 256; ++octet) {
            frame[payloadOffset(link) - 6] = static_cast<std::uint8_t>(octet);
            Dispatcher dispatcher;
            dispatcher.parse(frame);
            EXPECT_EQ(dispatcher.goose().hsr.value().lanId, (octet & 0x10) != 0 ? 'B' : 'A')
                << octet;
        }
    }
}

TEST(EthernetParserHsr, TagsBehindItAreNotRead) {
    Bytes const hsr = {0x10, 0x00, 0x00, 0x01};
    Bytes const vlan = {0x00, 0x05};
    Bytes const goose = bigEndian(etherTypeGoose, 2);
    Bytes const vlanInHsr = concat({hsr, bigEndian(etherTypeVlan, 2), vlan, goose, gooseApdu({})});
    Bytes const hsrInHsr = concat({hsr, bigEndian(etherTypeHsr, 2), hsr, goose, gooseApdu({})});
    EXPECT_TRUE(isEmpty(Dispatcher().parse(ethernetFrame({}, etherTypeHsr, vlanInHsr)).db));
    EXPECT_TRUE(isEmpty(Dispatcher().parse(ethernetFrame({}, etherTypeHsr, hsrInHsr)).db));
}

TEST(EthernetParserHsr, OtherFieldsAreNotKept) {
    Dispatcher dispatcher;
    dispatcher.parse(gooseFrame(Ethernet().withHsr('B', 0xFFFF), {}));
    EXPECT_FALSE(dispatcher.goose().hsr->hsrSpare1.has_value());
    EXPECT_FALSE(dispatcher.goose().hsr->hsrSpare2.has_value());
    EXPECT_FALSE(dispatcher.goose().hsr->hsrSpare3.has_value());
}

TEST(EthernetParserPrp, LanIsBitFourOfTheFourthLastOctet) {
    Bytes frame = gooseFrame({}, {});
    append(frame, {0x12, 0x34, 0x00, 0x2A, 0x88, 0xFB});
    for (int octet = 0; octet < 256; ++octet) {
        frame[frame.size() - 4] = static_cast<std::uint8_t>(octet);
        Dispatcher dispatcher;
        dispatcher.parse(frame);
        EXPECT_EQ(dispatcher.goose().prp.value().lanId, (octet & 0x10) != 0 ? 'B' : 'A') << octet;
    }
}

TEST(EthernetParserPrp, TrailerOfTheLinkLayersIsSeen) {
    for (Ethernet const& link : linkLayers()) {
        for (char const lan : {'A', 'B'}) {
            Dispatcher dispatcher;
            dispatcher.parse(gooseFrame(link.withPrp(lan), {}))
                .parse(svFrame(link.withPrp(lan), {}));
            EXPECT_EQ(dispatcher.goose().prp.value().lanId, lan);
            EXPECT_EQ(dispatcher.sv().prp.value().lanId, lan);
        }
    }
}

TEST(EthernetParserPrp, IsToldByTheLastTwoOctetsAlone) {
    for (Bytes const& end :
         {Bytes{0x88, 0xFA}, Bytes{0x89, 0xFB}, Bytes{0xFB, 0x88}, Bytes{0x88, 0xFB, 0x00}}) {
        Dispatcher dispatcher;
        dispatcher.parse(concat({gooseFrame({}, {}), {0, 0, 0x10, 0}, end}));
        EXPECT_FALSE(dispatcher.goose().prp.has_value());
    }
    // A data set that happens to end in the suffix.
    GooseMessage message;
    message.setData({dataOctetString({0x10, 0x00, 0x88, 0xFB})});
    Dispatcher dispatcher;
    dispatcher.parse(gooseFrame({}, message));
    EXPECT_EQ(dispatcher.goose().prp.value().lanId, 'B');
}

TEST(EthernetParserPrp, TrailerIsReadAsElements) {
    // The trailer's first octets read as an empty goosePdu, which then is the last one.
    Ethernet const link = Ethernet().withPrp('A', 0x6100);
    Dispatcher dispatcher;
    Bytes const frame = gooseFrame(link, {});
    dispatcher.parse(frame);
    EXPECT_EQ(packagesOf(dispatcher.goose()).front().position, frame.size() - 6);
}

TEST(EthernetParserStore, PacketsOfOneStreamShareItsIndex) {
    Dispatcher dispatcher;
    for (std::uint64_t const position : {100U, 300U}) {
        dispatcher.file.recordPosition = position;
        dispatcher.parse(gooseFrame({}, {})).parse(svFrame(svEthernet(), {}));
    }
    EXPECT_EQ(dispatcher.goose().packetCount, 2U);
    EXPECT_EQ(dispatcher.sv().packetCount, 2U);
    ASSERT_EQ(packagesOf(dispatcher.goose()).size(), 2U);
    EXPECT_EQ(packagesOf(dispatcher.goose())[0].position, 100U + 22U);
    EXPECT_EQ(packagesOf(dispatcher.goose())[1].position, 300U + 22U);
}

TEST(EthernetParserStore, FilesOfOneStreamAreIndexedApart) {
    Dispatcher dispatcher;
    dispatcher.parse(gooseFrame({}, {}));
    dispatcher.file.fileName = "another.pcap";
    dispatcher.parse(gooseFrame({}, {}));
    EXPECT_EQ(dispatcher.goose().packetCount, 2U);
    EXPECT_EQ(dispatcher.goose().files.size(), 2U);
    EXPECT_EQ(dispatcher.goose().addFile("another.pcap")->packages.size(), 1U);
}

TEST(EthernetParserStore, LinkLayerTellsStreamsApartAsTheirProtocolSays) {
    struct Case {
        Ethernet first;
        Ethernet second;
        std::size_t gooseStreams;
        std::size_t svStreams;
    };
    Ethernet const plain;
    for (Case const& each : {
             Case{plain, plain, 1, 1},
             Case{plain, plain.from("00:30:a7:00:00:02"), 2, 2},
             Case{plain, plain.to("01:0c:cd:01:00:02"), 2, 2},
             Case{plain.withVlan(5), plain.withVlan(6), 2, 2},
             Case{plain.withVlan(5, 1), plain.withVlan(5, 7, true), 1, 1},
             // A tag of VLAN 0 is like none at all.
             Case{plain, plain.withVlan(0), 1, 1},
             Case{plain.withHsr('A'), plain.withHsr('B'), 1, 2},
             Case{plain, plain.withHsr('A'), 1, 2},
             Case{plain.withPrp('A'), plain.withPrp('B'), 1, 1},
             Case{plain, plain.withPrp('A'), 1, 1},
         }) {
        Dispatcher dispatcher;
        for (Ethernet const* const link : {&each.first, &each.second}) {
            dispatcher.parse(gooseFrame(*link, {})).parse(svFrame(*link, {}));
        }
        EXPECT_EQ(dispatcher.db.gooseProto.getGooseCount(), each.gooseStreams);
        EXPECT_EQ(dispatcher.db.svProto.getSvCount(), each.svStreams);
    }
}

TEST(EthernetParserStore, IdentityStaysThatOfTheFirstFrame) {
    Dispatcher dispatcher;
    dispatcher.parse(gooseFrame(Ethernet().withHsr('B'), {}));
    dispatcher.parse(gooseFrame(Ethernet().withHsr('A').withPrp('A'), {}));
    EXPECT_EQ(dispatcher.goose().packetCount, 2U);
    EXPECT_EQ(dispatcher.goose().hsr.value().lanId, 'B');
    EXPECT_FALSE(dispatcher.goose().prp.has_value());
}

TEST(EthernetParserStore, SvStatisticsAreMerged) {
    struct Step {
        std::uint16_t smpCnt;
        std::uint8_t noASDU;
        std::optional<std::uint16_t> smpRate;
        std::uint16_t maxSmpCnt;
        std::uint32_t maxNoASDU;
        std::uint16_t lastSmpRate;
    };
    Dispatcher dispatcher;
    std::uint32_t packets = 0;
    for (Step const& step : std::vector<Step>{{10, 8, 4800, 10, 8, 4800},
                                              {0xFFFF, 1, {}, 0xFFFF, 8, 0},
                                              {20, 255, 80, 0xFFFF, 255, 80},
                                              {0, 0, 4000, 0xFFFF, 255, 4000},
                                              {0x8000, 2, 0, 0xFFFF, 255, 0}}) {
        SvMessage message;
        message.asdus.front().smpCnt = step.smpCnt;
        if (step.smpRate) message.asdus.front().smpRate = *step.smpRate;
        message.noASDU = {step.noASDU, 1};
        dispatcher.parse(svFrame(svEthernet(), message));
        EXPECT_EQ(dispatcher.sv().packetCount, ++packets);
        EXPECT_EQ(dispatcher.sv().maxSmpCnt, step.maxSmpCnt);
        EXPECT_EQ(dispatcher.sv().maxNoASDU, step.maxNoASDU);
        EXPECT_EQ(dispatcher.sv().smpRate, step.lastSmpRate);
    }
}

TEST(EthernetParserTime, MicrosecondsBecomeNanosecondsInThirtyTwoBits) {
    struct Case {
        std::uint32_t fraction;
        std::uint32_t nanoseconds;
    };
    for (Case const& each : std::vector<Case>{{0, 0},
                                              {1, 1000},
                                              {250'000, 250'000'000},
                                              {999'999, 999'999'000},
                                              {1'000'000, 1'000'000'000},
                                              {4'294'967, 4'294'967'000},
                                              {4'294'968, 704},
                                              {0xFFFFFFFF, 4'294'966'296}}) {
        Dispatcher dispatcher;
        dispatcher.isNanosecond = false;
        dispatcher.header = {.tsSec = 0xFFFFFFFF, .tsUsec = each.fraction};
        dispatcher.parse(gooseFrame({}, {})).parse(svFrame(svEthernet(), {}));
        Timest const expected = {0xFFFFFFFF, each.nanoseconds};
        EXPECT_EQ(packagesOf(dispatcher.goose()).front().time, expected) << each.fraction;
        EXPECT_EQ(packagesOf(dispatcher.sv()).front().time, expected) << each.fraction;
    }
}

TEST(EthernetParserTime, NanosecondsAreTakenAsTheyAre) {
    for (std::uint32_t const fraction : {0U, 1U, 999'999'999U, 1'000'000'000U, 0xFFFFFFFFU}) {
        Dispatcher dispatcher;
        dispatcher.header = {.tsSec = 7, .tsUsec = fraction};
        dispatcher.parse(gooseFrame({}, {})).parse(svFrame(svEthernet(), {}));
        Timest const expected = {7, fraction};
        EXPECT_EQ(packagesOf(dispatcher.goose()).front().time, expected);
        EXPECT_EQ(packagesOf(dispatcher.sv()).front().time, expected);
    }
}

TEST(EthernetParserTime, FrameWithoutItsPduIsIndexedAtZero) {
    for (bool const isNanosecond : {false, true}) {
        Dispatcher dispatcher;
        dispatcher.isNanosecond = isNanosecond;
        dispatcher.file.recordPosition = 24;
        dispatcher.parse(ethernetFrame({}, etherTypeGoose, apdu({}, ber(0x04, "no PDU"))));
        dispatcher.parse(
            ethernetFrame({}, etherTypeSampledValues, apdu({}, ber(0x60, ber(0x80, {0x01})))));
        EXPECT_EQ(packagesOf(dispatcher.goose()).front(), Package{});
        EXPECT_EQ(packagesOf(dispatcher.sv()).front(), Package{});
        EXPECT_EQ(dispatcher.goose().packetCount, 1U);
    }
}

TEST(EthernetParserSize, PduOfOneOctetIsEnough) {
    for (Ethernet const& link : linkLayers()) {
        for (std::uint16_t const etherType : {etherTypeGoose, etherTypeSampledValues}) {
            Bytes const header = repeat(0, 8);
            EXPECT_TRUE(isEmpty(Dispatcher().parse(ethernetFrame(link, etherType, header)).db));
            EXPECT_FALSE(isEmpty(
                Dispatcher().parse(ethernetFrame(link, etherType, concat({header, {0}}))).db));
        }
    }
}

TEST(EthernetParserSize, FrameThatEndsInItsHeadersIsIgnored) {
    for (Ethernet const& link : linkLayers()) {
        Bytes const frame = gooseFrame(link, {});
        for (std::size_t offset : {0UL, 1UL, 4UL, 16UL, 40UL}) {
            for (std::size_t size = 0; size <= payloadOffset(link) + 8; ++size) {
                Bytes const buffer = concat({repeat(0, offset), prefix(frame, size)});
                EXPECT_TRUE(isEmpty(Dispatcher().parse(buffer, offset).db))
                    << size << " octets of the frame at " << offset;
            }
        }
    }
}

TEST(EthernetParserSize, SuffixThatEndsTheHeadersIsHarmless) {
    for (Ethernet const& link : linkLayers()) {
        Bytes const frame = gooseFrame(link, {});
        for (std::size_t size = 0; size <= payloadOffset(link) + 6; ++size) {
            Bytes const buffer = concat({prefix(frame, size), {0x88, 0xFB}});
            EXPECT_TRUE(isEmpty(Dispatcher().parse(buffer).db)) << size;
        }
    }
}

TEST(EthernetParserSize, FrameBehindTheBufferIsIgnored) {
    Bytes const frame = gooseFrame({}, {});
    constexpr unsigned long kMax = std::numeric_limits<unsigned long>::max();
    for (unsigned long const offset :
         {frame.size(), frame.size() - 1, frame.size() - 13, frame.size() - 14, frame.size() + 1,
          frame.size() * 2, kMax / 2, kMax - 14, kMax - 13, kMax - 1, kMax}) {
        EXPECT_TRUE(isEmpty(Dispatcher().parse(frame, offset).db)) << offset;
    }
}

}  // namespace
}  // namespace TalTest::EthernetParserTest
