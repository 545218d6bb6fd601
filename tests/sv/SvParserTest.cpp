#include <gtest/gtest.h>

#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "capture/FrameWalk.hpp"
#include "support/Ber.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::SvParserTest {
namespace {

using namespace TalIec61850Parser;

using Parsed = WalkedSv;

Parsed parse(Bytes const& data, std::size_t offset = 0, std::uint64_t position = 0) {
    Parsed result;
    result.accepted = SvParser::parsePacket(data, offset, {.tsSec = 5, .tsUsec = 123'456}, position,
                                            result.sv, result.package, {});
    return result;
}

TEST(SvParserParsePacket, FillsIdentityAndCounters) {
    SvMessage message;
    message.appId = 0x4321;
    message.reserved1 = 0x8001;
    message.asdus.front().smpCnt = 3999;
    message.asdus.front().confRev = 0x01020304;
    message.asdus.front().smpRate = 4800;
    Parsed const result = parse(svApdu(message));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.sv.appId, 0x4321U);
    EXPECT_EQ(result.sv.reserved1Bit0, 1);
    EXPECT_EQ(result.sv.maxNoASDU, 1U);
    EXPECT_EQ(result.sv.svID, "MU01");
    EXPECT_EQ(result.sv.maxSmpCnt, 3999);
    EXPECT_EQ(result.sv.confRev, 0x01020304U);
    EXPECT_EQ(result.sv.smpRate, 4800);
    EXPECT_FALSE(result.sv.srcMac.has_value());
    EXPECT_FALSE(result.sv.spareText.has_value());
    EXPECT_EQ(result.sv.packetCount, 0U);
}

TEST(SvParserParsePacket, PlacesTheFrameInItsFile) {
    for (std::size_t const offset : {0UL, 1UL, 30UL, 34UL}) {
        for (std::uint64_t const position : {0UL, 24UL, 0x1'2345'6789UL}) {
            Parsed const result =
                parse(concat({repeat(0xA2, offset), svApdu({})}), offset, position);
            EXPECT_EQ(result.package.position, position + offset + 8 + 5);
            EXPECT_EQ(result.package.time, (Timest{5, 123'456}));
        }
    }
}

TEST(SvParserParsePacket, PlaceIsThatOfTheSequenceHoweverLongItsHeadersAre) {
    for (LengthForm const form : {LengthForm::oneOctet, LengthForm::twoOctets,
                                  LengthForm::threeOctets, LengthForm::fourOctets}) {
        SvMessage message;
        message.pduLengthForm = message.sequenceLengthForm = form;
        message.security = repeat(0x30, 20);
        Parsed const result = parse(svApdu(message));
        EXPECT_EQ(result.package.position, 8 + sequenceOffset(message));
        EXPECT_EQ(result.sv.svID, "MU01");
    }
}

TEST(SvParserParsePacket, NeedsOneOctetBehindTheHeader) {
    for (std::size_t const offset : {0UL, 20UL}) {
        for (std::size_t size = 0; size <= 9; ++size) {
            Parsed const result = parse(repeat(0x01, offset + size), offset);
            EXPECT_EQ(result.accepted, size == 9) << size;
            EXPECT_EQ(result.sv.appId, size == 9 ? 0x0101U : 0x4000U);
            EXPECT_EQ(result.sv.reserved1Bit0.has_value(), size == 9);
            EXPECT_EQ(result.package, kUntouched);
        }
    }
}

TEST(SvParserParsePacket, OffsetBehindTheDataIsRefused) {
    Bytes const data = svApdu({});
    constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();
    for (std::size_t const offset : {data.size(), data.size() - 8, data.size() + 1, kMax / 2,
                                     kMax - 8, kMax - 7, kMax - 1, kMax}) {
        EXPECT_FALSE(parse(data, offset).accepted) << offset;
    }
}

TEST(SvParserParsePacket, AppIdIsTheFirstTwoOctets) {
    for (std::uint16_t const appId :
         std::vector<std::uint16_t>{0x0000, 0x0001, 0x00FF, 0x4000, 0x7FFF, 0xFFFF}) {
        SvMessage message;
        message.appId = appId;
        EXPECT_EQ(parse(svApdu(message)).sv.appId, appId);
    }
}

TEST(SvParserParsePacket, FlagIsTheLowestBitOfTheSixthOctet) {
    Bytes data = svApdu({});
    for (int octet = 0; octet < 256; ++octet) {
        data[5] = static_cast<std::uint8_t>(octet);
        EXPECT_EQ(parse(data).sv.reserved1Bit0, octet & 1);
    }
    data[5] = 0;
    for (std::size_t const other : {2UL, 3UL, 4UL, 6UL, 7UL}) data[other] = 0xFF;
    EXPECT_EQ(parse(data).sv.reserved1Bit0, 0);
}

TEST(SvParserParsePacket, LengthFieldIsNotLookedAt) {
    for (std::uint16_t const length : std::vector<std::uint16_t>{0, 8, 9, 0xFFFF}) {
        SvMessage message;
        message.length = length;
        EXPECT_EQ(parse(svApdu(message)).sv.svID, "MU01");
    }
}

TEST(SvParserParsePacket, FrameWithoutASequenceLeavesThePackage) {
    Parsed const result = parse(apdu({}, {0x60, 0x03, 0x80, 0x01, 0x01}));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.sv.maxNoASDU, 1U);
    EXPECT_EQ(result.package, kUntouched);
    EXPECT_FALSE(result.sv.svID.has_value());
}

TEST(SvParserParsePacket, PduThatRunsPastTheFrameIsNotRead) {
    Bytes const whole = svApdu({});
    for (std::size_t size = 9; size < whole.size(); ++size) {
        Parsed const result = parse(prefix(whole, size));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.sv.appId, 0x4000U);
        EXPECT_EQ(result.sv.reserved1Bit0, 0);
        EXPECT_EQ(result.sv.maxNoASDU, 0U);
        EXPECT_FALSE(result.sv.svID.has_value());
        EXPECT_EQ(result.package, kUntouched);
    }
}

TEST(SvParserParsePacket, OctetsBehindThePduAreReadAsElements) {
    SvMessage message;
    message.trailing = concat({ber(0x04, "signature"), ber(0x80, {0x09}), ber(0xA2, {0x05, 0x00})});
    Bytes const data = svApdu(message);
    Parsed const result = parse(data);
    EXPECT_EQ(result.sv.maxNoASDU, 9U);
    EXPECT_EQ(result.package.position, data.size() - 4);
    for (Bytes const& trailing : {Bytes{0x30}, Bytes{0x30, 0x85, 1, 2, 3, 4, 5}, repeat(0, 200)}) {
        message.trailing = trailing;
        EXPECT_EQ(parse(svApdu(message)).sv.svID, "MU01");
        EXPECT_EQ(parse(svApdu(message)).package.position, 8U + 5U);
    }
}

TEST(SvParserParsePacket, LastAsduStays) {
    SvMessage message = messageOf({"A", "B", "C"});
    message.asdus[0].smpRate = 80;
    for (std::uint16_t i = 0; i < 3; ++i) {
        message.asdus[i].smpCnt = 30U - i;
        message.asdus[i].confRev = i;
    }
    Parsed const result = parse(svApdu(message));
    EXPECT_EQ(result.sv.maxNoASDU, 3U);
    EXPECT_EQ(result.sv.svID, "C");
    // The last value read, not the largest: that is for the store to keep.
    EXPECT_EQ(result.sv.maxSmpCnt, 28);
    EXPECT_EQ(result.sv.confRev, 2U);
    EXPECT_EQ(result.sv.smpRate, 80);
}

TEST(SvParserParsePacket, FiftiethAsduIsTheLastToBeRead) {
    for (std::uint16_t const count : std::vector<std::uint16_t>{49, 50, 51, 80}) {
        SvMessage message;
        Asdu asdu;
        asdu.seqData = Bytes(8);
        message.asdus.clear();
        for (std::uint16_t i = 1; i <= count; ++i) {
            asdu.smpCnt = i;
            message.asdus.push_back(asdu);
        }
        Parsed const result = parse(svApdu(message));
        EXPECT_EQ(result.sv.maxSmpCnt, std::min<std::uint16_t>(count, 50));
        EXPECT_EQ(result.sv.maxNoASDU, count);
    }
}

TEST(SvParserFields, NoAsduIsOneOctet) {
    auto const noASDU = [](Bytes const& value) {
        return parse(apdu({}, ber(0x60, ber(0x80, value)))).sv.maxNoASDU;
    };
    EXPECT_EQ(noASDU({}), 0U);
    EXPECT_EQ(noASDU({0x01}), 1U);
    EXPECT_EQ(noASDU({0xFF}), 255U);
    EXPECT_EQ(noASDU({0x00, 0x08}), 0U);
    EXPECT_EQ(noASDU({0x02, 0x08}), 2U);
}

TEST(SvParserFields, LastNoAsduStays) {
    Bytes const pdu = ber(0x60, concat({ber(0x80, {0x08}), ber(0x80, {})}));
    EXPECT_EQ(parse(apdu({}, pdu)).sv.maxNoASDU, 0U);
}

TEST(SvParserFields, SvIdIsTextOrHexadecimal) {
    auto const svID = [](Bytes const& value) {
        return parse(svWithFields(ber(0x80, value))).sv.svID;
    };
    EXPECT_EQ(svID(text("MU 01~")), "MU 01~");
    EXPECT_EQ(svID({}), "");
    EXPECT_EQ(svID({0x41, 0x00, 0x42}), "[41 00 42]");
    EXPECT_EQ(svID({0x7F}), "[7F]");
    EXPECT_FALSE(parse(svWithFields(ber(0x81, "x"))).sv.svID.has_value());
}

TEST(SvParserFields, SmpCntAndSmpRateNeedTwoOctets) {
    struct Case {
        Bytes value;
        std::uint16_t number;
    };
    for (Case const& each : std::vector<Case>{{{}, 0},
                                              {{0x05}, 0},
                                              {{0x01, 0x02}, 0x0102},
                                              {{0xFF, 0xFF}, 0xFFFF},
                                              {{0x00, 0x01, 0x02}, 0x0001},
                                              {{0, 0, 0x0F, 0xA0}, 0}}) {
        EXPECT_EQ(parse(svWithFields(ber(0x82, each.value))).sv.maxSmpCnt, each.number);
        EXPECT_EQ(parse(svWithFields(ber(0x86, each.value))).sv.smpRate, each.number);
    }
}

TEST(SvParserFields, ConfRevIsReadFromUpToFourOctets) {
    auto const confRev = [](Bytes const& value) {
        return parse(svWithFields(ber(0x83, value))).sv.confRev;
    };
    EXPECT_EQ(confRev({}), 0U);
    EXPECT_EQ(confRev({0x80}), 0x80U);
    EXPECT_EQ(confRev({0x01, 0x02, 0x03}), 0x010203U);
    EXPECT_EQ(confRev({0xFF, 0xFF, 0xFF, 0xFF}), 4294967295U);
    EXPECT_EQ(confRev({0x00, 0xFF, 0xFF, 0xFF, 0xFE}), 0x00FFFFFFU);
    EXPECT_FALSE(parse(svWithFields(ber(0x80, "x"))).sv.confRev.has_value());
}

TEST(SvParserFields, OtherFieldsOfAnAsduChangeNothing) {
    for (int tag = 0x80; tag < 0xA0; ++tag) {
        if (tag == 0x80 || tag == 0x82 || tag == 0x83 || tag == 0x86) continue;
        Parsed const result = parse(svWithFields(
            concat({ber(0x80, "x"), ber(static_cast<std::uint8_t>(tag), {0x82, 0x02, 1, 2})})));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.sv.svID, "x") << tag;
        EXPECT_EQ(result.sv.maxNoASDU, 1U) << tag;
        EXPECT_EQ(result.sv.maxSmpCnt, 0) << tag;
        EXPECT_EQ(result.sv.smpRate, 0) << tag;
        EXPECT_FALSE(result.sv.confRev.has_value()) << tag;
    }
}

TEST(SvParserFields, OtherFieldsOfTheSavPduChangeNothing) {
    for (int tag = 0x81; tag < 0xA0; ++tag) {
        Bytes const field = ber(static_cast<std::uint8_t>(tag), {0x01, 0x02});
        Parsed const result = parse(apdu({}, ber(0x60, concat({ber(0x80, {0x02}), field}))));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.sv.maxNoASDU, 2U) << tag;
        EXPECT_EQ(result.sv.maxSmpCnt, 0) << tag;
        EXPECT_EQ(result.sv.smpRate, 0) << tag;
        EXPECT_FALSE(result.sv.confRev.has_value()) << tag;
    }
}

TEST(SvParserFields, ThoseBeforeTheCutAreKept) {
    Bytes const fields =
        concat({ber(0x80, "MU"), ber(0x82, {0x01, 0x02}), ber(0x83, {0x07}), ber(0x86, {1, 0})});
    ASSERT_EQ(fields.size(), 15U);
    for (std::size_t size = 0; size <= fields.size(); ++size) {
        Parsed const result = parse(svWithFields(prefix(fields, size)));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.package.position, 8U + 5U);
        EXPECT_EQ(result.sv.svID.has_value(), size >= 4);
        EXPECT_EQ(result.sv.maxSmpCnt, size >= 8 ? 0x0102 : 0);
        EXPECT_EQ(result.sv.confRev.has_value(), size >= 11);
        EXPECT_EQ(result.sv.smpRate, size >= 15 ? 0x0100 : 0);
    }
}

}  // namespace
}  // namespace TalTest::SvParserTest
