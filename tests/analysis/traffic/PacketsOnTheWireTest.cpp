// What an index keeps of each packet, and what it makes of trailers, cuts and damage.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Ber.hpp"
#include "support/Captures.hpp"

namespace TalIec61850Analysis::PacketsOnTheWireTest {
namespace {

using namespace TalTest;

PacketColumns const& onlyColumns(TrafficIndex const& index) {
    EXPECT_EQ(index.streams().size(), 1U);
    return index.streams().front().parts.front().packets;
}

CaptureSummary const& summaryOf(TrafficIndex const& index) { return index.files()[0].summary; }

TEST(TrafficPackets, HaveTimePlaceAndCounters) {
    TrafficCapture capture;
    std::uint64_t const offset = capture.nextFrameOffset();
    GooseMessage message;
    message.stNum = {0xFFFFFFFF, 5};
    message.sqNum = 7'963'629;
    capture.addAt(5'000'000'001, gooseFrame(Ethernet().withVlan(5), message));
    TrafficIndex const index = capture.index();
    PacketColumns const& packets = onlyColumns(index);
    ASSERT_EQ(packets.size(), 1U);
    EXPECT_EQ(packets.times()[0], trafficTime(5'000'000'001));
    EXPECT_EQ(packets.frameOffsets()[0], offset);
    EXPECT_EQ(packets.pduOffsets()[0], 26);
    EXPECT_EQ(packets.stNums()[0], 0xFFFFFFFF);
    EXPECT_EQ(packets.sqNums()[0], 7'963'629U);
    EXPECT_FALSE(packets.flags()[0].isNegative());
    EXPECT_EQ(packets.flags()[0].redundancy(), Redundancy::none);
    EXPECT_EQ(packets.flags()[0].lane(), 0);
    EXPECT_TRUE(packets.smpCnts().empty());
    EXPECT_EQ(summaryOf(index).first, packets.time(0));
    EXPECT_EQ(summaryOf(index).fileSize, capture.bytes().size());
}

TEST(TrafficPackets, HaveTheLaneAndNumberOfTheirOwnHsrTag) {
    TrafficCapture capture;
    for (std::uint16_t i = 0; i < 600; ++i)
        capture.add(Ethernet().withHsr(i % 3 == 0 ? 'A' : 'B', static_cast<std::uint16_t>(i * 100)),
                    GooseMessage());
    TrafficIndex const index = capture.index();
    PacketColumns const& packets = onlyColumns(index);
    ASSERT_EQ(packets.size(), 600U);
    for (std::size_t i = 0; i < packets.size(); ++i) {
        EXPECT_EQ(packets.flags()[i].redundancy(), Redundancy::hsr);
        EXPECT_EQ(packets.flags()[i].lane(), i % 3 == 0 ? 'A' : 'B');
        EXPECT_EQ(packets.redundancySequences()[i], static_cast<std::uint16_t>(i * 100));
        EXPECT_FALSE(packets.flags()[i].isHsrMisfit());
    }
}

TEST(TrafficPackets, SayWhereTheSizeInAnHsrTagDoesNotFit) {
    Bytes frame = gooseFrame(Ethernet().withHsr('A'), GooseMessage());
    TrafficCapture capture;
    capture.add(frame);
    frame[15] = static_cast<std::uint8_t>(frame[15] - 1);
    capture.add(frame);
    frame[15] = static_cast<std::uint8_t>(frame[15] + 2);
    capture.add(frame);
    TrafficIndex const index = capture.index();
    PacketColumns const& packets = onlyColumns(index);
    EXPECT_FALSE(packets.flags()[0].isHsrMisfit());
    EXPECT_TRUE(packets.flags()[1].isHsrMisfit());
    EXPECT_TRUE(packets.flags()[2].isHsrMisfit());
}

TEST(TrafficPackets, ComeFromWholeRecordsAlone) {
    TrafficCapture capture;
    for (int i = 0; i < 3; ++i) capture.add(svEthernet(), SvMessage());
    TrafficIndex const whole = capture.index();
    std::size_t const record = 16 + svFrame(svEthernet(), SvMessage()).size();
    for (std::size_t cut = 1; cut < record; ++cut) {
        TempFile const file(prefix(capture.bytes(), capture.bytes().size() - cut));
        TrafficIndex const index = indexCapture(file.path());
        EXPECT_EQ(streamNames(index), streamNames(whole));
        ASSERT_EQ(index.streams()[0].packets, 2U);
        ASSERT_TRUE(summaryOf(index).damage);
        EXPECT_EQ(summaryOf(index).damage->fileOffset, 24 + 2 * record);
        EXPECT_EQ(summaryOf(index).svFrames, 2U);
        EXPECT_TRUE(summaryOf(index).unread.empty());
    }
}

/// A message whose PDU these octets follow.
GooseMessage withTail(Bytes tail) {
    GooseMessage message;
    message.trailing = std::move(tail);
    return message;
}

/// How many of three such frames have a trailer of unknown meaning: all, or none. The second and
/// the third are indexed by the pattern of the first.
bool hasUnknownTrailer(Bytes const& frame) {
    TrafficCapture capture;
    capture.add(frame).add(frame).add(frame);
    std::uint64_t const counted = summaryOf(capture.index()).unknownTrailers;
    EXPECT_TRUE(counted == 0 || counted == 3) << counted;
    return counted != 0;
}

TEST(TrafficFrames, WithNeitherPaddingNorAPrpTrailerAfterThePduAreCounted) {
    Ethernet const plain;
    Ethernet const ring = plain.withHsr('A', 7);
    Ethernet const lan = plain.withPrp('B', 7);
    for (Ethernet const& ethernet : {plain, ring, lan, lan.withPadding(), plain.withVlan(3)}) {
        EXPECT_FALSE(hasUnknownTrailer(gooseFrame(ethernet, GooseMessage())));
        EXPECT_FALSE(hasUnknownTrailer(gooseFrame(ethernet, withTail(Bytes(9)))));
        EXPECT_TRUE(hasUnknownTrailer(gooseFrame(ethernet, withTail({0, 0, 1}))));
        EXPECT_TRUE(hasUnknownTrailer(gooseFrame(ethernet, withTail(Bytes(20, 0xEE)))));
    }
    Bytes paddedAfter = gooseFrame(lan, GooseMessage());
    paddedAfter.resize(paddedAfter.size() + 5);
    EXPECT_FALSE(hasUnknownTrailer(paddedAfter));
    Bytes misfit = gooseFrame(lan, GooseMessage());
    misfit[misfit.size() - 3] ^= 1;
    EXPECT_TRUE(hasUnknownTrailer(misfit));
}

TEST(TrafficFrames, OfNoStreamHaveTrailersWhereTheyHaveAPdu) {
    GooseMessage message = withTail({1});
    message.gocbRef.reset();
    EXPECT_TRUE(hasUnknownTrailer(gooseFrame(Ethernet(), message)));
    Bytes noPdu = gooseFrame(Ethernet(), withTail({1}));
    noPdu[22] = 0x62;
    EXPECT_FALSE(hasUnknownTrailer(noPdu));
}

TEST(TrafficFrames, WhoseEndWasNotCapturedHaveNoTrailers) {
    Bytes const frame = gooseFrame(Ethernet(), withTail(Bytes(9, 0xEE)));
    TrafficCapture capture;
    capture.addSnapped(frame.size() - 1, frame).addSnapped(frame.size(), frame);
    EXPECT_EQ(summaryOf(capture.index()).unknownTrailers, 1U);
}

TEST(TrafficPackets, OfSnappedFramesAreThereWhenTheirIdentityIs) {
    GooseMessage message;
    message.trailing = Bytes(8, 0xEE);
    Bytes const frame = gooseFrame(Ethernet().withVlan(7).withHsr('A', 9), message);
    auto const placeAfter = [&](Bytes const& element) {
        return *find(frame, element) + element.size();
    };
    std::size_t const nameEnd = placeAfter(ber(0x80, text(*message.gocbRef)));
    std::size_t const stNumEnd = placeAfter({0x85, 0x01, 0x01});
    std::size_t const sqNumEnd = placeAfter({0x86, 0x01, 0x00});
    std::size_t const pduEnd = frame.size() - 8;
    std::optional<StreamKey> key;
    for (std::size_t size = frame.size(); size > 14; --size) {
        SCOPED_TRACE(size);
        TrafficCapture capture;
        capture.addSnapped(size, frame);
        TrafficIndex const index = capture.index();
        CaptureSummary const& summary = summaryOf(index);
        EXPECT_EQ(summary.snappedFrames, size < frame.size() ? 1U : 0U);
        if (size >= nameEnd) {
            PacketColumns const& packets = onlyColumns(index);
            if (!key) key = index.streams()[0].key;
            EXPECT_EQ(index.streams()[0].key, *key);
            EXPECT_EQ(packets.flags()[0].isCut(), size < pduEnd);
            EXPECT_FALSE(packets.flags()[0].isDamaged());
            EXPECT_FALSE(packets.flags()[0].isHsrMisfit());
            EXPECT_EQ(packets.firstCounter(0).has_value(), size >= stNumEnd);
            EXPECT_EQ(packets.secondCounter(0).has_value(), size >= sqNumEnd);
            EXPECT_TRUE(summary.unread.empty());
        } else {
            EXPECT_TRUE(index.streams().empty());
            std::size_t const known = size >= 24 ? 1 : 0;
            ASSERT_EQ(summary.unread.size(), known);
            if (known != 0) {
                EXPECT_EQ(summary.unread[0].reason, UnreadReason::cut);
            }
        }
    }
}

TEST(TrafficPackets, OfSnappedSvFramesAreThoseOfItsWholeNames) {
    SvMessage message;
    message.asdus = {Asdu(), Asdu()};
    message.asdus[1].svID = "MU02";
    Bytes const frame = svFrame(svEthernet(), message);
    std::size_t const firstEnd = *find(frame, text("MU01")) + 4;
    std::size_t const secondEnd = *find(frame, text("MU02")) + 4;
    for (std::size_t size = 14; size < frame.size(); ++size) {
        SCOPED_TRACE(size);
        TrafficCapture capture;
        capture.addSnapped(size, frame);
        TrafficIndex const index = capture.index();
        std::size_t const streams = size >= secondEnd ? 2 : size >= firstEnd ? 1 : 0;
        EXPECT_EQ(index.streams().size(), streams);
        EXPECT_EQ(summaryOf(index).unread.size(), streams == 0 ? 1U : 0U);
        if (streams != 0) {
            EXPECT_TRUE(index.streams()[0].parts[0].packets.flags()[0].isCut());
        }
    }
}

UnreadReason onlyReason(Bytes const& frame) {
    TrafficCapture capture;
    std::uint64_t const offset = capture.nextFrameOffset();
    capture.add(frame).add(frame);
    TrafficIndex const index = capture.index();
    EXPECT_TRUE(index.streams().empty());
    auto const& unread = summaryOf(index).unread;
    EXPECT_EQ(unread.size(), 2U);
    EXPECT_EQ(unread.at(0).frameOffset, offset);
    EXPECT_EQ(unread.at(0).reason, unread.at(1).reason);
    return unread.at(0).reason;
}

TEST(TrafficFrames, ThatAreNotReadAreKeptWithTheReason) {
    GooseMessage message;
    Bytes const goose = gooseFrame(Ethernet(), message);
    EXPECT_EQ(onlyReason(prefix(goose, 21)), UnreadReason::headerCut);
    EXPECT_EQ(onlyReason(prefix(goose, 22)), UnreadReason::noPdu);
    EXPECT_EQ(onlyReason(prefix(goose, goose.size() - 1)), UnreadReason::pduPastFrame);
    Bytes other = goose;
    other[22] = 0x62;
    EXPECT_EQ(onlyReason(other), UnreadReason::noPdu);
    message.gocbRef.reset();
    EXPECT_EQ(onlyReason(gooseFrame(Ethernet(), message)), UnreadReason::noName);
    SvMessage sv;
    Bytes bare = svFrame(svEthernet(), sv);
    // A sequence of ASDU where a savPdu should be.
    auto const savPdu = bare.begin() + static_cast<std::ptrdiff_t>(readFrameHeader(bare).size);
    bare.erase(savPdu, std::find(savPdu, bare.end(), std::uint8_t{0xA2}));
    EXPECT_EQ(onlyReason(bare), UnreadReason::noPdu);
    sv.asdus.clear();
    EXPECT_EQ(onlyReason(svFrame(svEthernet(), sv)), UnreadReason::noAsdu);
    sv.asdus = {Asdu()};
    sv.asdus[0].svID.reset();
    EXPECT_EQ(onlyReason(svFrame(svEthernet(), sv)), UnreadReason::noName);
}

TEST(TrafficFrames, WithAnAsduWithoutANameAreOfTheStreamsOfTheOthers) {
    SvMessage sv;
    sv.asdus = {Asdu(), Asdu(), Asdu()};
    sv.asdus[1].svID.reset();
    TrafficCapture capture;
    capture.add(svEthernet(), sv);
    TrafficIndex const index = capture.index();
    PacketColumns const& packets = onlyColumns(index);
    ASSERT_EQ(packets.size(), 2U);
    EXPECT_EQ(packets.asdus()[1], 2);
    ASSERT_EQ(summaryOf(index).unread.size(), 1U);
    EXPECT_EQ(summaryOf(index).unread[0].reason, UnreadReason::noName);
}

TEST(TrafficFrames, OfOtherProtocolsAreCounted) {
    Bytes const addresses(12, 0x02);
    auto const of = [&](Bytes const& rest) { return concat({addresses, rest, Bytes(40)}); };
    TrafficCapture capture;
    capture.add(of({0x88, 0xF7})).add(of({0x88, 0xF7})).add(of({0x08, 0x06})).add(of({0x00, 0x20}));
    capture.add(of({0x81, 0x00, 0x00, 0x05, 0x88, 0xF7})).add(Bytes(9));
    auto const udp = [&](Bytes const& ports, Bytes const& session) {
        Bytes header = {0x45, 0, 0, 0, 0, 0, 0, 0, 64, 17, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8};
        return concat({addresses, {0x08, 0x00}, header, ports, Bytes(4), session, Bytes(20)});
    };
    capture.add(udp({0x00, 0x66, 0x10, 0x00}, {0xA1}))
        .add(udp({0x10, 0x00, 0x00, 0x66}, {0x01, 0x40, 0xA1}))
        .add(udp({0x10, 0x00, 0x00, 0x66}, {0x01, 0x40, 0xA2}))
        .add(udp({0x10, 0x00, 0x00, 0x67}, {0xA2}))
        .add(udp({0x10, 0x00, 0x00, 0x66}, {0xA3}));
    Bytes ipv6 = Bytes(40);
    ipv6[6] = 17;
    capture.add(concat({addresses, {0x86, 0xDD}, ipv6, {0, 0x66, 0, 0x66, 0, 0, 0, 0}, {0xA2}}));
    TrafficIndex const index = capture.index();
    std::map<std::uint16_t, std::uint64_t> const expected = {
        {0, 2}, {0x0800, 5}, {0x0806, 1}, {0x86DD, 1}, {0x88F7, 3}};
    EXPECT_EQ(summaryOf(index).otherFrames, expected);
    EXPECT_EQ(summaryOf(index).routableGooseFrames, 2U);
    EXPECT_EQ(summaryOf(index).routableSvFrames, 2U);
    EXPECT_EQ(summaryOf(index).records, 12U);
    EXPECT_EQ(summaryOf(index).gooseFrames + summaryOf(index).svFrames, 0U);
}

/// An IPv4 packet in a frame.
/// @param headerSize  with options, in octets
Bytes ipv4Frame(std::uint8_t protocol, Bytes const& payload, std::size_t headerSize = 20,
                std::uint16_t fragmentOffset = 0) {
    Bytes header(headerSize);
    header[0] = static_cast<std::uint8_t>(0x40 + headerSize / 4);
    header[6] = static_cast<std::uint8_t>(fragmentOffset >> 8U);
    header[7] = static_cast<std::uint8_t>(fragmentOffset & 0xFFU);
    header[9] = protocol;
    return concat({Bytes(12, 0x02), {0x08, 0x00}, header, payload});
}

Bytes ipv6Frame(std::uint8_t protocol, Bytes const& payload) {
    Bytes header(40);
    header[0] = 0x60;
    header[6] = protocol;
    return concat({Bytes(12, 0x02), {0x86, 0xDD}, header, payload});
}

constexpr std::uint8_t kTcpProtocol = 6;
constexpr std::uint8_t kUdpProtocol = 17;

/// A segment without octets, or a datagram with some.
Bytes between(std::uint16_t source, std::uint16_t destination, Bytes const& rest = Bytes(16)) {
    return concat({bigEndian(source, 2), bigEndian(destination, 2), rest});
}

TEST(TrafficFrames, OfMmsAreThoseOfItsTcpPort) {
    TrafficCapture capture;
    capture.add(ipv4Frame(kTcpProtocol, between(102, 50'000)))
        .add(ipv4Frame(kTcpProtocol, between(50'000, 102)))
        .add(ipv4Frame(kTcpProtocol, between(50'000, 102), 60))
        .add(ipv6Frame(kTcpProtocol, between(50'000, 102)));
    Bytes tagged = ipv4Frame(kTcpProtocol, between(102, 102));
    tagged.insert(tagged.begin() + 12, {0x81, 0x00, 0x00, 0x05});
    capture.add(tagged);
    // Not: other ports, other protocols, a later fragment, options in place of ports, a cut packet.
    capture.add(ipv4Frame(kTcpProtocol, between(50'000, 103)))
        .add(ipv4Frame(kUdpProtocol, between(50'000, 102)))
        .add(ipv4Frame(1, between(102, 102)))
        .add(ipv4Frame(kTcpProtocol, between(102, 102), 20, 1))
        .add(ipv4Frame(kTcpProtocol, {}, 60))
        .add(ipv4Frame(kTcpProtocol, {0, 102, 0}))
        .add(ipv6Frame(kTcpProtocol, {0, 102, 0}));
    TrafficIndex const index = capture.index();
    EXPECT_EQ(summaryOf(index).mmsFrames, 5U);
    EXPECT_EQ(summaryOf(index).recognisedIpv6Frames, 1U);
    EXPECT_EQ(summaryOf(index).routableGooseFrames + summaryOf(index).routableSvFrames, 0U);
    std::map<std::uint16_t, std::uint64_t> const expected = {{0x0800, 10}, {0x86DD, 2}};
    EXPECT_EQ(summaryOf(index).otherFrames, expected);
}

TEST(TrafficFrames, ThatAreRecognisedOverIpv6AreCountedOfAllKinds) {
    TrafficCapture capture;
    Bytes const goose = {0, 0, 0, 0, 0xA1};
    Bytes const sv = {0, 0, 0, 0, 0x01, 0x40, 0xA2};
    capture.add(ipv6Frame(kUdpProtocol, between(102, 102, goose)))
        .add(ipv6Frame(kUdpProtocol, between(102, 102, sv)))
        .add(ipv6Frame(kUdpProtocol, between(103, 103, sv)))
        .add(ipv4Frame(kUdpProtocol, between(102, 102, sv)))
        .add(ipv6Frame(kTcpProtocol, between(102, 102)));
    TrafficIndex const index = capture.index();
    EXPECT_EQ(summaryOf(index).routableGooseFrames, 1U);
    EXPECT_EQ(summaryOf(index).routableSvFrames, 2U);
    EXPECT_EQ(summaryOf(index).mmsFrames, 1U);
    EXPECT_EQ(summaryOf(index).recognisedIpv6Frames, 3U);
}

TEST(TrafficFrames, OfMmsAreAsManyInARecordedCaptureAsTsharkTells) {
    for (auto const& path : recorded({"goose-mms-mixed-station-bus.pcap"})) {
        TrafficIndex const index = indexCapture(path);
        EXPECT_EQ(summaryOf(index).mmsFrames, 86U);
    }
}

using Counter = std::optional<Readable<std::uint64_t>>;

Counter owned(std::optional<ReadableView<std::uint64_t>> const& counter) {
    return counter ? Counter(toOwned(*counter)) : std::nullopt;
}

TEST(TrafficCounters, OfGooseAreThereAtTheirFullWidth) {
    struct Case {
        Bytes octets;
        Counter value;
        CounterState state;
        bool isNegative;
    };
    std::vector<Case> const cases = {
        {{0x00}, std::uint64_t{0}, CounterState::held, false},
        {{0x7F, 0xFF, 0xFF, 0xFF}, std::uint64_t{0x7FFFFFFF}, CounterState::held, false},
        {{0xFF, 0xFF, 0xFF, 0xFF}, std::uint64_t{0xFFFFFFFF}, CounterState::held, true},
        {{0x80}, std::uint64_t{0x80}, CounterState::held, true},
        {{0x00, 0xFF, 0xFF, 0xFF, 0xFF}, std::uint64_t{0xFFFFFFFF}, CounterState::held, false},
        {Bytes(12, 0x00), std::uint64_t{0}, CounterState::held, false},
        {{0x01, 0x00, 0x00, 0x00, 0x00}, std::uint64_t{1} << 32U, CounterState::wide, false},
        {Bytes(8, 0xFF), ~std::uint64_t{0}, CounterState::wide, true},
        {Bytes(9, 0x7F), OctetString(9, 0x7F), CounterState::wide, false},
        {{}, OctetString(), CounterState::wide, false},
    };
    TrafficCapture capture;
    // Each twice: as it is walked, and as it is remembered.
    for (Case const& each : cases) {
        GooseMessage message;
        message.stNum.reset();
        message.extraFirst = ber(0x85, each.octets);
        capture.add(Ethernet(), message).add(Ethernet(), message);
        GooseMessage second;
        second.sqNum.reset();
        second.extraFirst = ber(0x86, each.octets);
        capture.add(Ethernet(), second).add(Ethernet(), second);
    }
    GooseMessage without;
    without.stNum.reset();
    without.sqNum.reset();
    capture.add(Ethernet(), without).add(Ethernet(), without);
    TrafficIndex const index = capture.index();
    PacketColumns const& packets = onlyColumns(index);
    ASSERT_EQ(packets.size(), 4 * cases.size() + 2);
    for (std::size_t i = 0; i < 4 * cases.size(); ++i) {
        SCOPED_TRACE(i);
        Case const& each = cases[i / 4];
        bool const isFirst = i % 4 < 2;
        PacketFlags const flags = packets.flags()[i];
        EXPECT_EQ(owned(isFirst ? packets.firstCounter(i) : packets.secondCounter(i)), each.value);
        EXPECT_EQ(isFirst ? flags.firstCounter() : flags.secondCounter(), each.state);
        EXPECT_EQ(flags.isNegative(), each.isNegative);
        if (each.state == CounterState::held) {
            EXPECT_EQ((isFirst ? packets.stNums() : packets.sqNums())[i],
                      std::get<std::uint64_t>(*each.value));
        }
    }
    for (std::size_t i = 4 * cases.size(); i < packets.size(); ++i) {
        EXPECT_EQ(packets.firstCounter(i), std::nullopt);
        EXPECT_EQ(packets.secondCounter(i), std::nullopt);
        EXPECT_EQ(packets.flags()[i].firstCounter(), CounterState::absent);
    }
}

TEST(TrafficCounters, OfSvHaveNoSign) {
    TrafficCapture capture;
    auto const add = [&](auto const& change) {
        SvMessage message;
        change(message.asdus[0]);
        capture.add(svEthernet(), message).add(svEthernet(), message);
    };
    add([](Asdu& asdu) { asdu.smpCnt = 0xFFFF, asdu.smpSynch = 254; });
    add([](Asdu& asdu) { asdu.smpCnt = {70'000, 3}, asdu.smpSynch = {200, 2}; });
    add([](Asdu& asdu) { asdu.smpCnt = {~std::uint64_t{0}, 8}, asdu.smpSynch = {256, 2}; });
    add([](Asdu& asdu) { asdu.smpCnt.reset(), asdu.smpSynch.reset(); });
    TrafficIndex const index = capture.index();
    PacketColumns const& packets = onlyColumns(index);
    std::vector<Counter> const counts = {std::uint64_t{0xFFFF}, std::uint64_t{70'000},
                                         ~std::uint64_t{0}, std::nullopt};
    std::vector<Counter> const synchs = {std::uint64_t{254}, std::uint64_t{200}, std::uint64_t{256},
                                         std::nullopt};
    ASSERT_EQ(packets.size(), 8U);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(owned(packets.firstCounter(i)), counts[i / 2]) << i;
        EXPECT_EQ(owned(packets.secondCounter(i)), synchs[i / 2]) << i;
        EXPECT_FALSE(packets.flags()[i].isNegative());
    }
    EXPECT_EQ(packets.smpSynchs()[2], 200);
    EXPECT_EQ(packets.flags()[4].secondCounter(), CounterState::wide);
}

TEST(TrafficPackets, SayWhereAnElementIsDamaged) {
    GooseMessage message;
    message.extraLast = {0x8C, 0x05, 0x00};
    TrafficCapture capture;
    capture.add(Ethernet(), message).add(Ethernet(), message).add(Ethernet(), GooseMessage());
    TrafficIndex const index = capture.index();
    PacketColumns const& packets = onlyColumns(index);
    EXPECT_TRUE(packets.flags()[0].isDamaged());
    EXPECT_TRUE(packets.flags()[1].isDamaged());
    EXPECT_FALSE(packets.flags()[2].isDamaged());
}

}  // namespace
}  // namespace TalIec61850Analysis::PacketsOnTheWireTest
