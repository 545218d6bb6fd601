#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/SvPacket.hpp>

#include "analysis/packet/FaultWords.hpp"
#include "analysis/packet/PacketFrames.hpp"
#include "support/Apdu.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "support/Ethernet.hpp"
#include "support/SampledValues.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Analysis::SvPacketTest {
namespace {

using namespace TalIec61850Tools;
using namespace TalTest;
using Number = Readable<std::uint64_t>;

/// A message of one ASDU.
SvMessage messageOf(Asdu const& asdu) {
    SvMessage message;
    message.asdus = {asdu};
    return message;
}

AsduContent onlyAsdu(Asdu const& asdu) { return inspected(messageOf(asdu)).asdus.at(0); }

Number number(std::uint64_t value) { return value; }

TEST(SvPackets, HaveEveryField) {
    PlacedFrame const sv = richSv();
    SvPacket const packet = decodeSv(sv.frame, sv.offset);
    EXPECT_EQ(packet.noASDU, Integer(std::int64_t{2}));
    EXPECT_EQ(packet.security, (OctetString{0x30, 0x00}));
    EXPECT_EQ(packet.trailing, OctetString(4, 0xCD));
    EXPECT_TRUE(packet.faults.empty());
    ASSERT_EQ(packet.asdus.size(), 2U);
    AsduContent const& first = packet.asdus[0];
    EXPECT_EQ(first.offset, sv.offset + 3);
    EXPECT_EQ(first.svID, "MU01");
    EXPECT_EQ(first.datSet, "MU01LD0/LLN0$PhsMeas");
    EXPECT_EQ(first.smpCnt, number(3999));
    EXPECT_EQ(first.confRev, number(1));
    EXPECT_EQ(first.refrTm, Readable<UtcTime>(UtcTime{
                                .seconds = 1'700'000'000, .fraction = 0x800000, .quality = 0x2A}));
    EXPECT_EQ(first.smpSynch, number(5));
    EXPECT_EQ(first.smpRate, number(80));
    EXPECT_EQ(first.seqData,
              SequenceOfData(std::vector<ChannelSample>{{-1, {0x1FFF}}, {5, {0x2000}}}));
    EXPECT_EQ(first.smpMod, number(1));
    EXPECT_EQ(first.gmIdentity, (OctetString{1, 2, 3, 4, 5, 6, 7, 8}));
    ASSERT_EQ(first.others.size(), 1U);
    EXPECT_EQ(first.others[0].tag, 0x8F);
    EXPECT_EQ(first.others[0].octets, OctetString{0x11});
    AsduContent const& second = packet.asdus[1];
    EXPECT_EQ(second.svID, "MU02");
    EXPECT_EQ(second.smpCnt, number(0));
    EXPECT_EQ(second.seqData, first.seqData);
}

TEST(SvPackets, LackWhatIsLeftOut) {
    Asdu asdu;
    asdu.svID.reset();
    asdu.smpCnt.reset();
    asdu.confRev.reset();
    asdu.smpSynch.reset();
    asdu.seqData.reset();
    SvMessage message = messageOf(asdu);
    message.omitNoASDU = true;
    SvPacket const packet = inspected(message);
    EXPECT_EQ(packet.noASDU, std::nullopt);
    ASSERT_EQ(packet.asdus.size(), 1U);
    AsduContent nothing;
    nothing.offset = packet.asdus[0].offset;
    EXPECT_EQ(packet.asdus[0], nothing);
    EXPECT_TRUE(packet.faults.empty());
}

TEST(SvPackets, HaveAsManyAsdusAsThereAre) {
    SvMessage message;
    message.asdus.assign(200, Asdu());
    std::uint16_t count = 0;
    for (Asdu& asdu : message.asdus) asdu.smpCnt = count++;
    message.noASDU = 3;  // believed for nothing
    SvPacket const packet = inspected(message);
    EXPECT_EQ(packet.noASDU, Integer(std::int64_t{3}));
    ASSERT_EQ(packet.asdus.size(), 200U);
    for (std::size_t i = 0; i < packet.asdus.size(); ++i)
        EXPECT_EQ(packet.asdus[i].smpCnt, number(i));
}

TEST(SvPackets, KeepValuesWithTheirAsdu) {
    SvMessage message;
    message.asdus.assign(2, Asdu());
    message.asdus[0].seqData = samples({{1, 0}});
    message.asdus[1].seqData = samples({{2, 0}, {3, 1}});
    SvPacket const packet = inspected(message);
    EXPECT_EQ(packet.asdus.at(0).seqData, SequenceOfData(std::vector<ChannelSample>{{1, {0}}}));
    EXPECT_EQ(packet.asdus.at(1).seqData,
              SequenceOfData(std::vector<ChannelSample>{{2, {0}}, {3, {1}}}));
}

TEST(SvPackets, KeepDataOfAnotherMakeAsOctets) {
    Asdu asdu;
    for (std::size_t const size : {1U, 4U, 7U, 9U, 12U}) {
        asdu.seqData = Bytes(size, 0x5A);
        EXPECT_EQ(onlyAsdu(asdu).seqData, SequenceOfData(OctetString(size, 0x5A)));
        EXPECT_TRUE(inspected(messageOf(asdu)).faults.empty());
    }
    asdu.seqData = Bytes{};
    EXPECT_EQ(onlyAsdu(asdu).seqData, SequenceOfData(std::vector<ChannelSample>()));
}

TEST(SvPackets, ReadNumbersOfAnyWidthAndSayWhichIsWrong) {
    Asdu asdu;
    asdu.smpCnt = {0xFFFFFFFF, 4};
    asdu.confRev = {0xFF, 1};
    asdu.smpSynch = {1, 8};
    asdu.smpRate = {4000, 3};
    SvPacket const packet = inspected(messageOf(asdu));
    EXPECT_EQ(packet.asdus.at(0).smpCnt, number(0xFFFFFFFF));
    EXPECT_EQ(packet.asdus.at(0).confRev, number(0xFF));
    EXPECT_EQ(packet.asdus.at(0).smpSynch, number(1));
    EXPECT_EQ(packet.asdus.at(0).smpRate, number(4000));
    EXPECT_EQ(kinds(packet.faults), std::vector(4, FaultKind::wrongLength));
}

TEST(SvPackets, KeepTheOctetsOfFieldsThatMakeNoValue) {
    Asdu asdu;
    asdu.smpCnt.reset();
    asdu.refrTm = Bytes(4, 0x01);
    asdu.extraLast = concat({ber(0x82, Bytes(9, 0x01)), ber(0x89, {0x01})});
    SvPacket const packet = inspected(messageOf(asdu));
    EXPECT_EQ(packet.asdus.at(0).smpCnt, Number(OctetString(9, 0x01)));
    EXPECT_EQ(packet.asdus.at(0).refrTm, Readable<UtcTime>(OctetString(4, 0x01)));
    EXPECT_EQ(packet.asdus.at(0).gmIdentity, OctetString{0x01});
    EXPECT_EQ(kinds(packet.faults), std::vector(3, FaultKind::wrongLength));
}

TEST(SvPackets, KeepWhatTheyDoNotKnowAndWhatIsRepeated) {
    SvMessage message;
    message.extraFirst = ber(0x8E, {0x01});
    message.extraBeforeSequence = ber(0x80, {0x09});
    message.extraInSequence = ber(0x31, {});
    message.asdus[0].extraLast = ber(0x80, "again");
    SvPacket const packet = inspected(message);
    ASSERT_EQ(packet.others.size(), 3U);
    EXPECT_EQ(packet.others[0].tag, 0x8E);
    EXPECT_EQ(packet.others[1].fault, FaultKind::repeated);
    EXPECT_EQ(packet.others[1].octets, OctetString{0x09});
    EXPECT_EQ(packet.others[2].tag, 0x31);
    EXPECT_EQ(packet.noASDU, Integer(std::int64_t{1}));
    ASSERT_EQ(packet.asdus.size(), 1U);
    EXPECT_EQ(packet.asdus[0].svID, "MU01");
    ASSERT_EQ(packet.asdus[0].others.size(), 1U);
    EXPECT_EQ(packet.asdus[0].others[0].octets, text("again"));
    EXPECT_EQ(kinds(packet.faults), std::vector(2, FaultKind::repeated));
}

TEST(SvPackets, ReadTheSequenceThatTheIndexPointsTo) {
    PlacedFrame const sv = placed(SvMessage());
    Bytes frame = sv.frame;
    frame[sv.offset - 5] = 0x62;  // no savPdu any more
    SvPacket const packet = decodeSv(frame, sv.offset);
    EXPECT_EQ(packet.asdus.size(), 1U);
    EXPECT_EQ(packet.noASDU, std::nullopt);
    EXPECT_EQ(packet.leading.size(), 5U);
    EXPECT_EQ(words(packet.faults),
              std::vector<std::string>{std::to_string(sv.offset - 5) +
                                       " the element that should begin here does not"});
}

TEST(SvPackets, ReadASequenceToWhichNoElementsOfTheSavPduLead) {
    SvMessage message;
    message.asdus.clear();
    message.extraBeforeSequence = ber(0x8E, ber(0xA2, asduElement(Asdu())));
    Bytes const frame = placed(message).frame;
    std::size_t const offset = find(frame, ber(0xA2, asduElement(Asdu()))).value();
    SvPacket const packet = decodeSv(frame, offset);
    EXPECT_EQ(packet.asdus.size(), 1U);
    EXPECT_TRUE(packet.others.empty());
    EXPECT_EQ(packet.leading.size(), offset - packet.header.size);
    EXPECT_EQ(packet.faults, (Faults{{.offset = packet.header.size, .kind = FaultKind::notThere}}));
}

TEST(SvPackets, ReadTheSecondSequenceWhereTheIndexPointsToIt) {
    SvMessage message;
    message.extraBeforeSequence = ber(0xA2, asduElement(Asdu()));
    PlacedFrame const sv = placed(message);
    SvPacket const packet = decodeSv(sv.frame, sv.offset);
    EXPECT_EQ(packet.asdus.size(), 1U);
    EXPECT_GT(packet.asdus[0].offset, sv.offset);
    ASSERT_EQ(packet.others.size(), 1U);
    EXPECT_EQ(packet.others[0].octets, asduElement(Asdu()));
}

TEST(SvPackets, SayWhereThereIsNoSequence) {
    PlacedFrame const sv = placed(SvMessage());
    for (std::size_t const offset : {std::size_t{0}, sv.offset + 1, ~std::size_t{0}}) {
        SvPacket const packet = decodeSv(sv.frame, offset);
        EXPECT_EQ(packet.faults, (Faults{{.offset = offset, .kind = FaultKind::notThere}}));
        EXPECT_EQ(packet.noASDU, Integer(std::int64_t{1}));
        EXPECT_TRUE(packet.asdus.empty());
        ASSERT_EQ(packet.others.size(), 1U);
        EXPECT_EQ(packet.others[0].tag, 0xA2);
    }
}

TEST(SvPackets, WithoutAPositionAreLookedForBehindTheHeader) {
    for (PlacedFrame const& sv : {placed(SvMessage()), richSv()}) {
        EXPECT_EQ(decodeSv(sv.frame), decodeSv(sv.frame, sv.offset));
    }
    EXPECT_EQ(kinds(decodeSv({}).faults), (std::vector{FaultKind::headerCut, FaultKind::notThere}));
}

TEST(SvPackets, NameTheirSynchronisation) {
    EXPECT_EQ(smpSynchText(0), "none");
    EXPECT_EQ(smpSynchText(1), "local");
    EXPECT_EQ(smpSynchText(2), "global");
    EXPECT_EQ(smpSynchText(3), "reserved");
    EXPECT_EQ(smpSynchText(4), "reserved");
    EXPECT_EQ(smpSynchText(5), "clock 5");
    EXPECT_EQ(smpSynchText(254), "clock 254");
    EXPECT_EQ(smpSynchText(255), "reserved");
}

TEST(SvPackets, NameTheirSampleMode) {
    EXPECT_EQ(smpModText(0), "samplesPerPeriod");
    EXPECT_EQ(smpModText(1), "samplesPerSecond");
    EXPECT_EQ(smpModText(2), "secondsPerSample");
    EXPECT_EQ(smpModText(3), "reserved");
}

TEST(SvPackets, HaveTheirAsdusAlsoBehindASavPduThatIsTooShort) {
    Bytes const savPdu = ber(0x60, ber(0x80, {0x01}));
    Bytes const sequence = ber(0xA2, ber(0x30, ber(0x80, "MU01")));
    Bytes const frame = ethernetFrame(svEthernet(), etherTypeSampledValues,
                                      apdu({.appId = 0x4000}, savPdu, sequence));
    constexpr std::size_t apduHeaderSize = 8;
    SvPacket const packet =
        decodeSv(frame, payloadOffset(svEthernet()) + apduHeaderSize + savPdu.size());
    ASSERT_EQ(packet.asdus.size(), 1U);
    EXPECT_EQ(packet.asdus[0].svID, "MU01");
    EXPECT_FALSE(packet.faults.empty());
}

}  // namespace
}  // namespace TalIec61850Analysis::SvPacketTest
