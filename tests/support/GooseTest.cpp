#include <gtest/gtest.h>

#include <stdexcept>

#include "support/Goose.hpp"

namespace TalTest::GooseTest {
namespace {

/// A message of no fields at all.
GooseMessage bare() {
    GooseMessage message;
    message.gocbRef.reset();
    message.timeAllowedtoLive.reset();
    message.datSet.reset();
    message.goID.reset();
    message.t.reset();
    message.stNum.reset();
    message.sqNum.reset();
    message.simulation.reset();
    message.confRev.reset();
    message.ndsCom.reset();
    message.numDatSetEntries.reset();
    message.allData.reset();
    return message;
}

TEST(GooseBuilder, WritesTheFieldsInTheirOrder) {
    GooseMessage message;
    message.gocbRef = "G";
    message.timeAllowedtoLive = 2000;
    message.datSet = "D";
    message.goID = "I";
    message.t = utcTime(0x01020304, 0x050607, 0x08);
    message.stNum = 3;
    message.sqNum = 200;
    message.simulation = true;
    message.confRev = 10001;
    message.ndsCom = false;
    message.setData({dataBoolean(true), dataBoolean(false)});
    EXPECT_EQ(goosePdu(message), concat({{0x61, 0x33},
                                         {0x80, 0x01, 'G'},
                                         {0x81, 0x02, 0x07, 0xD0},
                                         {0x82, 0x01, 'D'},
                                         {0x83, 0x01, 'I'},
                                         {0x84, 0x08, 1, 2, 3, 4, 5, 6, 7, 8},
                                         {0x85, 0x01, 0x03},
                                         {0x86, 0x02, 0x00, 0xC8},
                                         {0x87, 0x01, 0xFF},
                                         {0x88, 0x02, 0x27, 0x11},
                                         {0x89, 0x01, 0x00},
                                         {0x8A, 0x01, 0x02},
                                         {0xAB, 0x06, 0x83, 0x01, 0xFF, 0x83, 0x01, 0x00}}));
}

TEST(GooseBuilder, LeavesOutWhatIsUnset) { EXPECT_EQ(goosePdu(bare()), (Bytes{0x61, 0x00})); }

TEST(GooseBuilder, WritesNumbersInTheWidthAskedFor) {
    GooseMessage message = bare();
    message.stNum = {7, 5};
    message.confRev = {0xFFFFFFFF, 4};
    EXPECT_EQ(goosePdu(message), (Bytes{0x61, 13, 0x85, 5, 0, 0, 0, 0, 7,  //
                                        0x88, 4, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(GooseBuilder, WritesAllDataAsIfItWerePrimitive) {
    GooseMessage message = bare();
    message.setData({dataBoolean(true)});
    message.allDataTag = 0x8B;
    message.allDataLengthForm = LengthForm::twoOctets;
    message.pduLengthForm = LengthForm::oneOctet;
    EXPECT_EQ(goosePdu(message), (Bytes{0x61, 0x81, 10, 0x8A, 1, 1,  //
                                        0x8B, 0x82, 0x00, 0x03, 0x83, 0x01, 0xFF}));
}

TEST(GooseBuilder, WritesExtraElementsFirstBeforeAllDataAndLast) {
    GooseMessage message = bare();
    message.gocbRef = "G";
    message.allData = Bytes{};
    message.extraFirst = ber(0x8C, {1});
    message.extraBeforeData = ber(0x8C, {2});
    message.extraLast = ber(0x8C, {3});
    EXPECT_EQ(goosePdu(message), (Bytes{0x61, 14, 0x8C, 1, 1, 0x80, 1, 'G',  //
                                        0x8C, 1, 2, 0xAB, 0, 0x8C, 1, 3}));
}

TEST(GooseBuilder, WritesHeaderPduAndWhatTrailsIt) {
    GooseMessage message = bare();
    message.appId = 0x3FFF;
    message.reserved1 = 0x8001;
    message.reserved2 = 0x0004;
    message.trailing = {0xCA, 0xFE};
    EXPECT_EQ(gooseApdu(message), (Bytes{0x3F, 0xFF, 0x00, 0x0C, 0x80, 0x01, 0x00, 0x04,  //
                                         0x61, 0x00, 0xCA, 0xFE}));
}

TEST(GooseBuilder, WritesAWrongLengthFieldWhenTold) {
    GooseMessage message = bare();
    message.length = 0xFFFF;
    EXPECT_EQ(prefix(gooseApdu(message), 4), (Bytes{0x00, 0x01, 0xFF, 0xFF}));
}

TEST(GooseBuilder, RefusesAPduThatTheLengthFieldCannotTell) {
    GooseMessage message;
    message.allData = Bytes(65'536);
    EXPECT_THROW((void)gooseApdu(message), std::length_error);
    message.length = 0;
    EXPECT_GT(gooseApdu(message).size(), 65'536U);
}

TEST(GooseBuilder, PutsTheApduBehindEtherType88B8) {
    Bytes const frame = gooseFrame(Ethernet().withVlan(1), GooseMessage{});
    EXPECT_EQ(find(frame, concat({{0x88, 0xB8}, gooseApdu(GooseMessage{})})), 16U);
}

TEST(GooseData, WritesEachChoice) {
    EXPECT_EQ(dataBoolean(true), (Bytes{0x83, 0x01, 0xFF}));
    EXPECT_EQ(dataBitString({0x40}, 6), (Bytes{0x84, 0x02, 0x06, 0x40}));
    EXPECT_EQ(dataQuality(0x0040), (Bytes{0x84, 0x03, 0x03, 0x00, 0x40}));
    EXPECT_EQ(dataInteger(-2), (Bytes{0x85, 0x01, 0xFE}));
    EXPECT_EQ(dataUnsigned(255), (Bytes{0x86, 0x02, 0x00, 0xFF}));
    EXPECT_EQ(dataFloat(1.5F), (Bytes{0x87, 0x05, 0x08, 0x3F, 0xC0, 0x00, 0x00}));
    EXPECT_EQ(dataOctetString({0x01}), (Bytes{0x89, 0x01, 0x01}));
    EXPECT_EQ(dataVisibleString("ok"), (Bytes{0x8A, 0x02, 'o', 'k'}));
    EXPECT_EQ(dataUtcTime(1, 2, 3), (Bytes{0x91, 0x08, 0, 0, 0, 1, 0, 0, 2, 3}));
    EXPECT_EQ(dataStructure({dataBoolean(false), dataArray({})}),
              (Bytes{0xA2, 0x05, 0x83, 0x01, 0x00, 0xA1, 0x00}));
}

}  // namespace
}  // namespace TalTest::GooseTest
