#include <gtest/gtest.h>

#include "support/SampledValues.hpp"

namespace TalTest::SampledValuesTest {
namespace {

/// An ASDU of no fields at all.
Asdu bare() {
    Asdu asdu;
    asdu.svID.reset();
    asdu.smpCnt.reset();
    asdu.confRev.reset();
    asdu.smpSynch.reset();
    asdu.seqData.reset();
    return asdu;
}

TEST(SvBuilder, WritesTheFieldsOfAnAsduInTheirOrder) {
    Asdu asdu;
    asdu.svID = "S";
    asdu.datSet = "D";
    asdu.smpCnt = 3999;
    asdu.confRev = 1;
    asdu.refrTm = Bytes{1, 2, 3, 4, 5, 6, 7, 8};
    asdu.smpSynch = 2;
    asdu.smpRate = 80;
    asdu.seqData = samples({{-1, 0x2000}});
    asdu.smpMod = 1;
    EXPECT_EQ(asduElement(asdu), concat({{0x30, 47},
                                         {0x80, 1, 'S'},
                                         {0x81, 1, 'D'},
                                         {0x82, 2, 0x0F, 0x9F},
                                         {0x83, 4, 0, 0, 0, 1},
                                         {0x84, 8, 1, 2, 3, 4, 5, 6, 7, 8},
                                         {0x85, 1, 2},
                                         {0x86, 2, 0, 80},
                                         {0x87, 8, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0x20, 0},
                                         {0x88, 2, 0, 1}}));
}

TEST(SvBuilder, LeavesOutWhatIsUnset) { EXPECT_EQ(asduElement(bare()), (Bytes{0x30, 0x00})); }

TEST(SvBuilder, WritesNumbersInTheWidthAskedFor) {
    Asdu asdu = bare();
    asdu.smpCnt = {7, 1};
    asdu.confRev = {9, 2};
    EXPECT_EQ(asduElement(asdu), (Bytes{0x30, 7, 0x82, 1, 7, 0x83, 2, 0, 9}));
}

TEST(SvBuilder, WritesExtraElementsOfAnAsduFirstAndLast) {
    Asdu asdu = bare();
    asdu.smpSynch = 0;
    asdu.extraFirst = ber(0x89, {});
    asdu.extraLast = ber(0x8A, {});
    asdu.lengthForm = LengthForm::oneOctet;
    EXPECT_EQ(asduElement(asdu), (Bytes{0x30, 0x81, 7, 0x89, 0, 0x85, 1, 0, 0x8A, 0}));
}

TEST(SvBuilder, CountsTheAsdus) {
    SvMessage message;
    message.asdus.assign(3, bare());
    EXPECT_EQ(savPdu(message), (Bytes{0x60, 11, 0x80, 1, 3, 0xA2, 6, 0x30, 0, 0x30, 0, 0x30, 0}));
}

TEST(SvBuilder, WritesAnotherNoASDUOrNone) {
    SvMessage message;
    message.asdus.clear();
    message.noASDU = 255;
    EXPECT_EQ(savPdu(message), (Bytes{0x60, 6, 0x80, 2, 0x00, 0xFF, 0xA2, 0}));
    message.omitNoASDU = true;
    EXPECT_EQ(savPdu(message), (Bytes{0x60, 2, 0xA2, 0}));
}

TEST(SvBuilder, WritesSecurityAndExtraElementsAroundTheSequence) {
    SvMessage message;
    message.asdus = {bare()};
    message.security = Bytes{0xEE};
    message.extraFirst = {0x89, 0};
    message.extraBeforeSequence = {0x8A, 0};
    message.extraInSequence = {0x8B, 0};
    message.pduLengthForm = LengthForm::twoOctets;
    message.sequenceLengthForm = LengthForm::oneOctet;
    EXPECT_EQ(savPdu(message), concat({{0x60, 0x82, 0x00, 17},
                                       {0x89, 0},
                                       {0x80, 1, 1},
                                       {0x81, 1, 0xEE},
                                       {0x8A, 0},
                                       {0xA2, 0x81, 4, 0x8B, 0, 0x30, 0}}));
    EXPECT_EQ(sequenceOffset(message), 14U);
}

TEST(SvBuilder, WritesHeaderPduAndWhatTrailsIt) {
    SvMessage message;
    message.asdus.clear();
    message.reserved1 = 0x8000;
    message.trailing = {0xCA};
    EXPECT_EQ(svApdu(message), (Bytes{0x40, 0x00, 0x00, 0x10, 0x80, 0x00, 0x00, 0x00,  //
                                      0x60, 5, 0x80, 1, 0, 0xA2, 0, 0xCA}));
}

TEST(SvBuilder, PutsTheApduBehindEtherType88BA) {
    Bytes const frame = svFrame(svEthernet(), SvMessage{});
    EXPECT_EQ(find(frame, concat({{0x88, 0xBA}, svApdu(SvMessage{})})), 12U);
    EXPECT_EQ(prefix(frame, 4), (Bytes{0x01, 0x0C, 0xCD, 0x04}));
}

TEST(SvBuilder, LaysOut92leWithEightChannels) {
    Bytes const pdu = savPdu(message92le("MU01", 1, {{5, 0}}));
    EXPECT_EQ(pdu, concat({{0x60, 92, 0x80, 1, 1, 0xA2, 87, 0x30, 85},
                           {0x80, 4, 'M', 'U', '0', '1'},
                           {0x82, 2, 0, 1},
                           {0x83, 4, 0, 0, 0, 1},
                           {0x85, 1, 2},
                           {0x87, 64, 0, 0, 0, 5},
                           repeat(0, 60)}));
}

}  // namespace
}  // namespace TalTest::SampledValuesTest
