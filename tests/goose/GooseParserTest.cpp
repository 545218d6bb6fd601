#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "capture/FrameWalk.hpp"
#include "support/Ber.hpp"
#include "support/Goose.hpp"

namespace TalTest::GooseParserTest {
namespace {

using namespace TalIec61850Parser;

using Parsed = WalkedGoose;

Parsed parse(Bytes const& data, std::size_t offset = 0, std::uint64_t position = 0) {
    Parsed result;
    result.accepted = GooseParser::parsePacket(data, offset, {.tsSec = 5, .tsUsec = 123'456},
                                               position, result.goose, result.package, {});
    return result;
}

TEST(GooseParserParsePacket, FillsTheIdentity) {
    GooseMessage message;
    message.appId = 0x1234;
    message.reserved1 = 0x8001;
    message.confRev = 0x01020304;
    Parsed const result = parse(gooseApdu(message));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.goose.appId, 0x1234U);
    EXPECT_EQ(result.goose.reserved1Bit0, 1);
    EXPECT_EQ(result.goose.gocbRef, message.gocbRef);
    EXPECT_EQ(result.goose.datSet, message.datSet);
    EXPECT_EQ(result.goose.goID, message.goID);
    EXPECT_EQ(result.goose.simulation, true);
    EXPECT_EQ(result.goose.confRev, 0x01020304U);
    EXPECT_FALSE(result.goose.srcMac.has_value());
    EXPECT_EQ(result.goose.packetCount, 0U);
}

TEST(GooseParserParsePacket, PlacesTheFrameInItsFile) {
    for (std::size_t const offset : {0UL, 1UL, 30UL, 34UL}) {
        for (std::uint64_t const position : {0UL, 24UL, 0x1'2345'6789UL}) {
            Parsed const result =
                parse(concat({repeat(0x61, offset), gooseApdu({})}), offset, position);
            EXPECT_EQ(result.package.position, position + offset + 8);
            EXPECT_EQ(result.package.time, (Timest{5, 123'456}));
        }
    }
}

TEST(GooseParserParsePacket, NeedsOneOctetBehindTheHeader) {
    for (std::size_t const offset : {0UL, 20UL}) {
        for (std::size_t size = 0; size <= 9; ++size) {
            Parsed const result = parse(repeat(0x01, offset + size), offset);
            EXPECT_EQ(result.accepted, size == 9) << size;
            EXPECT_EQ(result.goose.appId.has_value(), size == 9);
            EXPECT_EQ(result.goose.reserved1Bit0.has_value(), size == 9);
            EXPECT_EQ(result.package, kUntouched);
        }
    }
}

TEST(GooseParserParsePacket, OffsetBehindTheDataIsRefused) {
    Bytes const data = gooseApdu({});
    constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();
    for (std::size_t const offset : {data.size(), data.size() - 8, data.size() + 1, kMax / 2,
                                     kMax - 8, kMax - 7, kMax - 1, kMax}) {
        EXPECT_FALSE(parse(data, offset).accepted) << offset;
    }
}

TEST(GooseParserParsePacket, AppIdIsTheFirstTwoOctets) {
    for (std::uint16_t const appId :
         std::vector<std::uint16_t>{0x0000, 0x0001, 0x00FF, 0x0100, 0x3FFF, 0xFFFF}) {
        GooseMessage message;
        message.appId = appId;
        EXPECT_EQ(parse(gooseApdu(message)).goose.appId, appId);
    }
}

TEST(GooseParserParsePacket, FlagIsTheLowestBitOfTheSixthOctet) {
    Bytes data = gooseApdu({});
    for (int octet = 0; octet < 256; ++octet) {
        data[5] = static_cast<std::uint8_t>(octet);
        EXPECT_EQ(parse(data).goose.reserved1Bit0, octet & 1);
    }
    data[5] = 0;
    for (std::size_t const other : {2UL, 3UL, 4UL, 6UL, 7UL}) data[other] = 0xFF;
    EXPECT_EQ(parse(data).goose.reserved1Bit0, 0);
}

TEST(GooseParserParsePacket, LengthFieldIsNotLookedAt) {
    for (std::uint16_t const length : std::vector<std::uint16_t>{0, 8, 9, 0xFFFF}) {
        GooseMessage message;
        message.length = length;
        Parsed const result = parse(gooseApdu(message));
        EXPECT_EQ(result.goose.goID, message.goID);
        EXPECT_EQ(result.package.position, 8U);
    }
}

TEST(GooseParserParsePacket, FrameWithoutAPduLeavesThePackage) {
    for (Bytes const& pdu : {ber(0x04, "text"), Bytes{0x00}, Bytes{0x61}, ber(0x60, goosePdu({})),
                             berClaiming(0x61, {0x05}, repeat(0, 4))}) {
        Parsed const result = parse(apdu({}, pdu));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.package, kUntouched);
        EXPECT_FALSE(result.goose.gocbRef.has_value());
    }
}

TEST(GooseParserParsePacket, LastPduSetsThePlace) {
    GooseMessage message;
    message.trailing = concat({ber(0x04, "signature"), ber(0x61, {0x00})});
    Bytes const data = gooseApdu(message);
    EXPECT_EQ(parse(data).package.position, data.size() - 3);
    // In the data set it is found as well.
    message.trailing = {};
    message.setData({dataStructure({ber(0x61, {})})});
    Bytes const nestedPdu = gooseApdu(message);
    EXPECT_EQ(parse(nestedPdu).package.position, nestedPdu.size() - 2);
}

TEST(GooseParserParsePacket, OctetsBehindThePduAreReadAsElements) {
    GooseMessage message;
    message.trailing = ber(0x30, ber(0x83, "second"));
    EXPECT_EQ(parse(gooseApdu(message)).goose.goID, "second");
    // Cut short or no elements at all, they do no harm.
    for (Bytes const& trailing : {Bytes{0x30}, Bytes{0x30, 0x85, 1, 2, 3, 4, 5}, repeat(0, 200)}) {
        message.trailing = trailing;
        Parsed const result = parse(gooseApdu(message));
        EXPECT_EQ(result.goose.goID, message.goID);
        EXPECT_EQ(result.package.position, 8U);
    }
}

TEST(GooseParserFields, TextsAreStoredAsTheyStand) {
    Parsed const result = parse(gooseWithFields(
        concat({ber(0x80, "IED1/LLN0$GO$ c~"), ber(0x82, "d"), ber(0x83, "\"g,'")})));
    EXPECT_EQ(result.goose.gocbRef, "IED1/LLN0$GO$ c~");
    EXPECT_EQ(result.goose.datSet, "d");
    EXPECT_EQ(result.goose.goID, "\"g,'");
}

TEST(GooseParserFields, UnprintableTextsAreStoredInHexadecimal) {
    Parsed const result = parse(gooseWithFields(
        concat({ber(0x80, {0x41, 0x00, 0x42}), ber(0x82, {0x7F}), ber(0x83, {0xC3, 0xA4, 0x0A})})));
    EXPECT_EQ(result.goose.gocbRef, "[41 00 42]");
    EXPECT_EQ(result.goose.datSet, "[7F]");
    EXPECT_EQ(result.goose.goID, "[C3 A4 0A]");
}

TEST(GooseParserFields, EmptyGocbRefCountsEmptyDatSetAndGoIdDoNot) {
    Parsed const result =
        parse(gooseWithFields(concat({ber(0x80, ""), ber(0x82, ""), ber(0x83, "")})));
    EXPECT_EQ(result.goose.gocbRef, "");
    EXPECT_FALSE(result.goose.datSet.has_value());
    EXPECT_FALSE(result.goose.goID.has_value());
}

TEST(GooseParserFields, LastOfSeveralStays) {
    Parsed const result = parse(gooseWithFields(
        concat({ber(0x80, "first"), ber(0x80, "last"), ber(0x83, "kept"), ber(0x83, "")})));
    EXPECT_EQ(result.goose.gocbRef, "last");
    EXPECT_EQ(result.goose.goID, "kept");
}

TEST(GooseParserFields, OrderDoesNotMatter) {
    Parsed const result = parse(gooseWithFields(
        concat({ber(0x88, {0x02}), ber(0x83, "g"), ber(0x82, "d"), ber(0x80, "c")})));
    EXPECT_EQ(result.goose.gocbRef, "c");
    EXPECT_EQ(result.goose.datSet, "d");
    EXPECT_EQ(result.goose.goID, "g");
    EXPECT_EQ(result.goose.confRev, 2U);
}

TEST(GooseParserFields, SimulationIsTrueWhateverItSays) {
    for (Bytes const& value : {Bytes{0x00}, Bytes{0x01}, Bytes{0xFF}, Bytes{}, Bytes{0, 0}}) {
        EXPECT_EQ(parse(gooseWithFields(ber(0x87, value))).goose.simulation, true);
    }
    EXPECT_FALSE(parse(gooseWithFields(ber(0x80, "c"))).goose.simulation.has_value());
}

TEST(GooseParserFields, ConfRevIsReadFromUpToFourOctets) {
    auto const confRev = [](Bytes const& value) {
        return parse(gooseWithFields(ber(0x88, value))).goose.confRev;
    };
    EXPECT_EQ(confRev({}), 0U);
    EXPECT_EQ(confRev({0x80}), 0x80U);
    EXPECT_EQ(confRev({0x01, 0x02}), 0x0102U);
    EXPECT_EQ(confRev({0x01, 0x02, 0x03}), 0x010203U);
    EXPECT_EQ(confRev({0xFF, 0xFF, 0xFF, 0xFF}), 0xFFFFFFFFU);
    EXPECT_EQ(confRev({0x00, 0xFF, 0xFF, 0xFF, 0xFE}), 0x00FFFFFFU);
    EXPECT_FALSE(parse(gooseWithFields({0x04, 0x00})).goose.confRev.has_value());
}

TEST(GooseParserFields, OtherFieldsChangeNothing) {
    for (int tag = 0x80; tag < 0xA0; ++tag) {
        if (tag == 0x80 || tag == 0x82 || tag == 0x83 || tag == 0x87 || tag == 0x88) continue;
        Parsed const result = parse(gooseWithFields(
            concat({ber(0x80, "c"), ber(static_cast<std::uint8_t>(tag), {0x83, 0x01, 0x41})})));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.goose.gocbRef, "c") << tag;
        EXPECT_FALSE(result.goose.datSet.has_value()) << tag;
        EXPECT_FALSE(result.goose.goID.has_value()) << tag;
        EXPECT_FALSE(result.goose.simulation.has_value()) << tag;
        EXPECT_FALSE(result.goose.confRev.has_value()) << tag;
        EXPECT_EQ(result.package.position, 8U);
    }
}

TEST(GooseParserFields, MalformedFieldEndsThePduQuietly) {
    for (Bytes const& malformed :
         {Bytes{0x82}, Bytes{0x82, 0x85, 0, 0, 0, 0, 0}, Bytes{0x82, 0x84, 0, 0, 0},
          Bytes{0x82, 0x20}, Bytes{0x82, 0xFF}, Bytes{0x82, 0x84, 0xFF, 0xFF, 0xFF, 0xFF}}) {
        Parsed const result =
            parse(gooseWithFields(concat({ber(0x80, "c"), malformed, ber(0x83, "g")})));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.goose.gocbRef, "c");
        EXPECT_FALSE(result.goose.datSet.has_value());
        EXPECT_EQ(result.package.position, 8U);
    }
}

TEST(GooseParserFields, ThoseBeforeTheCutAreKept) {
    struct Field {
        std::size_t end;
        bool (*isSet)(Goose const&);
    };
    Bytes const fields = concat({ber(0x80, "c1"), ber(0x81, {0x01}), ber(0x82, "d2"),
                                 ber(0x83, "g3"), ber(0x87, {0x00}), ber(0x88, {0x04})});
    std::vector<Field> const ends = {
        {4, [](Goose const& goose) { return goose.gocbRef.has_value(); }},
        {11, [](Goose const& goose) { return goose.datSet.has_value(); }},
        {15, [](Goose const& goose) { return goose.goID.has_value(); }},
        {18, [](Goose const& goose) { return goose.simulation.has_value(); }},
        {21, [](Goose const& goose) { return goose.confRev.has_value(); }},
    };
    ASSERT_EQ(fields.size(), 21U);
    for (std::size_t size = 0; size <= fields.size(); ++size) {
        Parsed const result = parse(gooseWithFields(prefix(fields, size)));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.package.position, 8U);
        for (Field const& field : ends) EXPECT_EQ(field.isSet(result.goose), size >= field.end);
    }
}

TEST(GooseParserFields, PduThatRunsPastTheFrameIsNotRead) {
    Bytes const whole = gooseApdu({});
    for (std::size_t size = 9; size < whole.size(); ++size) {
        Parsed const result = parse(prefix(whole, size));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.goose.appId, 1U);
        EXPECT_FALSE(result.goose.gocbRef.has_value());
        EXPECT_EQ(result.package, kUntouched);
    }
}

}  // namespace
}  // namespace TalTest::GooseParserTest
