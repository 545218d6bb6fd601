#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/GoosePacket.hpp>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "support/Goose.hpp"

namespace TalIec61850Analysis::GoosePacketTest {
namespace {

using namespace TalTest;

Integer number(std::int64_t value) { return value; }

TEST(GoosePackets, HaveEveryField) {
    GooseMessage message;
    message.timeAllowedtoLive = 40'000;
    message.t = utcTime(1, 2, 3);
    message.stNum = 300;
    message.sqNum = 70'000;
    message.simulation = true;
    message.confRev = 4'000'000'000U;
    message.ndsCom = true;
    message.setData({dataBoolean(true), dataInteger(-3)});
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(packet.header.appId, message.appId);
    EXPECT_EQ(packet.gocbRef, message.gocbRef);
    EXPECT_EQ(packet.timeAllowedtoLive, number(40'000));
    EXPECT_EQ(packet.datSet, message.datSet);
    EXPECT_EQ(packet.goID, message.goID);
    EXPECT_EQ(packet.t, Readable<UtcTime>(UtcTime{.seconds = 1, .fraction = 2, .quality = 3}));
    EXPECT_EQ(packet.stNum, number(300));
    EXPECT_EQ(packet.sqNum, number(70'000));
    EXPECT_EQ(packet.simulation, Readable<bool>(true));
    EXPECT_EQ(packet.confRev, number(4'000'000'000));
    EXPECT_EQ(packet.ndsCom, Readable<bool>(true));
    EXPECT_EQ(packet.numDatSetEntries, number(2));
    ASSERT_TRUE(packet.allData);
    EXPECT_EQ(packet.allData->size(), 2U);
    EXPECT_TRUE(packet.others.empty() && packet.leading.empty() && packet.trailing.empty());
    EXPECT_TRUE(packet.faults.empty());
}

TEST(GoosePackets, LackWhatIsLeftOut) {
    GooseMessage message;
    for (auto* const name : {&message.gocbRef, &message.datSet, &message.goID}) name->reset();
    for (auto* const count : {&message.timeAllowedtoLive, &message.stNum, &message.sqNum,
                              &message.confRev, &message.numDatSetEntries})
        count->reset();
    message.simulation.reset();
    message.ndsCom.reset();
    message.t.reset();
    message.allData.reset();
    GoosePacket const packet = inspected(message);
    GoosePacket nothing;
    nothing.header = packet.header;
    EXPECT_EQ(packet, nothing);
    EXPECT_EQ(packet.header.source, readFrameHeader(placed(message).frame).source);
}

TEST(GoosePackets, CountInAnyWidth) {
    GooseMessage message;
    message.stNum = {0xFFFFFFFF, 5};
    message.sqNum = {7, 8};
    message.confRev = {~std::uint64_t{0}, 9};
    message.numDatSetEntries = {1, 12};
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(packet.stNum, number(0xFFFFFFFF));
    EXPECT_EQ(packet.sqNum, number(7));
    EXPECT_EQ(packet.confRev, Integer(~std::uint64_t{0}));
    EXPECT_EQ(packet.numDatSetEntries, number(1));
    EXPECT_TRUE(packet.faults.empty());
}

TEST(GoosePackets, ReadACountWithTheSignBitAsItIsMeantAndSayIt) {
    GooseMessage message;
    message.stNum = {0xFFFFFFFF, 4};
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(packet.stNum, number(0xFFFFFFFF));
    auto const position = find(placed(message).frame, {0x85, 0x04, 0xFF, 0xFF, 0xFF, 0xFF}).value();
    EXPECT_EQ(packet.faults, (Faults{{.offset = position, .kind = FaultKind::negative}}));
}

TEST(GoosePackets, ReadCountsWithTheSignBitInAnyWidth) {
    GooseMessage message;
    message.timeAllowedtoLive = {0x80, 1};
    message.sqNum = {~std::uint64_t{0}, 8};
    message.confRev = {0xFFFF, 2};
    message.numDatSetEntries.reset();
    message.extraBeforeData = ber(0x8A, Bytes(9, 0xFF));
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(packet.timeAllowedtoLive, number(0x80));
    EXPECT_EQ(packet.sqNum, Integer(~std::uint64_t{0}));
    EXPECT_EQ(packet.confRev, number(0xFFFF));
    EXPECT_EQ(packet.numDatSetEntries, Integer(OctetString(9, 0xFF)));
    EXPECT_EQ(kinds(packet.faults), std::vector(4, FaultKind::negative));
}

TEST(GoosePackets, KeepTheOctetsOfCountsBeyond64Bits) {
    GooseMessage message;
    message.stNum.reset();
    message.extraLast = concat({ber(0x85, Bytes(9, 0x7F)), ber(0x86, {})});
    message.sqNum.reset();
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(packet.stNum, Integer(OctetString(9, 0x7F)));
    EXPECT_EQ(packet.sqNum, Integer(OctetString{}));
    EXPECT_EQ(kinds(packet.faults), (std::vector{FaultKind::tooWide, FaultKind::wrongLength}));
}

TEST(GoosePackets, KeepTheOctetsOfFieldsOfTheWrongLength) {
    GooseMessage message;
    message.t = Bytes(6, 0x11);
    message.simulation.reset();
    message.extraLast = ber(0x87, {0x01, 0x00});
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(packet.t, Readable<UtcTime>(OctetString(6, 0x11)));
    EXPECT_EQ(packet.simulation, Readable<bool>(OctetString{0x01, 0x00}));
    EXPECT_EQ(kinds(packet.faults), (std::vector{FaultKind::wrongLength, FaultKind::wrongLength}));
}

TEST(GoosePackets, KeepWhatTheyDoNotKnowInItsOrder) {
    GooseMessage message;
    message.extraFirst = ber(0x04, {0x09});
    message.extraBeforeData = ber(0xAC, ber(0x80, {0x01}));
    message.extraLast = ber(0x8C, {0x0A, 0x0B});
    GoosePacket const packet = inspected(message);
    ASSERT_EQ(packet.others.size(), 3U);
    EXPECT_EQ(packet.others[0].tag, 0x04);
    EXPECT_EQ(packet.others[0].octets, OctetString{0x09});
    EXPECT_EQ(packet.others[1].tag, 0xAC);
    EXPECT_EQ(packet.others[1].octets, (OctetString{0x80, 0x01, 0x01}));
    EXPECT_EQ(packet.others[2].tag, 0x8C);
    EXPECT_EQ(packet.others[2].octets, (OctetString{0x0A, 0x0B}));
    for (RawElement const& other : packet.others) EXPECT_EQ(other.fault, std::nullopt);
    EXPECT_TRUE(packet.faults.empty());
    EXPECT_TRUE(packet.allData.has_value());
}

TEST(GoosePackets, KeepTheFirstOfRepeatedFields) {
    GooseMessage message;
    message.extraLast = concat({ber(0x83, "again"), ber(0xAB, dataBoolean(true))});
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(packet.goID, message.goID);
    EXPECT_EQ(packet.allData->size(), 1U);
    ASSERT_EQ(packet.others.size(), 2U);
    EXPECT_EQ(packet.others[0].octets, text("again"));
    EXPECT_EQ(packet.others[1].fault, FaultKind::repeated);
    EXPECT_EQ(kinds(packet.faults), (std::vector{FaultKind::repeated, FaultKind::repeated}));
}

TEST(GoosePackets, EndBeforeWhatTrailsThem) {
    GooseMessage message;
    message.trailing = {0x01, 0x02, 0x03};
    EXPECT_EQ(inspected(message).trailing, message.trailing);
    auto const withTrailer = inspected(message, Ethernet().withPrp('B', 5));
    EXPECT_EQ(withTrailer.trailing, message.trailing);
    EXPECT_EQ(withTrailer.header.prp->sequence, 5);
    EXPECT_TRUE(withTrailer.faults.empty());
    auto const withTrailerAlone = inspected(GooseMessage(), Ethernet().withPrp('A', 6));
    EXPECT_TRUE(withTrailerAlone.trailing.empty());
    EXPECT_EQ(withTrailerAlone.header.prp->sequence, 6);
}

TEST(GoosePackets, TakeNoTrailerFromThePdu) {
    GooseMessage message;
    message.setData({ber(0x86, {0x00, 0x01, 0xA0, 0x20, 0x88, 0xFB})});
    GoosePacket const packet = inspected(message);
    EXPECT_EQ(readFrameHeader(placed(message).frame).prp, std::nullopt);
    EXPECT_EQ(packet.header.prp, std::nullopt);
    EXPECT_EQ(packet.allData->front().value, DataValue::Content(std::int64_t{0x01A02088FB}));
    message.trailing = Bytes(5, 0x00);  // one octet less than a trailer takes
    message.trailing[3] = 0x88;
    message.trailing[4] = 0xFB;
    EXPECT_EQ(inspected(message).header.prp, std::nullopt);
    EXPECT_EQ(inspected(message).trailing, message.trailing);
}

TEST(GoosePackets, AreReadFromWhereTheyStand) {
    PlacedFrame goose = placed(GooseMessage());
    OctetString const inFront = {0x01, 0x01, 0x00};
    goose.frame.insert(goose.frame.begin() + static_cast<std::ptrdiff_t>(goose.offset),
                       inFront.begin(), inFront.end());
    GoosePacket const packet = decodeGoose(goose.frame, goose.offset + 3);
    EXPECT_EQ(packet.leading, inFront);
    EXPECT_EQ(packet.gocbRef, GooseMessage().gocbRef);
    EXPECT_TRUE(packet.faults.empty());
}

TEST(GoosePackets, SayWhereThereIsNoPdu) {
    PlacedFrame const goose = placed(GooseMessage());
    for (std::size_t const offset : {std::size_t{0}, goose.offset + 1, goose.frame.size(),
                                     goose.frame.size() + 100, ~std::size_t{0}}) {
        GoosePacket const packet = decodeGoose(goose.frame, offset);
        EXPECT_EQ(packet.faults, (Faults{{.offset = offset, .kind = FaultKind::notThere}}));
        EXPECT_EQ(packet.gocbRef, std::nullopt);
        EXPECT_EQ(packet.header.appId, GooseMessage().appId);
        EXPECT_EQ(packet.trailing.size(), goose.frame.size() - goose.offset);
    }
}

TEST(GoosePackets, WithoutAPositionAreLookedForBehindTheHeader) {
    for (PlacedFrame const& goose : {placed(GooseMessage()), richGoose()}) {
        EXPECT_EQ(decodeGoose(goose.frame), decodeGoose(goose.frame, goose.offset));
    }
    EXPECT_EQ(kinds(decodeGoose({}).faults),
              (std::vector{FaultKind::headerCut, FaultKind::notThere}));
}

TEST(GoosePackets, SayWhereTheFrameIsAnother) {
    auto const frame = ethernetFrame(Ethernet(), 0x0800, goosePdu(GooseMessage()));
    GoosePacket const packet = decodeGoose(frame, 14);
    EXPECT_EQ(packet.gocbRef, GooseMessage().gocbRef);
    EXPECT_EQ(packet.header.etherType, 0x0800);
    EXPECT_EQ(packet.faults, (Faults{{.offset = 12, .kind = FaultKind::wrongContent}}));
}

TEST(GoosePackets, HaveNoMoreThanSoManyOctets) {
    GooseMessage message;
    message.length = 0xFFFF;
    message.trailing = Bytes(kMaxFrameSize, 0x77);
    PlacedFrame const goose = placed(message);
    GoosePacket const packet = decodeGoose(goose.frame, goose.offset);
    EXPECT_EQ(packet.faults, (Faults{{.offset = kMaxFrameSize, .kind = FaultKind::tooLong}}));
    EXPECT_EQ(packet.trailing.size(), 2 * kMaxFrameSize - goose.frame.size());
    EXPECT_EQ(packet.gocbRef, message.gocbRef);
    EXPECT_TRUE(decodeGoose(prefix(goose.frame, kMaxFrameSize), goose.offset).faults.empty());
}

}  // namespace
}  // namespace TalIec61850Analysis::GoosePacketTest
