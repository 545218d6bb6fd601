#include <gtest/gtest.h>

#include <string>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "tools/render/PacketText.hpp"

namespace TalIec61850Tools::PacketTextTest {
namespace {

using namespace TalIec61850Analysis;
using namespace TalTest;

constexpr char const* treeOfGoose = R"(GOOSE
  destination: 01:0c:cd:01:00:01
  source: 02:00:00:00:00:01
  vlan: 7, priority 4, dei
  hsr: lane A, path 0, sequence 1, size 155
  prp: LAN B, id 11, sequence 2, size 161
  etherType: 0x88b8
  appId: 0x0001
  length: 149
  reserved1: 0x8000 (simulated)
  reserved2: 0x0000
  gocbRef: RELAY1LD0/LLN0$GO$gcb1
  timeAllowedtoLive: 2000
  datSet: RELAY1LD0/LLN0$dataSet1
  goID: RELAY1_gcb1
  t: 2023-11-14T22:13:20.500000000Z ()"
                                    R"(leapSecondsKnown, clockFailure, clockNotSynchronized, )"
                                    R"(accuracy 10 bits)
  stNum: 1
  sqNum: 0
  simulation: true
  confRev: 1
  ndsCom: false
  numDatSetEntries: 6
  allData:
    1: bit-string: 10 (as Dbpos: on)
    2: bit-string: 1100000100000 (quality: questionable, oldData)
    3: structure
      1: integer: -2
      2: structure
        1: floating-point: 0.5
    4: utc-time: 1970-01-01T00:00:00.000000000Z (accuracy unspecified)
    5: unknown 88: 01
    6: boolean:  (has a length that does not fit its kind)
  element 8c: ab
  trailing: cd
  fault: at octet 170: has a length that does not fit its kind
)";

TEST(PacketText, IsATreeOfAGoosePacket) {
    GooseMessage message;
    message.t = utcTime(1'700'000'000, 0x800000, 0xEA);
    message.simulation = true;
    message.reserved1 = 0x8000;
    message.setData({dataBitString({0x80}, 6), dataQuality(0xC100),
                     dataStructure({dataInteger(-2), dataStructure({dataFloat(0.5F)})}),
                     dataUtcTime(0, 0, 0x1F), ber(0x88, {0x01}), ber(0x83, {})});
    message.extraBeforeData = ber(0x8C, {0xAB});
    message.trailing = {0xCD};
    auto const ethernet = Ethernet().withVlan(7, 4, true).withHsr('A', 1).withPrp('B', 2);
    EXPECT_EQ(toText(inspected(message, ethernet)), treeOfGoose);
}

TEST(PacketText, IsATreeOfAnSvPacket) {
    PlacedFrame const sv = richSv();
    std::string const text = toText(decodeSv(sv.frame, sv.offset));
    std::size_t const begin = text.find("  noASDU");
    ASSERT_NE(begin, std::string::npos);
    EXPECT_EQ(text.substr(0, 3), "SV\n");
    std::string const asdu = R"(    datSet: MU01LD0/LLN0$PhsMeas
    smpCnt: COUNT
    confRev: 1
    refrTm: 2023-11-14T22:13:20.500000000Z (clockNotSynchronized, accuracy 10 bits)
    smpSynch: 5 (clock 5)
    smpRate: 80
    seqData:
      1: -1, quality: questionable, overflow, outOfRange, badReference, oscillatory, )"
                             R"(failure, oldData, inconsistent, inaccurate, substituted, test, )"
                             R"(operatorBlocked
      2: 5, quality: good, derived
    smpMod: 1 (samplesPerSecond)
    gmIdentity: octets 0102030405060708
    element 8f: 11
)";
    auto const withCount = [&](std::string const& count) {
        std::string copy = asdu;
        return copy.replace(copy.find("COUNT"), 5, count);
    };
    EXPECT_EQ(text.substr(begin),
              "  noASDU: 2\n  security: octets 3000\n  ASDU 1:\n    svID: MU01\n" +
                  withCount("3999") + "  ASDU 2:\n    svID: MU02\n" + withCount("0") +
                  "  trailing: cdcdcdcd\n");
}

TEST(PacketText, ShowsOctetsWhereThereIsNoValue) {
    GooseMessage message;
    message.t = Bytes{0x01, 0x02};
    message.extraLast = {0x9F, 0x81};
    std::string const text = toText(inspected(message));
    EXPECT_NE(text.find("\n  t: octets 0102\n"), std::string::npos);
    EXPECT_NE(text.find("\n  unreadable: 9f81 (has an identifier of several octets)\n"),
              std::string::npos);
    Asdu asdu;
    asdu.seqData = Bytes{0x01};
    asdu.smpSynch = {0, 0};
    SvMessage sv;
    sv.asdus = {asdu};
    std::string const svText = toText(inspected(sv));
    EXPECT_NE(svText.find("    seqData: octets 01\n"), std::string::npos);
}

TEST(PacketText, ShowsWhatStandsInFrontOfThePdu) {
    Bytes const payload = concat({{0x12, 0x34}, goosePdu(GooseMessage())});
    std::string const text = toText(decodeGoose(ethernetFrame(Ethernet(), 0x0800, payload), 16));
    EXPECT_NE(text.find("  leading: 1234\n"), std::string::npos);
    EXPECT_NE(text.find("  fault: at octet 12: has a content that does not fit its kind\n"),
              std::string::npos);
}

TEST(PacketText, EscapesNamesFromOutside) {
    GooseMessage message;
    message.goID = "a\nb\x1b[31m";
    message.setData({dataVisibleString("c\rd")});
    std::string const text = toText(inspected(message));
    EXPECT_NE(text.find(R"(goID: a\nb\x1b[31m)"), std::string::npos);
    EXPECT_NE(text.find(R"(1: visible-string: c\rd)"), std::string::npos);
    for (char const c : text) EXPECT_TRUE(c == '\n' || (c >= ' ' && c < '\x7F'));
}

TEST(PacketText, SaysWhichAccuracyIsInvalid) {
    EXPECT_NE(toText(inspectedData(dataUtcTime(0, 0, 25))).find("(accuracy 25 invalid)"),
              std::string::npos);
    EXPECT_NE(toText(inspectedData(dataUtcTime(0, 0, 24))).find("(accuracy 24 bits)"),
              std::string::npos);
}

TEST(PacketText, EndsEveryLine) {
    EXPECT_EQ(toText(GoosePacket()), "GOOSE\n");
    EXPECT_EQ(toText(SvPacket()), "SV\n");
}

}  // namespace
}  // namespace TalIec61850Tools::PacketTextTest
